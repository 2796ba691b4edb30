// SPDX-License-Identifier: BSD-3-Clause
#include "boardselectorfilteredmodel.h"

#include "boardselectormodel.h"

#include <hostapi/directories.h>

BoardSelectorFilteredModel::BoardSelectorFilteredModel(QObject *parent) : SelectorProxyModel(parent)
{
}

void BoardSelectorFilteredModel::setStockCode(const QString &stockCode)
{
    setCondition(m_stockCode, stockCode);
}

void BoardSelectorFilteredModel::setStockId(int id)
{
    const QString stockCode = StockDirectory::i()->codeById(id);
    if (stockCode != m_stockCode)
        setStockCode(stockCode);
}

void BoardSelectorFilteredModel::setSecTypeFilter(QChar secType)
{
    if (secType != m_secType)
        setCondition(m_secType, secType);
}

void BoardSelectorFilteredModel::setBoardFlagsOnFilter(qlonglong boardFlagsOn)
{
    setCondition(m_boardFlagsOn, boardFlagsOn);
}

void BoardSelectorFilteredModel::setBoardFlagsOffFilter(qlonglong boardFlagsOff)
{
    setCondition(m_boardFlagsOff, boardFlagsOff);
}

bool BoardSelectorFilteredModel::filterAcceptsRow(int sourceRow,
                                                  const QModelIndex &sourceParent) const
{
    if (sourceParent.isValid())
        return true;
    const QModelIndex row = sourceModel()->index(sourceRow, 0);
    if (!m_stockCode.isEmpty() &&
        row.data(BoardSelectorModel::StockCodeRole).toString() != m_stockCode)
        return false;
    const int stockId = row.data(BoardSelectorModel::StockIdRole).toInt();
    const int boardId = row.data(BoardSelectorModel::BoardIdRole).toInt();
    const BoardDirectory *boards = BoardDirectory::i();
    if (m_boardFlagsOff != 0 && boards->checkFlagsById(stockId, boardId, m_boardFlagsOff))
        return false;
    return m_boardFlagsOn == 0 || boards->checkFlagsById(stockId, boardId, m_boardFlagsOn);
}
