// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tablecontent_p.h"

#include <hostapi/index.h>

/// The master index of an embedded table: the table's rows, which are in key order.
class EmbeddedIndex : public MasterIndex
{
public:
    EmbeddedIndex(const Table *table, const TableContent *content);

    int count() const override { return m_content->count(); }
    Record at(int position) const override { return Record(m_table, m_content->at(position)); }
    Record find(const Record &key) const override;

private:
    const Table *m_table;
    const TableContent *m_content;
};
