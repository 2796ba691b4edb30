#include "stockselectorbox_code.h"

#include "stockselectormodel.h"

#include <hostapi/icore.h>

namespace {

constexpr int IdRole = Qt::UserRole;
constexpr int NameRole = Qt::UserRole + 1;

} // namespace

StockSelectorBox_Code::StockSelectorBox_Code(QWidget *parent) : ComboBox(parent)
{
    populate();
    setCurrentIndex(-1);
    setEditText(QString());
    chooseWhenLeft();
    connect(this, &QComboBox::editTextChanged, this, &StockSelectorBox_Code::edit_changed);
    connect(this, QOverload<int>::of(&QComboBox::activated), this,
            &StockSelectorBox_Code::item_activated);
}

void StockSelectorBox_Code::populate()
{
    Table *const table = ICore::instance()->table(QStringLiteral("stocks"));
    const int idColumn = table->columnIndex(QStringLiteral("stock_id"));
    const int nameColumn = table->columnIndex(QStringLiteral("name"));
    const int codeColumn = table->columnIndex(QStringLiteral("stock_code"));

    const TableLock lock(table);
    QVector<StockSelectorModel::Data> rows;
    for (const Record &record : *table->masterIndex())
        rows.append({true, record.field(idColumn).toInteger(), record.field(nameColumn).toString(),
                     record.field(codeColumn).toString()});
    clear();
    for (const StockSelectorModel::Data &row : qAsConst(rows)) {
        addItem(row.code, row.id);
        setItemData(count() - 1, row.name, NameRole);
    }
    if (count() > 0)
        setCurrentIndex(0);
    emit setProp_StockId(QStringLiteral("0"));
}

void StockSelectorBox_Code::prop_StockId_changed(const QString &id)
{
    chooseRow(findData(QString::number(id.toInt()), IdRole, Qt::MatchFixedString));
}

void StockSelectorBox_Code::edit_changed(const QString &text)
{
    markUnmatched(false);
    const int row = findText(text, Qt::MatchExactly);
    if (row >= 0) {
        item_activated(row);
    } else {
        emit setProp_StockId(QStringLiteral("0"));
        emit setProp_Stock(QString());
        if (text.isEmpty())
            setCurrentIndex(-1);
    }
    emit setProp_Stock(text);
}

void StockSelectorBox_Code::item_activated(int index)
{
    const QVariant id = itemData(index, IdRole);
    emit setProp_StockId(QString::number(id.toInt()));
    emit setProp_StockCode(id.toString());
}
