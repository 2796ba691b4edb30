// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/field.h>

#include <atomic>
#include <utility>

class Table;

/// What every row of a host begins with; the host's own struct derives from it. The count is
/// that of the references held: by the table's content one, by each Record one.
struct RowData
{
    std::atomic<int> references{0};
};

/// A row of a table, held for as long as the Record lives: a row that has left the table
/// meanwhile stays readable. References are counted atomically, and the row whose last
/// reference is dropped is given back with Table::freeRow(). A Record must not outlive its
/// table.
class HOSTAPI_EXPORT Record
{
public:
    /// The null record.
    Record() = default;
    /// An empty row shaped like the table (every cell null), to be filled as a look-up key.
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
    /// The table and the row that it holds; null for the null record (which may know its table).
    const Table *table() const { return m_table; }
    RowData *row() const { return m_row; }
    /// The cell of a column; a null cell when the record is null or the column is -1, which is
    /// what a table has no column for (see Table::columnIndex()).
    Field field(int column) const;

private:
    void giveBack() noexcept;

    const Table *m_table = nullptr;
    RowData *m_row = nullptr;
};
