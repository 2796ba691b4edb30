// SPDX-License-Identifier: BSD-3-Clause
#include "stockselectorbox_code.h"

#include "selectorproxymodel.h"

#include <hostapi/icore.h>

#include <QStandardItemModel>

#include <memory>

namespace {

constexpr int IdRole = Qt::UserRole;
constexpr int NameRole = Qt::UserRole + 1;

SelectorProxyModel *makeList()
{
    auto *const list = new SelectorProxyModel;
    list->setKeyRoles({Qt::DisplayRole, IdRole});
    return list;
}

} // namespace

StockSelectorBox_Code::StockSelectorBox_Code(QWidget *parent)
    : SelectorBox({makeList(), {IdRole}, {IdRole}, Qt::CaseSensitive, /*inSourceOrder=*/true},
                  parent)
{
    populate();
    startReporting();
}

void StockSelectorBox_Code::populate()
{
    Table *const table = ICore::instance()->table(QStringLiteral("stocks"));
    const int idColumn = table->columnIndex(QStringLiteral("stock_id"));
    const int nameColumn = table->columnIndex(QStringLiteral("name"));
    const int codeColumn = table->columnIndex(QStringLiteral("stock_code"));

    const TableLock lock(table);
    auto model = std::make_unique<QStandardItemModel>();
    for (const Record &record : *table->masterIndex()) {
        auto item = std::make_unique<QStandardItem>(record.field(codeColumn).toString());
        item->setData(record.field(idColumn).toInteger(), IdRole);
        item->setData(record.field(nameColumn).toString(), NameRole);
        model->appendRow(item.release());
    }
    if (list()) {
        clearChoice();
        model->setParent(this);
        setListSource(model.release());
    }
    const bool hasCome = currentIndex() >= 0;
    if (!hasCome && count() > 0)
        choose(0);
    Q_EMIT setProp_StockId(QStringLiteral("0"));
    if (hasCome)
        item_activated(currentIndex());
}

void StockSelectorBox_Code::prop_StockId_changed(const QString &id)
{
    chooseKey(IdRole, id.toInt());
}

void StockSelectorBox_Code::reportNone(const QString &text)
{
    if (!isWaitingFor(IdRole))
        Q_EMIT setProp_StockId(QStringLiteral("0"));
    Q_EMIT setProp_Stock(QString());
    if (text.isEmpty() && currentIndex() >= 0)
        setCurrentIndex(-1);
}

void StockSelectorBox_Code::reportText(const QString &text)
{
    Q_EMIT setProp_Stock(text);
}

void StockSelectorBox_Code::item_activated(int index)
{
    const QVariant id = dataOfRow(index, IdRole);
    Q_EMIT setProp_StockId(QString::number(id.toInt()));
    Q_EMIT setProp_StockCode(id.toString());
}
