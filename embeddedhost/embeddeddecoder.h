// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <embeddedhost/embeddedhost_export.h>
#include <hostapi/idecoder.h>

#include <QObject>

/// The embedded host's plug-in that announces new sessions (see EmbeddedHost::setSessions()).
class EMBEDDEDHOST_EXPORT EmbeddedDecoder : public QObject, public IDecoder
{
    Q_OBJECT
    Q_INTERFACES(IDecoder)

public:
    explicit EmbeddedDecoder(QObject *parent = nullptr);

Q_SIGNALS:
    /// The sessions that are open to trading have changed.
    void aNewSessions();
};
