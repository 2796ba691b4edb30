// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QtGlobal>

class QObject;

/// Blocks an object's signals for a scope, or unblocks them with false, and then restores the state
/// from before. Scopes may be nested. The object must not be null and must outlive the blocker.
class FORMKIT_EXPORT SignalBlocker
{
public:
    /// Blocks the signals, or unblocks them if `block` is false.
    SignalBlocker(QObject *object, bool block);
    ~SignalBlocker();
    Q_DISABLE_COPY(SignalBlocker)

private:
    QObject *m_object;
    bool m_previous;
};
