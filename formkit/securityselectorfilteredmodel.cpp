// SPDX-License-Identifier: BSD-3-Clause
#include "securityselectorfilteredmodel.h"

#include "securityselectormodel.h"

#include <typeinfo>

struct SecuritySelectorFilteredModel::Private
{
    bool showsAll() const { return stockCode.isEmpty() || boardCode.isEmpty(); }

    QString stockCode;
    QString boardCode;
};

SecuritySelectorFilteredModel::SecuritySelectorFilteredModel(QObject *parent)
    : SelectorProxyModel(parent), d(std::make_unique<Private>())
{
}

SecuritySelectorFilteredModel::~SecuritySelectorFilteredModel() = default;

void SecuritySelectorFilteredModel::setStockBoard(const QString &stockCode,
                                                  const QString &boardCode)
{
    if (stockCode == d->stockCode && boardCode == d->boardCode)
        return;
    QString otherStock = stockCode;
    QString otherBoard = boardCode;
    const auto exchange = [&] {
        d->stockCode.swap(otherStock);
        d->boardCode.swap(otherBoard);
    };
    // Neither before nor after is there a condition.
    if (d->showsAll() && (stockCode.isEmpty() || boardCode.isEmpty()))
        exchange();
    else
        changeFilter(exchange);
}

bool SecuritySelectorFilteredModel::filterAcceptsRow(int sourceRow,
                                                     const QModelIndex &sourceParent) const
{
    if (sourceParent.isValid() || d->showsAll())
        return true;
    const auto *securities = qobject_cast<SecuritySelectorModel *>(sourceModel());
    if (!securities)
        return false;
    const SecuritySelectorModel::Data &row = securities->row(sourceRow);
    return row.stockCode == d->stockCode && row.boardCode == d->boardCode;
}

RowRange SecuritySelectorFilteredModel::candidateRows() const
{
    const auto *securities = qobject_cast<SecuritySelectorModel *>(sourceModel());
    if (!securities || d->showsAll())
        return SelectorProxyModel::candidateRows();
    return securities->rowsOfBoard(d->stockCode, d->boardCode);
}

bool SecuritySelectorFilteredModel::acceptsCandidates() const
{
    return typeid(*this) == typeid(SecuritySelectorFilteredModel) &&
           (d->showsAll() || qobject_cast<SecuritySelectorModel *>(sourceModel()));
}
