// SPDX-License-Identifier: BSD-3-Clause
#include "stockselectormodel.h"

#include "tablewalk_p.h"

#include <hostapi/icore.h>

StockSelectorModel::StockSelectorModel(QObject *parent)
    : CheckListModel(parent)
    , m_table(ICore::instance()->table(QStringLiteral("stocks")))
    , m_idColumn(m_table->columnIndex(QStringLiteral("stock_id")))
    , m_nameColumn(m_table->columnIndex(QStringLiteral("name")))
    , m_codeColumn(m_table->columnIndex(QStringLiteral("stock_code")))
{
    connect(&m_timer, &QTimer::timeout, this, &StockSelectorModel::sendStocksChanged);
}

void StockSelectorModel::populate()
{
    QVector<Data> rows;
    const auto readRows = [this, &rows] {
        {
            const TableLock lock(m_table);
            rows = TableWalk::read<Data>(
                m_table, [this](const Record &record) { return filter(record); },
                [this](const Record &record) { return read(record); });
        }
        TableWalk::sortLaterFirst(rows.begin(), rows.end(),
                                  [](const Data &a, const Data &b) { return a.code < b.code; });
    };
    refresh(readRows, [this, &rows] { m_rows.swap(rows); });
}

bool StockSelectorModel::filter(const Record &) const
{
    return true;
}

StockSelectorModel::Data StockSelectorModel::read(const Record &record) const
{
    Data data;
    data.id = record.field(m_idColumn).toInteger();
    data.name = record.field(m_nameColumn).toString();
    data.code = record.field(m_codeColumn).toString();
    return data;
}

QVariant StockSelectorModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Data &row = m_rows.at(index.row());
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
    const bool enable = TableWalk::addChecked(m_rows, &Data::id, &keys);
    Q_EMIT stocksChanged(enable, keys);
}
