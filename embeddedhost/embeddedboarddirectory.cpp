// SPDX-License-Identifier: BSD-3-Clause
#include "embeddedboarddirectory_p.h"

EmbeddedBoardDirectory::EmbeddedBoardDirectory(const Snapshot<DirectoryData> *data) : m_data(data)
{
}

QString EmbeddedBoardDirectory::codeById(int stockId, int boardId) const
{
    const auto data = m_data->get();
    const DirectoryData::Board *board = data->board({stockId, boardId});
    return board ? board->code : QString();
}

int EmbeddedBoardDirectory::idByCode(const QString &stockCode, const QString &boardCode) const
{
    return m_data->get()->boardId(stockCode, boardCode);
}

bool EmbeddedBoardDirectory::checkFlagsById(int stockId, int boardId, qint64 flags) const
{
    const auto data = m_data->get();
    const DirectoryData::Board *board = data->board({stockId, boardId});
    return board && (board->flags & flags) != 0;
}

bool EmbeddedBoardDirectory::isPositionById(int stockId, int boardId) const
{
    const auto data = m_data->get();
    const DirectoryData::Board *board = data->board({stockId, boardId});
    return board && board->isPosition;
}
