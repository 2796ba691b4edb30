// SPDX-License-Identifier: BSD-3-Clause
#include "boardselectormodel.h"

#include "tablewalk_p.h"

#include <hostapi/icore.h>

#include <QScopeGuard>

#include <optional>

BoardSelectorModel::BoardSelectorModel(QObject *parent)
    : CheckListModel(parent)
    , m_table(ICore::instance()->table(QStringLiteral("boards")))
    , m_stockIdColumn(m_table->columnIndex(QStringLiteral("stock_id")))
    , m_boardIdColumn(m_table->columnIndex(QStringLiteral("board_id")))
    , m_nameColumn(m_table->columnIndex(QStringLiteral("name")))
    , m_codeColumn(m_table->columnIndex(QStringLiteral("board_code")))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &BoardSelectorModel::sendBoardsChanged);
}

void BoardSelectorModel::populate()
{
    std::optional<TableLock> lock;
    QVector<Data> rows;
    bool isNew = false;
    // Also when a receiver of the reset throws; while the table is still locked.
    const auto report = qScopeGuard([this, &isNew] {
        if (isNew)
            m_timer.start();
    });
    const auto read = [&] {
        lock.emplace(m_table);
        rows = readRows();
    };
    refresh(read, [&] {
        m_rows.swap(rows);
        isNew = !isNew;
    });
}

QVector<BoardSelectorModel::Data> BoardSelectorModel::readRows() const
{
    TableWalk::LastAnswer<int, QString> stockCode;
    const auto readOne = [this, &stockCode](const Record &record) {
        const int stockId = record.field(m_stockIdColumn).toInteger();
        return readRow(record, stockCode.of(stockId, [stockId] {
            return StockDirectory::i()->codeById(stockId);
        }));
    };
    QVector<Data> rows = TableWalk::read<Data>(
        m_table, [this](const Record &record) { return filter(record); }, readOne);
    TableWalk::sortLaterFirst(rows.begin(), rows.end(), [](const Data &a, const Data &b) {
        return a.board.stock_id != b.board.stock_id ? a.board.stock_id < b.board.stock_id
                                                    : a.boardCode < b.boardCode;
    });
    return rows;
}

boardid BoardSelectorModel::boardOf(const Record &record) const
{
    return {record.field(m_stockIdColumn).toInteger(), record.field(m_boardIdColumn).toInteger()};
}

bool BoardSelectorModel::filter(const Record &record) const
{
    const boardid board = boardOf(record);
    if (m_forPositions && !BoardDirectory::i()->isPositionById(board.stock_id, board.board_id))
        return false;
    return m_filterBoards.isEmpty() || m_filterBoards.contains(board);
}

BoardSelectorModel::Data BoardSelectorModel::read(const Record &record) const
{
    const int stockId = record.field(m_stockIdColumn).toInteger();
    return readRow(record, StockDirectory::i()->codeById(stockId));
}

BoardSelectorModel::Data BoardSelectorModel::readRow(const Record &record,
                                                     const QString &stockCode) const
{
    Data data;
    data.name = record.field(m_nameColumn).toString();
    data.boardCode = record.field(m_codeColumn).toString();
    data.stockCode = stockCode;
    data.board = boardOf(record);
    return data;
}

Record BoardSelectorModel::at(int row) const
{
    if (row < 0 || row >= m_rows.size())
        return Record();
    const Record key(m_table);
    key.field(m_stockIdColumn) = m_rows.at(row).board.stock_id;
    key.field(m_boardIdColumn) = m_rows.at(row).board.board_id;
    const TableLock lock(m_table);
    return m_table->masterIndex()->find(key);
}

void BoardSelectorModel::setFilterBoards(const boardlist &boards)
{
    m_filterBoards = boards;
}

void BoardSelectorModel::setForPositions(bool forPositions)
{
    m_forPositions = forPositions;
}

QVariant BoardSelectorModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size() || index.column() != 0)
        return {};
    const Data &row = m_rows.at(index.row());
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
    m_timer.start();
}

void BoardSelectorModel::sendBoardsChanged()
{
    Boards keys;
    const bool enable = TableWalk::addChecked(m_rows, &Data::board, &keys);
    Q_EMIT boardsChanged(enable, keys);
}
