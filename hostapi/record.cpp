#include "record.h"

#include "table.h"

#include <utility>

Record::Record(const Table *table) : Record(table, table->newRow()) {}

Record::Record(const Table *table, RowData *row) : m_table(table), m_row(row)
{
    if (m_row)
        m_row->references.fetch_add(1, std::memory_order_relaxed);
}

Record::Record(const Record &other) : Record(other.m_table, other.m_row) {}

Record::Record(Record &&other) noexcept
    : m_table(other.m_table), m_row(std::exchange(other.m_row, nullptr))
{
}

Record &Record::operator=(Record other) noexcept
{
    std::swap(m_table, other.m_table);
    std::swap(m_row, other.m_row);
    return *this;
}

Record::~Record()
{
    if (m_row && m_row->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        m_table->freeRow(m_row);
}

Field Record::field(int column) const
{
    return m_row ? m_table->dataPtr(m_row, column) : Field();
}
