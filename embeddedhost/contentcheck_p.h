// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tablecontent_p.h"

/// Checks that keys and unique columns have no duplicates, and that each row that must have a
/// parent has one. The tables are in the order of ReferenceSchema::tables(), their rows in key
/// order. Throws Exception for the first fault. `pause` is called every now and then, and may
/// throw too.
void checkContent(const QString &file, const std::vector<TableContent> &tables,
                  const std::function<void()> &pause);
