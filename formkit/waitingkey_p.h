// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QTimer>
#include <QVariant>

/// The id or code that a program last set for a box. It is kept to the end of that turn of the
/// event loop even if its row is found at once: an exchange set in the same turn still applies to
/// it. After that the owner drops it, unless it waits for its row.
class WaitingKey : public QObject
{
    Q_OBJECT

public:
    WaitingKey();

    /// Replaces the key before. A turn begins.
    void set(int role, const QVariant &key);
    void drop();
    /// Undoes a drop() of this key. No turn begins.
    void putBack(const QVariant &key);

    bool isSet() const { return m_key.isValid(); }
    /// It is set, in the turn of the event loop that is under way.
    bool isOfThisTurn() const { return isSet() && m_turn.isActive(); }
    int role() const { return m_role; }
    QVariant key() const { return m_key; }

Q_SIGNALS:
    /// The turn in which a key was set has ended. The key may have been dropped since.
    void turnEnded();

private:
    int m_role = 0;
    QVariant m_key;
    QTimer m_turn;
};
