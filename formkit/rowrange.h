// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// A run of rows, `first` to `last` - 1.
struct RowRange
{
    /// The first row, and the one after the last.
    int first;
    int last;
};
