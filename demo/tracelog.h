// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>

/// Catches what the states of the dialog log, and passes every other message on.
class TraceLog : public QObject
{
    Q_OBJECT

public:
    /// One at a time.
    explicit TraceLog(QObject *parent = nullptr);
    ~TraceLog() override;

Q_SIGNALS:
    void line(const QString &text);
};
