// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QTimer>
#include <QVariant>

/// A key that a program has set for a box. It is kept through the turn of the event loop in which
/// it was set, because what else is set in that turn belongs to it, in whatever order; after
/// that it is its owner's affair whether it goes on waiting.
class WaitingKey : public QObject
{
    Q_OBJECT

public:
    WaitingKey();

    /// In the place of the key before; a turn begins.
    void set(int role, const QVariant &key);
    void drop();
    /// The key that was dropped last waits on; no turn begins.
    void putBack(const QVariant &key);

    bool isSet() const { return m_key.isValid(); }
    /// Set in the turn that is under way.
    bool isOfThisTurn() const { return isSet() && m_turn.isActive(); }
    int role() const { return m_role; }
    QVariant key() const { return m_key; }

Q_SIGNALS:
    /// The turn in which the key was set has ended; the key may have been dropped since.
    void turnEnded();

private:
    int m_role = 0;
    QVariant m_key;
    QTimer m_turn;
};
