// SPDX-License-Identifier: BSD-3-Clause
#include "stockselectorbox.h"

#include "selectorproxymodel.h"
#include "stockselectormodel.h"

namespace {

SelectorProxyModel *makeList()
{
    auto *const list = new SelectorProxyModel;
    list->setKeyRoles({StockSelectorModel::IdRole, StockSelectorModel::CodeRole});
    return list;
}

} // namespace

StockSelectorBox::StockSelectorBox(QWidget *parent)
    : SelectorBox({makeList(),
                   {StockSelectorModel::IdRole},
                   {StockSelectorModel::IdRole, StockSelectorModel::CodeRole}},
                  parent)
{
    setSourceModel(new StockSelectorModel(this));
    startReporting();
}

void StockSelectorBox::setSourceModel(StockSelectorModel *model)
{
    takeSource(model);
}

QString StockSelectorBox::getStock() const
{
    return currentText();
}

QString StockSelectorBox::getStockId() const
{
    return QString::number(dataOfText(StockSelectorModel::IdRole).toInt());
}

QString StockSelectorBox::getStockCode() const
{
    return dataOfText(StockSelectorModel::CodeRole).toString();
}

void StockSelectorBox::setStockId(const QString &id)
{
    chooseKey(StockSelectorModel::IdRole, id.toInt());
}

void StockSelectorBox::setStockCode(const QString &code)
{
    chooseKey(StockSelectorModel::CodeRole, code);
}

void StockSelectorBox::reportNone(const QString &text)
{
    if (!isWaitingFor(StockSelectorModel::IdRole))
        Q_EMIT stockIdChanged(QStringLiteral("0"));
    if (!isWaitingFor(StockSelectorModel::CodeRole))
        Q_EMIT stockCodeChanged(QString());
    if (text.isEmpty() && currentIndex() >= 0)
        setCurrentIndex(-1);
}

void StockSelectorBox::reportText(const QString &text)
{
    Q_EMIT stockChanged(text);
}

void StockSelectorBox::item_activated(int index)
{
    const int id = dataOfRow(index, StockSelectorModel::IdRole).toInt();
    const QString code = dataOfRow(index, StockSelectorModel::CodeRole).toString();
    Q_EMIT stockIdChanged(QString::number(id));
    Q_EMIT stockCodeChanged(code);
}
