// SPDX-License-Identifier: BSD-3-Clause
#include "boardid.h"

#include <QStringList>

QString boardListToString(const boardlist &boards)
{
    QStringList items;
    for (const boardid board : boards)
        items << QStringLiteral("%1,%2").arg(board.stock_id).arg(board.board_id);
    return items.join(QLatin1Char(';'));
}

boardlist boardListFromString(const QString &text, bool *ok)
{
    boardlist boards;
    *ok = true;
    if (text.isEmpty())
        return boards;
    const QStringList items = text.split(QLatin1Char(';'));
    for (const QString &item : items) {
        const QStringList ids = item.split(QLatin1Char(','));
        bool stockOk = false;
        bool boardOk = false;
        if (ids.size() == 2)
            boards.append({ids.first().toInt(&stockOk), ids.last().toInt(&boardOk)});
        if (!stockOk || !boardOk) {
            *ok = false;
            return {};
        }
    }
    return boards;
}
