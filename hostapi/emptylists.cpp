// SPDX-License-Identifier: BSD-3-Clause
#include "emptylists_p.h"

#include <QDebug>
#include <QSet>

#include <mutex>

namespace {

struct Said
{
    std::mutex mutex;
    QSet<QString> causes;
};

Said &said()
{
    static Said said;
    return said;
}

bool isNew(const QString &cause)
{
    const std::lock_guard<std::mutex> guard(said().mutex);
    if (said().causes.contains(cause))
        return false;
    said().causes.insert(cause);
    return true;
}

} // namespace

void EmptyLists::warn(const QString &cause)
{
    if (isNew(cause))
        qWarning().noquote() << cause;
}

void EmptyLists::forget()
{
    const std::lock_guard<std::mutex> guard(said().mutex);
    said().causes.clear();
}
