// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "referenceschema.h"

#include <hostapi/record.h>

#include <atomic>
#include <vector>

/// The memory layout of a table's rows. A row is one allocation: the reference count, 32 presence
/// bits (so at most 32 columns), and the cells, 32-bit ones last, so that there are no gaps. Cells
/// are 32-bit and 64-bit integers and strings.
class RowLayout
{
public:
    explicit RowLayout(const TableSchema &schema);
    Q_DISABLE_COPY(RowLayout)

    const TableSchema &schema() const { return m_schema; }

    /// A row with every cell null and no reference counted.
    RowData *make() const;
    void free(RowData *row) const;
    /// Drops a reference; frees the row with the last one.
    void release(RowData *row) const;
    /// The number of rows that are not freed yet.
    qint64 liveRows() const { return m_liveRows.load(std::memory_order_relaxed); }

    /// A cell of the row; a null cell for a column that does not exist.
    Field cell(RowData *row, int column) const;
    /// Stores a number that fits an integer cell.
    void setNumber(RowData *row, int column, qint64 value) const;
    /// Stores a text that fits a string cell, sharing its memory.
    void setText(RowData *row, int column, const QString &text) const;

    /// Compares by the columns, one after the other: less than, equal to or greater than 0.
    int compare(RowData *a, RowData *b, const QVector<int> &columns) const;

private:
    struct Row;

    TableSchema m_schema;
    std::vector<size_t> m_offsets;
    size_t m_size;
    mutable std::atomic<qint64> m_liveRows{0};
};
