// SPDX-License-Identifier: BSD-3-Clause
#include "securityrows_p.h"

#include "tablewalk_p.h"

#include <hostapi/directories.h>

#include <QMap>

#include <tuple>

namespace {

using Model = SecuritySelectorModel;
using BoardKey = std::pair<QString, QString>;

// The names of rows, to be compared. Most differ in their first four characters, which are kept
// together, so that the names need not be fetched from all over the memory.
class Names
{
public:
    explicit Names(const QVector<SecurityRows::Data> &rows) : m_rows(rows)
    {
        m_starts.reserve(size_t(rows.size()));
        for (const SecurityRows::Data &row : rows)
            m_starts.push_back(startOf(row.secName));
    }
    bool isBefore(int a, int b) const
    {
        const quint64 startA = m_starts[size_t(a)];
        const quint64 startB = m_starts[size_t(b)];
        return startA != startB ? startA < startB : m_rows.at(a).secName < m_rows.at(b).secName;
    }

private:
    static quint64 startOf(const QString &name)
    {
        quint64 start = 0;
        for (int i = 0; i < 4; ++i)
            start = start << 16 | (i < name.size() ? name.at(i).unicode() : 0);
        return start;
    }

    const QVector<SecurityRows::Data> &m_rows;
    std::vector<quint64> m_starts;
};

} // namespace

QVariant SecurityRows::data(int row, int role) const
{
    const Data &data = m_rows.at(row);
    switch (role) {
    case Model::StockCodeRole:
        return data.stockCode;
    case Model::BoardIdRole:
        return data.boardId;
    case Model::BoardCodeRole:
        return data.boardCode;
    case Model::SecurityIdRole:
        return qlonglong(data.secId);
    case Model::SecurityNameRole:
        return data.secName;
    case Model::SecurityCodeRole:
        return data.secCode;
    case Model::BaseCodeRole:
        return data.baseCode;
    default:
        return {};
    }
}

RowRange SecurityRows::rowsOfBoard(const QString &stockCode, const QString &boardCode) const
{
    const auto isBefore = [](const Board &board, const BoardKey &key) {
        return std::tie(board.stockCode, board.boardCode) < std::tie(key.first, key.second);
    };
    const auto board = std::lower_bound(m_boards.begin(), m_boards.end(),
                                        BoardKey(stockCode, boardCode), isBefore);
    if (board == m_boards.end() || board->stockCode != stockCode || board->boardCode != boardCode)
        return {0, 0};
    return board->rows;
}

SecurityColumns::SecurityColumns(const Table *table)
    : stockId(table->columnIndex(QStringLiteral("stock_id")))
    , boardId(table->columnIndex(QStringLiteral("board_id")))
    , secId(table->columnIndex(QStringLiteral("sec_id")))
    , secName(table->columnIndex(QStringLiteral("sec_name")))
    , secCode(table->columnIndex(QStringLiteral("sec_code")))
    , baseCode(table->columnIndex(QStringLiteral("base_code")))
    , session(table->columnIndex(QStringLiteral("sess_id")))
{
}

boardid SecurityColumns::boardOf(const Record &record) const
{
    return {record.field(stockId).toInteger(), record.field(boardId).toInteger()};
}

SecurityRows::Data SecurityColumns::read(const Record &record) const
{
    SecurityRows::Data data;
    data.boardId = record.field(boardId).toInteger();
    data.secId = record.field(secId).toInteger64();
    data.secName = record.field(secName).toString();
    data.secCode = record.field(secCode).toString();
    data.baseCode = record.field(baseCode).toString();
    return data;
}

SecurityReading::Codes SecurityReading::codesOf(boardid board)
{
    return {StockDirectory::i()->codeById(board.stock_id),
            BoardDirectory::i()->codeById(board.stock_id, board.board_id)};
}

void SecurityReading::begin(int count)
{
    m_rows.clear();
    m_rows.reserve(count);
    m_runs.clear();
}

void SecurityReading::add(const Record &record)
{
    const boardid board = m_columns.boardOf(record);
    m_rows.append(m_columns.read(record));
    if (m_runs.empty() || m_runs.back().board != board)
        m_runs.push_back({board, {int(m_rows.size()) - 1, 0}});
    m_runs.back().rows.last = m_rows.size();
}

void SecurityReading::end()
{
    m_boards.clear();
    for (const Run &run : m_runs)
        m_boards.push_back(run.board);
    std::sort(m_boards.begin(), m_boards.end());
    m_boards.erase(std::unique(m_boards.begin(), m_boards.end()), m_boards.end());
}

// Boards are few and their rows mostly read one after the other, so to sort each board by name
// costs a fraction of a sort of all rows. Several boards may have the same codes.
SecurityRows SecurityReading::takeOrdered(const std::vector<Codes> &codes)
{
    QMap<BoardKey, std::vector<RowRange>> runs;
    for (const Run &run : m_runs) {
        const auto board = std::lower_bound(m_boards.begin(), m_boards.end(), run.board);
        const Codes &code = codes[size_t(board - m_boards.begin())];
        for (int row = run.rows.first; row < run.rows.last; ++row) {
            m_rows[row].stockCode = code.stock;
            m_rows[row].boardCode = code.board;
        }
        runs[{code.stock, code.board}].push_back(run.rows);
    }

    std::vector<int> order;
    order.reserve(size_t(m_rows.size()));
    QVector<SecurityRows::Board> boards;
    {
        const Names names(m_rows);
        const auto byName = [&names](int a, int b) { return names.isBefore(a, b); };
        for (auto board = runs.cbegin(); board != runs.cend(); ++board) {
            const int first = int(order.size());
            for (const RowRange &run : *board) {
                for (int row = run.first; row < run.last; ++row)
                    order.push_back(row);
            }
            TableWalk::sortLaterFirst(order.begin() + first, order.end(), byName);
            boards.append({board.key().first, board.key().second, {first, int(order.size())}});
        }
    }
    TableWalk::arrange(&m_rows, std::move(order));
    m_runs = {};
    return {std::exchange(m_rows, {}), boards};
}
