// SPDX-License-Identifier: BSD-3-Clause
#include "programvalues_p.h"

#include <hostapi/decimal.h>

#include <algorithm>

namespace {

bool areDifferentNumbers(const QString &one, const QString &other)
{
    return decimal::canConvert(one, false) && decimal::canConvert(other, false) &&
           decimal(one) != decimal(other);
}

} // namespace

void ProgramValues::answered(const QString &name, const QString &content)
{
    const auto set = m_values.constFind(name);
    if (set != m_values.constEnd() && isFormOf(name, *set, content))
        m_values.insert(name, content);
}

bool ProgramValues::isFormOf(const QString &name, const QString &given,
                             const QString &content) const
{
    return !isNothing(name, content) && !(isId(name) && isNothing(name, given)) &&
           !areDifferentNumbers(given, content);
}

void ProgramValues::leaveToUser(QObject *object, const Values &held)
{
    const QStringList names = m_bindings.reportedNames(object);
    for (const QString &name : names) {
        if (m_values.value(name) != held[name] && isShown(name, held[name]))
            m_values.remove(name);
    }
}

QStringList ProgramValues::unshown(const Values &held) const
{
    QStringList names;
    const QMap<QString, QString> values = m_values;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (!isSame(it.key(), *it, held[it.key()]) || !isShown(it.key(), held[it.key()]))
            names << it.key();
    }
    return names;
}

bool ProgramValues::isShown(const QString &name, const QString &held) const
{
    const Bindings::Keys keys = m_bindings.keysOf(name);
    return std::all_of(keys.begin(), keys.end(), [&](const Bindings::Key &key) {
        return !m_bindings.isListenedTo(key) || !m_bindings.isAlive(key.object) ||
               reads(key, name, held);
    });
}

// In whatever type the property has.
bool ProgramValues::reads(const Bindings::Key &key, const QString &name, const QString &value) const
{
    try {
        const QMetaProperty property = propertyOf(key);
        const QVariant read = property.read(key.object);
        QVariant asRead(value);
        return (asRead.convert(read.userType()) && asRead == read) ||
               isSame(name, textOf(property, read), value);
    } catch (...) {
        return false;
    }
}

bool ProgramValues::isSame(const QString &name, const QString &one, const QString &other) const
{
    return one == other || (isNothing(name, one) && isNothing(name, other));
}

bool ProgramValues::isNothing(const QString &name, const QString &value) const
{
    return value.isEmpty() || (value == QLatin1String("0") && isId(name));
}

bool ProgramValues::isId(const QString &name) const
{
    const Bindings::Keys keys = m_bindings.keysOf(name);
    return std::any_of(keys.begin(), keys.end(), [this](const Bindings::Key &key) {
        return m_bindings.isAlive(key.object) && QByteArray(propertyOf(key).name()).endsWith("Id");
    });
}
