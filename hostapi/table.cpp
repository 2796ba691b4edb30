// SPDX-License-Identifier: BSD-3-Clause
#include "table.h"

#include "workerwalk.h"

Table::~Table() = default;

TableLock::TableLock(Table *table) : m_table(table)
{
    WorkerWalk::lockFirst(m_table);
}

TableLock::~TableLock()
{
    WorkerWalk::unlock(m_table);
}
