// SPDX-License-Identifier: BSD-3-Clause
#include "indexsort.h"

#include "icore.h"
#include "table.h"

#include <algorithm>

IndexSort::IndexSort(const QString &table, bool keepEqual)
    : m_table(ICore::instance()->table(table)), m_keepEqual(keepEqual)
{
}

void IndexSort::build()
{
    std::vector<Record> rows;
    {
        const TableLock lock(m_table);
        for (Record record : *m_table->masterIndex()) {
            if (filter(record))
                rows.push_back(std::move(record));
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [this](const Record &a, const Record &b) { return compare(a, b) < 0; });
    if (!m_keepEqual) {
        const auto equal = [this](const Record &a, const Record &b) { return compare(a, b) == 0; };
        rows.erase(std::unique(rows.begin(), rows.end(), equal), rows.end());
    }
    m_rows.swap(rows);
}
