// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/properties.h>

#include <QHash>
#include <QMap>
#include <QMetaProperty>
#include <QMultiMap>
#include <QPointer>
#include <QSet>
#include <QVarLengthArray>

/// Which properties of which objects a hub has bound, under which names, and to which of them it
/// listens. It calls no object. If an object was destroyed without destroyed() reaching the hub (a
/// program may call disconnect() for all of its signals), another one may have its address later:
/// isAlive() tells, and forgetDead() makes room for the new one.
class Bindings
{
public:
    using Key = Properties::Key;
    using Keys = QVarLengthArray<Key, 16>;

    /// Binds a property of a living object under a name, once more for each call.
    void bind(const QString &name, const Key &key);
    /// Undoes every bind() of the property under the name.
    void unbind(const QString &name, const Key &key);
    bool isBound(const QString &name, const Key &key) const { return m_keys.contains(name, key); }
    /// The properties bound under a name, the latest first.
    Keys keysOf(const QString &name) const;
    /// Changes with every change of what is bound.
    int version() const { return m_version; }

    /// From now on the property's notify signal reports changes of the name. Does nothing for a
    /// property without one.
    void listen(const QString &name, const Key &key);
    void stopListening(const Key &key);
    bool isListenedTo(const Key &key) const { return m_names.contains(key); }
    /// The property whose notify signal this is (an object and a method index); without object
    /// when the hub does not listen to it.
    Key reporter(const Key &signal) const { return m_reporters.value(signal); }
    /// The name that changes of the property are reported under.
    QString nameOf(const Key &key) const { return m_names.value(key); }
    /// The names that changes of the object are reported under.
    QStringList reportedNames(QObject *object) const;

    /// The names that connectAll() has used for an object, each once, the latest first.
    void addObjectName(QObject *object, const QString &name);
    QStringList objectNames(QObject *object) const;
    /// The objects that have such names, once for each name.
    QList<QObject *> namedObjects() const { return m_objectNames.keys(); }
    /// The name of the object's own value.
    void setMainName(QObject *object, const QString &name) { m_mainNames.insert(object, name); }
    QString mainName(QObject *object) const;
    /// The names that anything is bound under, ascending.
    QStringList names() const { return m_keys.uniqueKeys(); }
    /// The living objects bound under the name, those whose own value it is first.
    QList<QObject *> objectsOf(const QString &name) const;

    /// Whether the object is bound, or was, and has not been destroyed since.
    bool isAlive(QObject *object) const;
    void forget(QObject *object);
    void forgetDead(QObject *object);

private:
    struct Bound
    {
        QPointer<QObject> object;
        /// The names in m_keys under which it stands, so that it is forgotten in time that does
        /// not grow with the form.
        QSet<QString> names;
    };

    QMultiMap<QString, Key> m_keys;
    QMap<Key, Key> m_reporters;
    QMap<Key, QString> m_names;
    QMultiMap<QObject *, QString> m_objectNames;
    QHash<QObject *, QString> m_mainNames;
    QHash<QObject *, Bound> m_bound;
    int m_version = 0;
};

inline QMetaProperty propertyOf(const Properties::Key &key)
{
    return key.object->metaObject()->property(key.index);
}

/// The text of a value that the property has: for an enumeration the number, as Qt 5 writes it,
/// where Qt 6 would write the name.
inline QString textOf(const QMetaProperty &property, const QVariant &value)
{
    return property.isEnumType() ? QString::number(value.toInt()) : value.toString();
}
