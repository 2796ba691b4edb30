// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/properties.h>

#include <QPointer>

/// A hub's write of one name to its properties, while it is under way. A property that answers with
/// another value starts a further write inside this one, which then has less left to do.
class NameWrite
{
public:
    using Key = Properties::Key;

    /// `innermost` is the hub's innermost write, null while there is none; this one becomes it.
    NameWrite(QObject *hub, NameWrite **innermost, const QString &name);
    ~NameWrite();
    Q_DISABLE_COPY(NameWrite)

    const QString &name() const { return m_name; }
    /// False when the hub has been destroyed during the write.
    bool isHubAlive() const { return m_hub; }
    /// Whether the property is still to get the value.
    bool isLeftFor(const Key &key) const;

    /// Tells the writes of the name, from `innermost` outwards, that a property has answered with
    /// another value, or that the program has set one (no property). False when properties have
    /// answered too often, which ends these writes.
    static bool supersede(NameWrite *innermost, const QString &name, const Key &answer);

private:
    const QPointer<QObject> m_hub;
    NameWrite **const m_innermost;
    NameWrite *const m_outer;
    const QString m_name;
    bool m_isSuperseded = false;
    Key m_answer;
    int m_answers = 0;
};
