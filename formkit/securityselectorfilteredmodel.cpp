// SPDX-License-Identifier: BSD-3-Clause
#include "securityselectorfilteredmodel.h"

#include "securityselectormodel.h"

SecuritySelectorFilteredModel::SecuritySelectorFilteredModel(QObject *parent)
    : SelectorProxyModel(parent)
{
}

void SecuritySelectorFilteredModel::setStockBoard(const QString &stockCode,
                                                  const QString &boardCode)
{
    if (stockCode == m_stockCode && boardCode == m_boardCode)
        return;
    QString otherStock = stockCode;
    QString otherBoard = boardCode;
    const auto exchange = [&] {
        m_stockCode.swap(otherStock);
        m_boardCode.swap(otherBoard);
    };
    // Neither before nor after is there a condition.
    if (showsAll() && (stockCode.isEmpty() || boardCode.isEmpty()))
        exchange();
    else
        changeFilter(exchange);
}

bool SecuritySelectorFilteredModel::filterAcceptsRow(int sourceRow,
                                                     const QModelIndex &sourceParent) const
{
    if (sourceParent.isValid() || showsAll())
        return true;
    const auto *securities = qobject_cast<SecuritySelectorModel *>(sourceModel());
    if (!securities)
        return false;
    const SecuritySelectorModel::Data &row = securities->row(sourceRow);
    return row.stockCode == m_stockCode && row.boardCode == m_boardCode;
}

RowRange SecuritySelectorFilteredModel::candidateRows() const
{
    const auto *securities = qobject_cast<SecuritySelectorModel *>(sourceModel());
    if (!securities || showsAll())
        return SelectorProxyModel::candidateRows();
    return securities->rowsOfBoard(m_stockCode, m_boardCode);
}
