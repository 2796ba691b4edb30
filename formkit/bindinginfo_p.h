// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>

/// What a class says about binding its objects, in its Q_CLASSINFO("Properties", …); see
/// Properties.
class BindingInfo
{
public:
    /// What the object's own class says or inherits.
    explicit BindingInfo(const QObject *object) : BindingInfo(object->metaObject()) {}
    /// The same, but for "super", which leads on to the base class.
    static BindingInfo followingSuper(const QObject *object);

    bool bindsProperties() const { return m_info == "this" || endsWalk(); }
    /// The children are not bound.
    bool endsWalk() const { return m_info == "thisOnly"; }
    /// The properties of an object of the class that are bound: those that the class itself
    /// declares, and after them those of its other classes that "fields" names; none when it binds
    /// none.
    QList<QByteArray> propertiesOf(const QObject *object) const;

    /// The hub names that the dynamic properties "field" and "fields" of an object of the class
    /// give to its properties.
    using Aliases = QMap<QByteArray, QString>;
    Aliases aliasesOf(const QObject *object) const;
    /// The property that is the object's own value: the user property, or `Value` where there is no
    /// readable one.
    static QByteArray mainPropertyOf(const QObject *object);

private:
    explicit BindingInfo(const QMetaObject *meta);
    static QList<QStringList> fieldsOf(const QObject *object);

    const QMetaObject *m_meta;
    QByteArray m_info;
};
