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
    const bool showedAll = showsAll();
    m_stockCode = stockCode;
    m_boardCode = boardCode;
    if (!showedAll || !showsAll())
        invalidate();
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

SelectorProxyModel::RowRange SecuritySelectorFilteredModel::candidateRows() const
{
    const auto *securities = qobject_cast<SecuritySelectorModel *>(sourceModel());
    if (!securities || showsAll())
        return SelectorProxyModel::candidateRows();
    const SecuritySelectorModel::RowRange rows = securities->rowsOfBoard(m_stockCode, m_boardCode);
    return {rows.first, rows.last};
}
