// SPDX-License-Identifier: BSD-3-Clause
#include "embeddedtable_p.h"

EmbeddedTable::EmbeddedTable(const TableSchema &schema, std::recursive_mutex *mutex)
    : m_layout(schema), m_content(&m_layout), m_index(this, &m_content), m_mutex(mutex)
{
}

int EmbeddedTable::columnIndex(const QString &column) const
{
    return m_layout.schema().columnIndex(column);
}
