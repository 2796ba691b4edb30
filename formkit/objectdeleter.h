// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QObject>
#include <QSet>

/// Deletes objects when the last of several owners is destroyed:
///     auto *deleter = new ObjectDeleter;
///     auto *model = new Model(deleter);   // the deleter deletes its children
///     deleter->addParent(firstForm);
///     deleter->addParent(secondForm);
/// After the last owner the deleter is deleted with its children at the next turn of the event loop
/// of its thread, even if an owner is added in between. A deleter that never had an owner is never
/// deleted.
class FORMKIT_EXPORT ObjectDeleter : public QObject
{
    Q_OBJECT

public:
    ObjectDeleter();

    /// Adds an owner. Once more does nothing. Null is refused with a warning.
    void addParent(QObject *owner);

private Q_SLOTS:
    void onDestroyed(QObject *obj);

private:
    /// Only for comparisons: an owner may be half destroyed.
    QSet<QObject *> m_owners;
};
