#include "stockselectorbox.h"

#include "selectorproxymodel.h"
#include "stockselectormodel.h"

StockSelectorBox::StockSelectorBox(QWidget *parent)
    : SelectorBox(new SelectorProxyModel, {StockSelectorModel::IdRole}, Qt::CaseSensitive, parent)
{
    list()->setKeyRoles({StockSelectorModel::IdRole, StockSelectorModel::CodeRole});
    setSourceModel(new StockSelectorModel(this));
    startReporting();
}

void StockSelectorBox::setSourceModel(StockSelectorModel *model)
{
    if (!model)
        return;
    model->setParent(this);
    model->populate();
    setListSource(model);
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

void StockSelectorBox::edit_changed(const QString &text)
{
    const int row = rowOfTypedText();
    if (row >= 0) {
        item_activated(row);
    } else {
        emit stockIdChanged(QStringLiteral("0"));
        emit stockCodeChanged(QString());
        if (text.isEmpty())
            setCurrentIndex(-1);
    }
    emit stockChanged(text);
}

void StockSelectorBox::item_activated(int index)
{
    const int id = itemData(index, StockSelectorModel::IdRole).toInt();
    const QString code = itemData(index, StockSelectorModel::CodeRole).toString();
    emit stockIdChanged(QString::number(id));
    emit stockCodeChanged(code);
}
