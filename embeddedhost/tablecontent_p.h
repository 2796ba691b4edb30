// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "rowlayout_p.h"

#include <functional>

/// The rows that a table holds at one time, with a reference to each.
class TableContent
{
public:
    explicit TableContent(const RowLayout *layout);
    TableContent(TableContent &&other) noexcept;
    TableContent &operator=(TableContent &&other) = delete;
    ~TableContent();

    const RowLayout &layout() const { return *m_layout; }
    int count() const { return int(m_rows.size()); }
    RowData *at(int position) const { return m_rows[size_t(position)]; }
    void reserve(int rows) { m_rows.reserve(size_t(rows)); }

    /// Adds an empty row at the end.
    RowData *append();
    /// Brings the rows into key order. `pause` is called every now and then, and may throw: then
    /// all rows are still there, in any order.
    void sort(const std::function<void()> &pause);
    /// The row with the same key, or null. The rows must be in key order.
    RowData *find(RowData *key) const;

    void swap(TableContent &other) noexcept { m_rows.swap(other.m_rows); }

private:
    const RowLayout *m_layout;
    std::vector<RowData *> m_rows;
};
