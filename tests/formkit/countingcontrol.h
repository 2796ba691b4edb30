// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QWidget>

#include <functional>

/// The simplest control that a hub can bind. It counts what the hub writes into it and who listens
/// to it. With the property "letters" (upper or lower) it changes what is written to that case.
class CountingControl : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changed USER true)
    Q_PROPERTY(QString Plain MEMBER plain)
    Q_PROPERTY(QString Fixed READ objectName)

public:
    using QWidget::QWidget;

    QString getValue() const { return onRead ? onRead() : value; }
    void setValue(const QString &text);
    /// Changes the value as a user would.
    void enter(const QString &text);
    /// The hub's writes since the last call.
    int takeWrites() { return std::exchange(m_writes, 0); }
    int listeners() const { return receivers(SIGNAL(changed())); }
    /// All of that: "text writes=1 listeners=1".
    QString state();

    std::function<void()> onWrite;   ///< what it does besides at each write
    std::function<QString()> onRead; ///< answers in place of its value

Q_SIGNALS:
    void changed();

private:
    QString value, plain;
    int m_writes = 0;
};
