// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>

/// Collects what the states of the dialog log, and passes all other messages on.
class TraceLog : public QObject
{
    Q_OBJECT

public:
    /// Only one may exist at a time.
    explicit TraceLog(QObject *parent = nullptr);
    ~TraceLog() override;

Q_SIGNALS:
    void line(const QString &text);
};
