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

QList<QByteArray> BindingInfo::properties() const
{
    QList<QByteArray> names;
    const int end = bindsProperties() ? m_meta->propertyCount() : 0;
    for (int i = m_meta->propertyOffset(); i < end; ++i)
        names << m_meta->property(i).name();
    return names;
}

BindingInfo::Aliases BindingInfo::aliasesOf(const QObject *object) const
{
    Aliases aliases;
    const QList<QByteArray> dynamic = object->dynamicPropertyNames();
    if (dynamic.contains("field")) {
        const QMetaProperty user = object->metaObject()->userProperty();
        const QByteArray property = user.isReadable() ? QByteArray(user.name()) : "Value";
        aliases.insert(property, object->property("field").toString());
    }
    if (!dynamic.contains("fields"))
        return aliases;
    const QList<QByteArray> bound = properties();
    const QStringList pairs = object->property("fields").toString().split(QLatin1Char(' '));
    for (const QString &pair : pairs) {
        const QStringList pieces = pair.split(QLatin1Char('='));
        const QByteArray property = pieces.value(1).toLatin1();
        if (bound.contains(property))
            aliases.insert(property, pieces.first());
        else if (!pair.isEmpty())
            qWarning() << "Properties::connectAll: no property for" << pair << "in the fields of"
                       << object;
    }
    return aliases;
}
