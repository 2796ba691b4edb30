// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "bindings_p.h"

/// What the program has set in a hub and the user has not changed since, and whether the form
/// shows it; see Properties::unshown().
class ProgramValues
{
public:
    /// The hub's bindings outlive this.
    explicit ProgramValues(const Bindings &bindings) : m_bindings(bindings) {}

    void set(const QString &name, const QString &value) { m_values.insert(name, value); }
    void userChanged(const QString &name) { m_values.remove(name); }
    /// The user has changed what decides the values that an object shows. Names that it reports,
    /// and whose values are not what the program set, become the user's if all properties show
    /// them. For example, the user chose another board, and the security box is empty, as it was
    /// before.
    void leaveToUser(QObject *object, const Values &held);
    /// A property has answered the write of its name with a content of its own, which counts as
    /// set if it is the same in another form.
    void answered(const QString &name, const QString &content);
    /// The names whose value is not the one that the hub holds or a bound property reads.
    QStringList unshown(const Values &held) const;

    /// An empty text, and "0" for an id.
    bool isNothing(const QString &name, const QString &value) const;
    bool isSame(const QString &name, const QString &one, const QString &other) const;
    /// Whether what a property answers to a value that it was given is the same in another form.
    /// An empty content is another value, and so is another number, or an id in answer to none.
    bool isFormOf(const QString &name, const QString &given, const QString &content) const;

private:
    bool isId(const QString &name) const;
    bool isShown(const QString &name, const QString &held) const;
    bool reads(const Bindings::Key &key, const QString &name, const QString &value) const;

    const Bindings &m_bindings;
    QMap<QString, QString> m_values;
};
