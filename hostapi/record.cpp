// SPDX-License-Identifier: BSD-3-Clause
#include "record.h"

#include "table.h"

Record::Record(const Table *table) : Record(table, table->newRow()) {}

Field Record::field(int column) const
{
    return m_row && column >= 0 ? m_table->dataPtr(m_row, column) : Field();
}

void Record::giveBack() noexcept
{
    m_table->freeRow(m_row);
}
