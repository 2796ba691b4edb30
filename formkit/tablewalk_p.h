// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/table.h>

#include <QVector>

#include <algorithm>
#include <utility>
#include <vector>

/// What the selector models share: reading a table, sorting the rows, collecting the checked ones.
namespace TableWalk {

/// Reads a table, which the caller has locked, in the order of its master index: `read` makes a row
/// of each record for which `accepts` is true.
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

/// Sorts rows. Those that compare equal are put in the reverse order of reading.
template <typename Iterator, typename Less>
void sortLaterFirst(Iterator begin, Iterator end, Less less)
{
    std::reverse(begin, end);
    std::stable_sort(begin, end, less);
}

/// Reorders rows without a copy: the row at `order[i]` comes to i.
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

/// Remembers the last answer of a directory. The rows of a board mostly follow one another, so that
/// the directory need not be asked for each.
template <typename Key, typename Answer> class LastAnswer
{
public:
    /// The answer for the key; `ask` is called for it if the key is not that of the last call.
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

/// Adds the keys of the checked rows to `keys`. True if a row is not checked.
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
