// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/field.h>

#include <atomic>
#include <utility>

class Table;

/// The base of a host's rows. The table's content holds one reference to each of its rows, and each
/// Record holds one.
struct RowData
{
    std::atomic<int> references{0};
};

/// Holds a row of a table: the row stays readable after it has left the table. References are
/// counted atomically; when the last one is dropped, Table::freeRow() takes the row. A Record must
/// not outlive its table.
class HOSTAPI_EXPORT Record
{
public:
    /// The null record.
    Record() = default;
    /// A new row of the table with every cell null, to be filled as a look-up key.
    explicit Record(const Table *table);
    /// Another reference to a row.
    Record(const Table *table, RowData *row) : m_table(table), m_row(row)
    {
        if (m_row)
            m_row->references.fetch_add(1, std::memory_order_relaxed);
    }
    Record(const Record &other) : Record(other.m_table, other.m_row) {}
    Record(Record &&other) noexcept
        : m_table(other.m_table), m_row(std::exchange(other.m_row, nullptr))
    {
    }
    Record &operator=(Record other) noexcept
    {
        std::swap(m_table, other.m_table);
        std::swap(m_row, other.m_row);
        return *this;
    }
    ~Record()
    {
        if (m_row && m_row->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            giveBack();
    }

    /// True when it holds no row.
    bool isNull() const { return !m_row; }
    /// The table and the row. A null record has no row, but may have a table.
    const Table *table() const { return m_table; }
    RowData *row() const { return m_row; }
    /// The cell of a column. A null cell if the record is null, or the column -1, as
    /// Table::columnIndex() answers for a column that does not exist.
    Field field(int column) const;

private:
    void giveBack() noexcept;

    const Table *m_table = nullptr;
    RowData *m_row = nullptr;
};
