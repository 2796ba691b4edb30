#pragma once

#include <hostapi/table.h>

#include <QVector>

#include <algorithm>

// What every selector model does with its table.
namespace TableWalk {

// Walks a table that the caller has locked and reads the rows that the model accepts, in the
// order of the master index.
template <typename Row, typename Model> QVector<Row> read(const Table *table, const Model *model)
{
    QVector<Row> rows;
    rows.reserve(table->masterIndex()->count());
    for (const Record &record : *table->masterIndex()) {
        if (model->filter(record))
            rows.append(model->read(record));
    }
    return rows;
}

// Sorts rows so that among equals the later read stands first.
template <typename Iterator, typename Less>
void sortLaterFirst(Iterator begin, Iterator end, Less less)
{
    std::reverse(begin, end);
    std::stable_sort(begin, end, less);
}

} // namespace TableWalk
