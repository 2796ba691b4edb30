// SPDX-License-Identifier: BSD-3-Clause
#include "roworder_p.h"

#include "foldedtext_p.h"

#include <algorithm>
#include <numeric>

RowOrder::RowOrder(int count, TextOf textOf)
    : m_textOf(std::move(textOf))
    , m_sorted(FoldedText::ascending(count, m_textOf))
    , m_places(m_sorted.size())
{
    for (int place = 0; place < m_places.size(); ++place)
        m_places[m_sorted.at(place)] = place;
}

void RowOrder::show(const QVector<int> &rows, Direction direction)
{
    setShown(direction == AsRead ? rows : ascending(rows), direction);
}

void RowOrder::showAll(Direction direction)
{
    QVector<int> rows = m_sorted;
    if (direction == AsRead)
        std::iota(rows.begin(), rows.end(), 0);
    setShown(rows, direction);
}

void RowOrder::setShown(const QVector<int> &rows, Direction direction)
{
    m_shown = rows;
    m_direction = direction;
    if (direction == Descending)
        reverse();
    // clear() would keep the memory, and copy it first if it is shared.
    m_positions = {};
}

QVector<int> RowOrder::ascending(const QVector<int> &rows) const
{
    if (rows.size() == m_sorted.size())
        return m_sorted;
    QVector<int> ordered;
    ordered.reserve(rows.size());
    if (rows.size() > m_sorted.size() / 8) {
        QVector<bool> isWanted(m_sorted.size(), false);
        for (const int row : rows)
            isWanted[row] = true;
        std::copy_if(m_sorted.begin(), m_sorted.end(), std::back_inserter(ordered),
                     [&isWanted](int row) { return isWanted.at(row); });
    } else {
        for (const int row : rows)
            ordered.append(m_places.at(row));
        std::sort(ordered.begin(), ordered.end());
        for (int &place : ordered)
            place = m_sorted.at(place);
    }
    return ordered;
}

// Reverses the rows that are shown, but not those of equal texts among themselves.
void RowOrder::reverse()
{
    std::reverse(m_shown.begin(), m_shown.end());
    for (auto run = m_shown.begin(); run != m_shown.end();) {
        const int first = *run;
        const auto next = std::find_if(run, m_shown.end(), [this, first](int row) {
            return m_textOf(row).compare(m_textOf(first), Qt::CaseInsensitive) != 0;
        });
        std::reverse(run, next);
        run = next;
    }
}

void RowOrder::move(int row)
{
    const int from = m_places.at(row);
    if (isBetweenNeighbours(m_sorted, from, Ascending))
        return;
    m_sorted.remove(from);
    const auto next = std::lower_bound(m_sorted.begin(), m_sorted.end(), row,
                                       [this](int a, int b) { return compare(a, b) < 0; });
    const int to = int(next - m_sorted.begin());
    m_sorted.insert(to, row);
    for (int place = qMin(from, to); place <= qMax(from, to); ++place)
        m_places[m_sorted.at(place)] = place;
}

// Never 0 for two different rows: of equal texts the smaller row goes first.
int RowOrder::compare(int a, int b) const
{
    const int order = m_textOf(a).compare(m_textOf(b), Qt::CaseInsensitive);
    return order != 0 ? order : a - b;
}

bool RowOrder::isBetweenNeighbours(const QVector<int> &order, int position,
                                   Direction direction) const
{
    const auto inOrder = [&](int upper, int lower) {
        if (upper < 0 || lower >= order.size())
            return true;
        const int a = order.at(upper);
        const int b = order.at(lower);
        const int texts = m_textOf(a).compare(m_textOf(b), Qt::CaseInsensitive);
        return texts == 0 ? a < b : (texts < 0) == (direction == Ascending);
    };
    return inOrder(position - 1, position) && inOrder(position, position + 1);
}

bool RowOrder::isInPlace(int row) const
{
    return m_direction == AsRead || isBetweenNeighbours(m_shown, positionOf(row), m_direction);
}

QVector<int> RowOrder::rows() const
{
    if (m_direction == AsRead)
        return m_shown;
    invert();
    QVector<int> rows;
    rows.reserve(m_shown.size());
    for (int i = 0; i < m_positions.size(); ++i) {
        if (m_positions.at(i) >= 0)
            rows.append(m_firstRow + i);
    }
    return rows;
}

int RowOrder::positionOf(int row) const
{
    invert();
    return m_positions.value(row - m_firstRow, -1);
}

void RowOrder::invert() const
{
    if (!m_positions.isEmpty() || m_shown.isEmpty())
        return;
    if (m_shown.constData() == m_sorted.constData()) {
        m_firstRow = 0;
        m_positions = m_places;
        return;
    }
    const auto ends = std::minmax_element(m_shown.begin(), m_shown.end());
    m_firstRow = *ends.first;
    m_positions.fill(-1, *ends.second - m_firstRow + 1);
    for (int position = 0; position < m_shown.size(); ++position)
        m_positions[m_shown.at(position) - m_firstRow] = position;
}

QVector<int> RowOrder::positionsOf(const QVector<int> &rows) const
{
    QVector<int> positions;
    for (const int row : rows) {
        if (positionOf(row) >= 0)
            positions.append(positionOf(row));
    }
    std::sort(positions.begin(), positions.end());
    return positions;
}

// The first position whose text does not go before the given one; with `afterEqual` the first one
// after the rows of an equal text.
int RowOrder::firstPosition(const QString &text, bool afterEqual) const
{
    const auto goesBefore = [&](int row) {
        const int order = m_textOf(row).compare(text, Qt::CaseInsensitive);
        return order == 0 ? afterEqual : (order < 0) == (m_direction == Ascending);
    };
    return int(std::partition_point(m_shown.begin(), m_shown.end(), goesBefore) - m_shown.begin());
}

// The positions at which rows of a text, ignoring case, can be.
RowRange RowOrder::positionsOfText(const QString &text) const
{
    if (m_direction == AsRead)
        return {0, count()};
    return {firstPosition(text, false), firstPosition(text, true)};
}

int RowOrder::positionOfText(const QString &text, Qt::CaseSensitivity sensitivity) const
{
    const RowRange range = positionsOfText(text);
    for (int position = range.first; position < range.last; ++position) {
        if (textAt(position).compare(text, sensitivity) == 0)
            return position;
    }
    return -1;
}

int RowOrder::countOfText(const QString &text) const
{
    const RowRange range = positionsOfText(text);
    if (m_direction != AsRead)
        return range.last - range.first;
    return int(std::count_if(m_shown.begin(), m_shown.end(), [&](int row) {
        return m_textOf(row).compare(text, Qt::CaseInsensitive) == 0;
    }));
}

// Rows whose texts start alike are neighbours.
int RowOrder::positionStartingWith(const QString &beginning, int from, bool wrap) const
{
    const int first = firstPosition(beginning, false);
    const auto starts = [&](int position) {
        return position < count() && textAt(position).startsWith(beginning, Qt::CaseInsensitive);
    };
    if (!starts(first))
        return -1;
    if (from > first && starts(from))
        return from;
    return from <= first || wrap ? first : -1;
}
