// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QMetaType>
#include <QString>
#include <QVector>

#include <algorithm>

/// A trading board: the id of its exchange and its own id. Boards are ordered by exchange, then by
/// board.
struct boardid
{
    qint32 stock_id = 0;
    qint32 board_id = 0;

    friend bool operator==(boardid a, boardid b)
    {
        return a.stock_id == b.stock_id && a.board_id == b.board_id;
    }
    friend bool operator!=(boardid a, boardid b) { return !(a == b); }
    friend bool operator<(boardid a, boardid b)
    {
        return a.stock_id != b.stock_id ? a.stock_id < b.stock_id : a.board_id < b.board_id;
    }
};
Q_DECLARE_TYPEINFO(boardid, Q_PRIMITIVE_TYPE);

/// Boards in the order in which they were listed: the content of a board-list cell.
using boardlist = QVector<boardid>;

/// "1,7;1,9": exchange and board ids joined by ',', boards joined by ';'.
HOSTAPI_EXPORT QString boardListToString(const boardlist &boards);
/// Reads what boardListToString() writes. For any other text `ok` is false and the list empty. An
/// empty text is an empty list.
HOSTAPI_EXPORT boardlist boardListFromString(const QString &text, bool *ok);

/// A list that is kept sorted ascending and free of duplicates.
template <typename T> class SortedList : public QVector<T>
{
public:
    /// Does nothing when the value is in the list.
    void add(T value)
    {
        const auto place = std::lower_bound(this->begin(), this->end(), value);
        if (place == this->end() || value < *place)
            this->insert(place, value);
    }
};

/// A board among those that a check list offers.
using Board = boardid;
/// The boards that a check list has chosen.
class Boards : public SortedList<Board>
{
};
/// The ids of the exchanges that a check list has chosen.
class Stocks : public SortedList<qint32>
{
};

Q_DECLARE_METATYPE(boardid)
Q_DECLARE_METATYPE(Boards)
Q_DECLARE_METATYPE(Stocks)
