// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tablecontent_p.h"

/// Checks what only the whole of the tables shows: keys and unique columns without duplicates,
/// and a parent for each row that must have one. The tables stand in the order of
/// ReferenceSchema::tables(), their rows in key order. Throws Exception for the first fault.
/// `pause` is called every now and then, and may throw too.
void checkContent(const QString &file, const std::vector<TableContent> &tables,
                  const std::function<void()> &pause);
