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
    // Queued, since the owner is still being destroyed and may live in another thread.
    if (m_owners.isEmpty())
        QMetaObject::invokeMethod(this, "deleteLater", Qt::QueuedConnection);
}
