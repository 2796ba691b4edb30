// SPDX-License-Identifier: BSD-3-Clause
#include "embeddedindex_p.h"

EmbeddedIndex::EmbeddedIndex(const Table *table, const TableContent *content)
    : m_table(table), m_content(content)
{
}

Record EmbeddedIndex::find(const Record &key) const
{
    RowData *row = key.isNull() ? nullptr : m_content->find(key.row());
    return row ? Record(m_table, row) : Record();
}
