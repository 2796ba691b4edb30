// SPDX-License-Identifier: BSD-3-Clause
#include "boardselectormodel.h"

#include "tablewalk_p.h"

#include <hostapi/icore.h>

#include <QScopeGuard>
#include <QTimer>
#include <QVector>

#include <optional>

struct BoardSelectorModel::Private
{
    QVector<Data> readRows(const BoardSelectorModel *model) const;
    Data readRow(const Record &record, const QString &stockCode) const;
    boardid boardOf(const Record &record) const;

    QTimer report;
    QVector<Data> rows;
    Table *const table = ICore::instance()->table(QStringLiteral("boards"));
    const int stockIdColumn = table->columnIndex(QStringLiteral("stock_id"));
    const int boardIdColumn = table->columnIndex(QStringLiteral("board_id"));
    const int nameColumn = table->columnIndex(QStringLiteral("name"));
    const int codeColumn = table->columnIndex(QStringLiteral("board_code"));
    boardlist filterBoards;
    bool forPositions = false;
};

BoardSelectorModel::BoardSelectorModel(QObject *parent)
    : CheckListModel(parent), d(std::make_unique<Private>())
{
    d->report.setParent(this);
    d->report.setSingleShot(true);
    d->report.setInterval(0);
    connect(&d->report, &QTimer::timeout, this, &BoardSelectorModel::sendBoardsChanged);
}

BoardSelectorModel::~BoardSelectorModel() = default;

void BoardSelectorModel::populate()
{
    std::optional<TableLock> lock;
    QVector<Data> rows;
    bool isNew = false;
    // Also when a receiver of the reset throws; while the table is still locked.
    const auto report = qScopeGuard([this, &isNew] {
        if (isNew)
            d->report.start();
    });
    const auto read = [&] {
        lock.emplace(d->table);
        rows = d->readRows(this);
    };
    refresh(read, [&] {
        d->rows.swap(rows);
        isNew = !isNew;
    });
}

QVector<BoardSelectorModel::Data>
BoardSelectorModel::Private::readRows(const BoardSelectorModel *model) const
{
    TableWalk::LastAnswer<int, QString> stockCode;
    const auto readOne = [this, &stockCode](const Record &record) {
        const int stockId = record.field(stockIdColumn).toInteger();
        return readRow(record, stockCode.of(stockId, [stockId] {
            return StockDirectory::i()->codeById(stockId);
        }));
    };
    QVector<Data> sorted = TableWalk::read<Data>(
        table, [model](const Record &record) { return model->filter(record); }, readOne);
    TableWalk::sortLaterFirst(sorted.begin(), sorted.end(), [](const Data &a, const Data &b) {
        return a.board.stock_id != b.board.stock_id ? a.board.stock_id < b.board.stock_id
                                                    : a.boardCode < b.boardCode;
    });
    return sorted;
}

boardid BoardSelectorModel::Private::boardOf(const Record &record) const
{
    return {record.field(stockIdColumn).toInteger(), record.field(boardIdColumn).toInteger()};
}

bool BoardSelectorModel::filter(const Record &record) const
{
    const boardid board = d->boardOf(record);
    if (d->forPositions && !BoardDirectory::i()->isPositionById(board.stock_id, board.board_id))
        return false;
    return d->filterBoards.isEmpty() || d->filterBoards.contains(board);
}

BoardSelectorModel::Data BoardSelectorModel::read(const Record &record) const
{
    const int stockId = record.field(d->stockIdColumn).toInteger();
    return d->readRow(record, StockDirectory::i()->codeById(stockId));
}

BoardSelectorModel::Data BoardSelectorModel::Private::readRow(const Record &record,
                                                              const QString &stockCode) const
{
    Data data;
    data.name = record.field(nameColumn).toString();
    data.boardCode = record.field(codeColumn).toString();
    data.stockCode = stockCode;
    data.board = boardOf(record);
    return data;
}

Record BoardSelectorModel::at(int row) const
{
    if (row < 0 || row >= d->rows.size())
        return Record();
    const Record key(d->table);
    key.field(d->stockIdColumn) = d->rows.at(row).board.stock_id;
    key.field(d->boardIdColumn) = d->rows.at(row).board.board_id;
    const TableLock lock(d->table);
    return d->table->masterIndex()->find(key);
}

void BoardSelectorModel::setFilterBoards(const boardlist &boards)
{
    d->filterBoards = boards;
}

void BoardSelectorModel::setForPositions(bool forPositions)
{
    d->forPositions = forPositions;
}

QVariant BoardSelectorModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= d->rows.size() || index.column() != 0)
        return {};
    const Data &row = d->rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return row.name;
    case KeyRole:
        return QStringLiteral("%1,%2").arg(row.board.stock_id).arg(row.board.board_id);
    case StockIdRole:
        return row.board.stock_id;
    case BoardIdRole:
        return row.board.board_id;
    case StockCodeRole:
        return row.stockCode;
    case BoardCodeRole:
        return row.boardCode;
    default:
        return checkData(index, role);
    }
}

void BoardSelectorModel::rowCheckChanged()
{
    d->report.start();
}

void BoardSelectorModel::sendBoardsChanged()
{
    Boards keys;
    const bool enable = TableWalk::addChecked(d->rows, &Data::board, &keys);
    Q_EMIT boardsChanged(enable, keys);
}

int BoardSelectorModel::listSize() const
{
    return d->rows.size();
}

bool BoardSelectorModel::isChecked(int row) const
{
    return d->rows.at(row).checked;
}

void BoardSelectorModel::setChecked(int row, bool checked)
{
    d->rows[row].checked = checked;
}
