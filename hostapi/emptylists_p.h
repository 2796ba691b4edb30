// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Warns in the log why lists stay empty.
namespace EmptyLists {

/// Warns once of each cause, until forget(). Any thread may call it.
void warn(const QString &cause);
/// From now on each cause is warned of again.
void forget();

} // namespace EmptyLists
