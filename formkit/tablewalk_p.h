// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/table.h>

#include <QVector>

#include <algorithm>
#include <utility>
#include <vector>

/// What every selector model does with its table, and the check lists with their checks.
namespace TableWalk {

/// Walks a table that the caller has locked, in the order of the master index: the rows that
/// `read` makes of the records that `accepts`.
template <typename Row, typename Accept, typename Read>
QVector<Row> read(const Table *table, const Accept &accepts, const Read &read)
{
    QVector<Row> rows;
    rows.reserve(table->masterIndex()->count());
    for (const Record &record : *table->masterIndex()) {
        if (accepts(record))
            rows.append(read(record));
    }
    return rows;
}

/// Sorts rows so that among equals the later read stands first.
template <typename Iterator, typename Less>
void sortLaterFirst(Iterator begin, Iterator end, Less less)
{
    std::reverse(begin, end);
    std::stable_sort(begin, end, less);
}

/// Brings to each place the row that stands at the position which `order` names for it.
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

/// Remembers the last answer of a directory: the rows of one board mostly follow one another.
template <typename Key, typename Answer> class LastAnswer
{
public:
    /// `ask` gives the answer for a key other than the last one.
    template <typename Ask> const Answer &of(const Key &key, const Ask &ask)
    {
        if (!m_isKnown || !(m_key == key)) {
            m_answer = ask();
            m_key = key;
            m_isKnown = true;
        }
        return m_answer;
    }

private:
    Key m_key{};
    Answer m_answer;
    bool m_isKnown = false;
};

/// Adds the keys of the checked rows of a check list. True when some row is not checked.
template <typename Row, typename Key, typename Keys>
bool addChecked(const QVector<Row> &rows, Key Row::*key, Keys *keys)
{
    bool isFilter = false;
    for (const Row &row : rows) {
        if (row.checked)
            keys->add(row.*key);
        else
            isFilter = true;
    }
    return isFilter;
}

} // namespace TableWalk
