// SPDX-License-Identifier: BSD-3-Clause
#include "objectdeleter.h"

#include <QDebug>

ObjectDeleter::ObjectDeleter() = default;

void ObjectDeleter::addParent(QObject *owner)
{
    if (!owner) {
        qWarning() << "ObjectDeleter::addParent: no owner";
        return;
    }
    m_owners.insert(owner);
    connect(owner, &QObject::destroyed, this, &ObjectDeleter::onDestroyed);
}

void ObjectDeleter::onDestroyed(QObject *obj)
{
    m_owners.remove(obj);
    // Queued, as the owner may live in another thread and is still being destroyed.
    if (m_owners.isEmpty())
        QMetaObject::invokeMethod(this, "deleteLater", Qt::QueuedConnection);
}
