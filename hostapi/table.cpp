// SPDX-License-Identifier: BSD-3-Clause
#include "table.h"

Table::~Table() = default;

TableLock::TableLock(Table *table) : m_table(table)
{
    m_table->lock();
}

TableLock::~TableLock()
{
    m_table->unlock();
}
