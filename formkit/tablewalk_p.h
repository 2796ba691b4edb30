#pragma once

#include <hostapi/table.h>

#include <QVector>

#include <algorithm>
#include <utility>
#include <vector>

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

// Brings to each place the row that stands at the position which `order` names for it.
template <typename Row> void arrange(QVector<Row> *rows, std::vector<int> order)
{
    Row *const at = rows->data();
    for (int start = 0; start < rows->size(); ++start) {
        if (order[size_t(start)] == start)
            continue;
        Row lifted = std::move(at[start]);
        int place = start;
        for (int from = order[size_t(place)]; from != start; from = order[size_t(place)]) {
            at[place] = std::move(at[from]);
            order[size_t(place)] = place;
            place = from;
        }
        at[place] = std::move(lifted);
        order[size_t(place)] = place;
    }
}

} // namespace TableWalk
