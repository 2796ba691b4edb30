// SPDX-License-Identifier: BSD-3-Clause
#include "bindinginfo_p.h"

#include <QDebug>
#include <QMetaProperty>
#include <QStringList>

BindingInfo::BindingInfo(const QMetaObject *meta) : m_meta(meta)
{
    const int index = meta->indexOfClassInfo("Properties");
    if (index >= 0)
        m_info = meta->classInfo(index).value();
}

BindingInfo BindingInfo::followingSuper(const QObject *object)
{
    BindingInfo info(object);
    while (info.m_info == "super" && info.m_meta->superClass())
        info = BindingInfo(info.m_meta->superClass());
    return info;
}

// Pairs of a hub name and a property; an empty part is none.
QList<QStringList> BindingInfo::fieldsOf(const QObject *object)
{
    QList<QStringList> fields;
    const QString pairs = object->property("fields").toString();
    for (const QString &pair : pairs.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        fields << pair.split(QLatin1Char('='));
    return fields;
}

QList<QByteArray> BindingInfo::propertiesOf(const QObject *object) const
{
    QList<QByteArray> names;
    if (!bindsProperties())
        return names;
    for (int i = m_meta->propertyOffset(); i < m_meta->propertyCount(); ++i)
        names << m_meta->property(i).name();
    for (const QStringList &field : fieldsOf(object)) {
        const QByteArray property = field.value(1).toLatin1();
        if (object->metaObject()->indexOfProperty(property) >= 0 && !names.contains(property))
            names << property;
    }
    return names;
}

QByteArray BindingInfo::mainPropertyOf(const QObject *object)
{
    const QMetaProperty user = object->metaObject()->userProperty();
    return user.isReadable() ? QByteArray(user.name()) : "Value";
}

BindingInfo::Aliases BindingInfo::aliasesOf(const QObject *object) const
{
    Aliases aliases;
    if (object->dynamicPropertyNames().contains("field"))
        aliases.insert(mainPropertyOf(object), object->property("field").toString());
    const QList<QByteArray> bound = propertiesOf(object);
    for (const QStringList &field : fieldsOf(object)) {
        const QByteArray property = field.value(1).toLatin1();
        if (bound.contains(property))
            aliases.insert(property, field.first());
        else
            qWarning() << "Properties::connectAll: no property for" << field.join(QLatin1Char('='))
                       << "in the fields of" << object;
    }
    return aliases;
}
