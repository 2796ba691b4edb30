// SPDX-License-Identifier: BSD-3-Clause
#include "boardselectorfilteredmodel.h"

#include "boardselectormodel.h"

#include <hostapi/directories.h>

struct BoardSelectorFilteredModel::Private
{
    QString stockCode;
    QChar secType;
    qlonglong flagsOn = 0;
    qlonglong flagsOff = 0;
};

BoardSelectorFilteredModel::BoardSelectorFilteredModel(QObject *parent)
    : SelectorProxyModel(parent), d(std::make_unique<Private>())
{
}

BoardSelectorFilteredModel::~BoardSelectorFilteredModel() = default;

void BoardSelectorFilteredModel::setStockCode(const QString &stockCode)
{
    setCondition(d->stockCode, stockCode);
}

void BoardSelectorFilteredModel::setStockId(int id)
{
    const QString stockCode = StockDirectory::i()->codeById(id);
    if (stockCode != d->stockCode)
        setStockCode(stockCode);
}

void BoardSelectorFilteredModel::setSecTypeFilter(QChar secType)
{
    if (secType != d->secType)
        setCondition(d->secType, secType);
}

void BoardSelectorFilteredModel::setBoardFlagsOnFilter(qlonglong boardFlagsOn)
{
    setCondition(d->flagsOn, boardFlagsOn);
}

void BoardSelectorFilteredModel::setBoardFlagsOffFilter(qlonglong boardFlagsOff)
{
    setCondition(d->flagsOff, boardFlagsOff);
}

bool BoardSelectorFilteredModel::filterAcceptsRow(int sourceRow,
                                                  const QModelIndex &sourceParent) const
{
    if (sourceParent.isValid())
        return true;
    const QModelIndex row = sourceModel()->index(sourceRow, 0);
    if (!d->stockCode.isEmpty() &&
        row.data(BoardSelectorModel::StockCodeRole).toString() != d->stockCode)
        return false;
    const int stockId = row.data(BoardSelectorModel::StockIdRole).toInt();
    const int boardId = row.data(BoardSelectorModel::BoardIdRole).toInt();
    const BoardDirectory *boards = BoardDirectory::i();
    if (d->flagsOff != 0 && boards->checkFlagsById(stockId, boardId, d->flagsOff))
        return false;
    return d->flagsOn == 0 || boards->checkFlagsById(stockId, boardId, d->flagsOn);
}
