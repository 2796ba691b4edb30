// SPDX-License-Identifier: BSD-3-Clause
#include "bindings_p.h"

#include <algorithm>
#include <limits>

namespace {

template <typename Map> void removeKeysOf(QObject *object, Map *map)
{
    auto it = map->lowerBound({object, std::numeric_limits<int>::min()});
    while (it != map->end() && it.key().object == object)
        it = map->erase(it);
}

} // namespace

void Bindings::bind(const QString &name, const Key &key)
{
    m_keys.insert(name, key);
    ++m_version;
    Bound &bound = m_bound[key.object];
    bound.object = key.object;
    bound.names.insert(name);
}

void Bindings::unbind(const QString &name, const Key &key)
{
    m_keys.remove(name, key);
    ++m_version;
    const auto isOfObject = [&](const Key &other) { return other.object == key.object; };
    const auto ofName = std::as_const(m_keys).equal_range(name);
    if (m_bound.contains(key.object) && std::none_of(ofName.first, ofName.second, isOfObject))
        m_bound[key.object].names.remove(name);
}

Bindings::Keys Bindings::keysOf(const QString &name) const
{
    Keys keys;
    for (auto it = m_keys.constFind(name); it != m_keys.constEnd() && it.key() == name; ++it)
        keys.append(*it);
    return keys;
}

void Bindings::listen(const QString &name, const Key &key)
{
    const QMetaProperty property = propertyOf(key);
    if (!property.hasNotifySignal())
        return;
    m_reporters[{key.object, property.notifySignalIndex()}] = key;
    m_names[key] = name;
}

void Bindings::stopListening(const Key &key)
{
    m_reporters.remove({key.object, propertyOf(key).notifySignalIndex()});
    m_names.remove(key);
}

QStringList Bindings::reportedNames(QObject *object) const
{
    QStringList names;
    const Key first{object, std::numeric_limits<int>::min()};
    for (auto it = m_names.lowerBound(first); it != m_names.cend() && it.key().object == object;
         ++it)
        names << *it;
    return names;
}

void Bindings::addObjectName(QObject *object, const QString &name)
{
    if (!m_objectNames.contains(object, name))
        m_objectNames.insert(object, name);
}

QStringList Bindings::objectNames(QObject *object) const
{
    return isAlive(object) ? m_objectNames.values(object) : QStringList();
}

QString Bindings::mainName(QObject *object) const
{
    return isAlive(object) ? m_mainNames.value(object) : QString();
}

QList<QObject *> Bindings::objectsOf(const QString &name) const
{
    QList<QObject *> objects;
    for (const Key &key : keysOf(name)) {
        if (isAlive(key.object) && !objects.contains(key.object))
            objects.prepend(key.object);
    }
    std::stable_partition(objects.begin(), objects.end(),
                          [&](QObject *object) { return mainName(object) == name; });
    return objects;
}

bool Bindings::isAlive(QObject *object) const
{
    const auto bound = m_bound.constFind(object);
    return bound != m_bound.constEnd() && bound->object;
}

void Bindings::forget(QObject *object)
{
    const Bound bound = m_bound.take(object);
    for (const QString &name : bound.names) {
        for (auto it = m_keys.find(name); it != m_keys.end() && it.key() == name;)
            it = it->object == object ? m_keys.erase(it) : it + 1;
    }
    ++m_version;
    removeKeysOf(object, &m_reporters);
    removeKeysOf(object, &m_names);
    m_objectNames.remove(object);
    m_mainNames.remove(object);
}

void Bindings::forgetDead(QObject *object)
{
    if (m_bound.contains(object) && !isAlive(object))
        forget(object);
}
