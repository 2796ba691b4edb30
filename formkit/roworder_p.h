// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "rowrange.h"

#include <QString>
#include <QVector>

#include <functional>
#include <utility>

/// The order in which a list shows the rows of a table, or some of them: sorted by their texts as
/// QString::compare() does ignoring case, equal texts by row; or as in the table. A row is one of
/// the table, a position one of the list; both count from 0.
///
/// It keeps some numbers for each row but no texts; whenever it needs a text it asks for it.
class RowOrder
{
public:
    enum Direction { AsRead, Ascending, Descending };
    /// The text of a row. It must stay the same until move() is called for the row.
    using TextOf = std::function<QString(int row)>;

    RowOrder() = default;
    /// Sorts the rows 0 to `count` - 1, and shows none yet.
    RowOrder(int count, TextOf textOf);

    /// Asks for the texts in another way from now on; they must be the same.
    void setTexts(TextOf textOf) { m_textOf = std::move(textOf); }

    /// Shows these rows, which must be in ascending order.
    void show(const QVector<int> &rows, Direction direction);
    /// Shows every row; ascending, this takes a time that does not depend on their number.
    void showAll(Direction direction);
    /// To be called when the text of a row has changed. The row keeps its position in the list
    /// until the next show(), even if that is wrong now: see isInPlace().
    void move(int row);

    /// How many rows are shown.
    int count() const { return m_shown.size(); }
    /// The rows shown, ascending.
    QVector<int> rows() const;
    /// -1 for a position outside the list.
    int rowAt(int position) const { return m_shown.value(position, -1); }
    /// -1 for a row that is not shown.
    int positionOf(int row) const;
    /// The positions of those of the rows that are shown, ascending.
    QVector<int> positionsOf(const QVector<int> &rows) const;
    /// Whether the position of a shown row is right for its text.
    bool isInPlace(int row) const;

    /// The first position with a text; -1 for none.
    int positionOfText(const QString &text, Qt::CaseSensitivity sensitivity) const;
    /// How many of the rows shown have a text, ignoring case.
    int countOfText(const QString &text) const;
    /// The first position, not before `from`, whose text starts with `beginning`, ignoring case;
    /// with `wrap` the search goes on from the top. -1 for none. Only for an ascending order.
    int positionStartingWith(const QString &beginning, int from, bool wrap) const;

private:
    void setShown(const QVector<int> &rows, Direction direction);
    QVector<int> ascending(const QVector<int> &rows) const;
    void reverse();
    bool isBetweenNeighbours(const QVector<int> &order, int position, Direction direction) const;
    RowRange positionsOfText(const QString &text) const;
    int firstPosition(const QString &text, bool afterEqual) const;
    int compare(int a, int b) const;
    QString textAt(int position) const { return m_textOf(m_shown.at(position)); }
    void invert() const;

    TextOf m_textOf;
    /// All rows in ascending order of their texts.
    QVector<int> m_sorted;
    /// For each row its index in m_sorted.
    QVector<int> m_places;
    /// For each position the row.
    QVector<int> m_shown;
    Direction m_direction = AsRead;
    /// For each row from m_firstRow on the position, -1 if it is not shown; empty until it is
    /// needed.
    mutable QVector<int> m_positions;
    mutable int m_firstRow = 0;
};
