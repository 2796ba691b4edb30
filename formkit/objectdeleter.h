// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QObject>
#include <QSet>

/// Keeps objects for as long as any of several owners lives:
///     auto *deleter = new ObjectDeleter;
///     auto *model = new Model(deleter);   // what is kept is the deleter's child
///     deleter->addParent(firstForm);
///     deleter->addParent(secondForm);
/// When the last owner has gone, the deleter goes with its children at the next pass of the event
/// loop of its thread, even if an owner was added in between. One without any owner never goes.
class FORMKIT_EXPORT ObjectDeleter : public QObject
{
    Q_OBJECT

public:
    ObjectDeleter();

    /// Waits for this owner too. Adding one twice is as good as once. Null is refused with a
    /// warning.
    void addParent(QObject *owner);

private Q_SLOTS:
    void onDestroyed(QObject *obj);

private:
    /// Only compared: what is in here may be half destroyed.
    QSet<QObject *> m_owners;
};
