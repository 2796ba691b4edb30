// SPDX-License-Identifier: BSD-3-Clause
#include "stockselectormodel.h"

#include "tablewalk_p.h"

#include <hostapi/icore.h>

struct StockSelectorModel::Private
{
    Table *const table = ICore::instance()->table(QStringLiteral("stocks"));
    const int idColumn = table->columnIndex(QStringLiteral("stock_id"));
    const int nameColumn = table->columnIndex(QStringLiteral("name"));
    const int codeColumn = table->columnIndex(QStringLiteral("stock_code"));
    QVector<Data> rows;
};

StockSelectorModel::StockSelectorModel(QObject *parent)
    : CheckListModel(parent), d(std::make_unique<Private>())
{
    connect(&m_timer, &QTimer::timeout, this, &StockSelectorModel::sendStocksChanged);
}

StockSelectorModel::~StockSelectorModel() = default;

void StockSelectorModel::populate()
{
    QVector<Data> rows;
    const auto readRows = [this, &rows] {
        {
            const TableLock lock(d->table);
            rows = TableWalk::read<Data>(
                d->table, [this](const Record &record) { return filter(record); },
                [this](const Record &record) { return read(record); });
        }
        TableWalk::sortLaterFirst(rows.begin(), rows.end(),
                                  [](const Data &a, const Data &b) { return a.code < b.code; });
    };
    refresh(readRows, [this, &rows] { d->rows.swap(rows); });
}

bool StockSelectorModel::filter(const Record &) const
{
    return true;
}

StockSelectorModel::Data StockSelectorModel::read(const Record &record) const
{
    Data data;
    data.id = record.field(d->idColumn).toInteger();
    data.name = record.field(d->nameColumn).toString();
    data.code = record.field(d->codeColumn).toString();
    return data;
}

QVariant StockSelectorModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= d->rows.size())
        return {};
    const Data &row = d->rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return row.name;
    case IdRole:
        return row.id;
    case CodeRole:
        return row.code;
    default:
        return checkData(index, role);
    }
}

void StockSelectorModel::sendStocksChanged()
{
    Stocks keys;
    const bool enable = TableWalk::addChecked(d->rows, &Data::id, &keys);
    Q_EMIT stocksChanged(enable, keys);
}

int StockSelectorModel::listSize() const
{
    return d->rows.size();
}

bool StockSelectorModel::isChecked(int row) const
{
    return d->rows.at(row).checked;
}

void StockSelectorModel::setChecked(int row, bool checked)
{
    d->rows[row].checked = checked;
}
