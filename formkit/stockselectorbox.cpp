#include "stockselectorbox.h"

#include "stockselectormodel.h"

#include <QCompleter>
#include <QSortFilterProxyModel>

StockSelectorBox::StockSelectorBox(QWidget *parent)
    : ComboBox(parent), m_proxy(new QSortFilterProxyModel(this))
{
    setModel(m_proxy);
    completer()->setModel(m_proxy);
    comboBoxValidator()->setModel(m_proxy);
    setSourceModel(new StockSelectorModel);
    setEditText(QString());
    connect(this, &QComboBox::editTextChanged, this, &StockSelectorBox::edit_changed);
    connect(this, QOverload<int>::of(&QComboBox::activated), this,
            &StockSelectorBox::item_activated);
}

void StockSelectorBox::setSourceModel(StockSelectorModel *model)
{
    const QString chosen = getStockId();
    model->setParent(this);
    model->populate();
    QAbstractItemModel *const before = m_proxy->sourceModel();
    m_proxy->setSourceModel(model);
    if (before != model)
        delete before;
    m_proxy->sort(0, Qt::AscendingOrder);
    // QComboBox has chosen the first row of the new rows.
    setCurrentIndex(-1);
    if (chosen != QLatin1String("0"))
        setStockId(chosen);
}

QString StockSelectorBox::getStock() const
{
    return currentText();
}

// The data of the row whose name is the current text, in any letter case; invalid for none.
QVariant StockSelectorBox::dataOfText(int role) const
{
    const int row = findText(currentText(), Qt::MatchFixedString);
    return row < 0 ? QVariant() : itemData(row, role);
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
    chooseRow(findData(id.toInt(), StockSelectorModel::IdRole, Qt::MatchFixedString));
}

void StockSelectorBox::setStockCode(const QString &code)
{
    chooseRow(findData(code, StockSelectorModel::CodeRole, Qt::MatchFixedString));
}

void StockSelectorBox::edit_changed(const QString &text)
{
    const int row = findText(text, Qt::MatchExactly);
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
