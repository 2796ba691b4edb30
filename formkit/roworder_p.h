// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "rowrange.h"

#include <QString>
#include <QVector>

#include <functional>
#include <utility>

/// The rows of a table in the order in which a list shows them: all of them or some, by their
/// texts ignoring case (as QString::compare() does; equal texts by row), or as the table has
/// them. Rows are those of the table, positions those of the list; both count from 0.
///
/// It keeps some numbers for each row but no texts: it asks for a text whenever it needs one.
class RowOrder
{
public:
    enum Direction { AsRead, Ascending, Descending };
    /// Equal texts for equal rows until move() is told otherwise.
    using TextOf = std::function<QString(int row)>;

    RowOrder() = default;
    /// Sorts the rows 0 to `count` - 1. None is shown yet.
    RowOrder(int count, TextOf textOf);

    /// Asks for the same texts elsewhere from now on.
    void setTexts(TextOf textOf) { m_textOf = std::move(textOf); }

    /// Shows these rows, which must ascend.
    void show(const QVector<int> &rows, Direction direction);
    /// Shows every row, in time that does not grow with them while the direction is ascending.
    void showAll(Direction direction);
    /// Must be told when the text of one row has changed. The list does not change: see
    /// isInPlace().
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
    /// Whether a row that is shown stands between neighbours that it belongs between.
    bool isInPlace(int row) const;

    /// The first position with a text; -1 for none.
    int positionOfText(const QString &text, Qt::CaseSensitivity sensitivity) const;
    /// How many of the rows shown have a text, ignoring case.
    int countOfText(const QString &text) const;
    /// The first position from one on whose text starts with `beginning`, ignoring case; with
    /// `wrap` then from the top. -1 for none. Only while the order is ascending.
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
    /// All rows in ascending order of their texts, and by row the place in that order.
    QVector<int> m_sorted;
    QVector<int> m_places;
    /// By position, the row.
    QVector<int> m_shown;
    Direction m_direction = AsRead;
    /// By row, less m_firstRow, the position, -1 for rows that are not shown; empty until it is
    /// first needed.
    mutable QVector<int> m_positions;
    mutable int m_firstRow = 0;
};
