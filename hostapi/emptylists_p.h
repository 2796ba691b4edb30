// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Says on the log why lists stay empty.
namespace EmptyLists {

/// Warns, each text once until forget(). From any thread.
void warn(const QString &cause);
/// Lets everything be said again.
void forget();

} // namespace EmptyLists
