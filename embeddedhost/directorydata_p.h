// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tablecontent_p.h"

#include <hostapi/boardid.h>

#include <QHash>

#include <map>

/// The exchanges and boards of one load, for the directories.
class DirectoryData
{
public:
    struct Board
    {
        QString code;
        qint64 flags = 0;
        bool isPosition = false;
    };

    DirectoryData() = default;
    DirectoryData(const TableContent &stocks, const TableContent &boards);

    QString stockCode(int stockId) const { return m_stockCodes.value(stockId); }
    int stockId(const QString &stockCode) const { return m_stockIds.value(stockCode); }
    /// Null for an unknown board.
    const Board *board(boardid id) const;
    int boardId(const QString &stockCode, const QString &boardCode) const;

private:
    QHash<int, QString> m_stockCodes;
    QHash<QString, int> m_stockIds;
    std::map<boardid, Board> m_boards;
    QHash<QPair<int, QString>, int> m_boardIds;
};
