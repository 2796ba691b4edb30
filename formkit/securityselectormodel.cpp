// SPDX-License-Identifier: BSD-3-Clause
#include "securityselectormodel.h"

#include "modelrefresh_p.h"
#include "tablewalk_p.h"

#include <hostapi/icore.h>
#include <hostapi/idecoder.h>
#include <hostapi/securitiessessionfilter.h>

#include <QMap>

#include <tuple>

namespace {

using BoardKey = std::pair<QString, QString>;

BoardKey keyOf(const SecuritySelectorModel::Data &data)
{
    return {data.stockCode, data.boardCode};
}

// The names of rows, to be compared. Most differ in their first four characters, which are kept
// together, so that the names need not be fetched from all over the memory.
class Names
{
public:
    explicit Names(const QVector<SecuritySelectorModel::Data> &rows) : m_rows(rows)
    {
        m_starts.reserve(size_t(rows.size()));
        for (const SecuritySelectorModel::Data &row : rows)
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

    const QVector<SecuritySelectorModel::Data> &m_rows;
    std::vector<quint64> m_starts;
};

} // namespace

bool SecuritySelectorModel::Data::operator<(const Data &other) const
{
    return std::tie(stockCode, boardCode, secName) <
           std::tie(other.stockCode, other.boardCode, other.secName);
}

SecuritySelectorModel::SecuritySelectorModel(QObject *parent)
    : QAbstractListModel(parent)
    , m_refresh(new ModelRefresh(this))
    , m_table(ICore::instance()->table(QStringLiteral("securities")))
    , m_stockIdColumn(m_table->columnIndex(QStringLiteral("stock_id")))
    , m_boardIdColumn(m_table->columnIndex(QStringLiteral("board_id")))
    , m_secIdColumn(m_table->columnIndex(QStringLiteral("sec_id")))
    , m_secNameColumn(m_table->columnIndex(QStringLiteral("sec_name")))
    , m_secCodeColumn(m_table->columnIndex(QStringLiteral("sec_code")))
    , m_baseCodeColumn(m_table->columnIndex(QStringLiteral("base_code")))
{
    updateSessionsFilter();
    connectDecoder();
}

SecuritySelectorModel::~SecuritySelectorModel() = default;

void SecuritySelectorModel::connectDecoder()
{
    const QList<QObject *> plugins = ICore::instance()->plugins();
    for (QObject *plugin : plugins) {
        if (qobject_cast<IDecoder *>(plugin)) {
            connect(plugin, SIGNAL(aNewSessions()), this, SLOT(aNewSessions()));
            return;
        }
    }
}

void SecuritySelectorModel::updateSessionsFilter()
{
    const int sessionColumn = m_table->columnIndex(QStringLiteral("sess_id"));
    const QList<int> keyColumns{m_stockIdColumn, sessionColumn};
    m_sessions = SecuritiesSessionFilter(m_table, sessionColumn, keyColumns, -1, nullptr).clone();
}

void SecuritySelectorModel::aNewSessions()
{
    updateSessionsFilter();
    populate();
}

void SecuritySelectorModel::populate()
{
    QVector<Data> rows;
    QVector<Group> groups;
    const auto read = [&] {
        rows = readRows();
        groups = sortByBoard(&rows);
    };
    m_refresh->run(read, [&] {
        m_rows.swap(rows);
        m_groups.swap(groups);
    });
}

QVector<SecuritySelectorModel::Data> SecuritySelectorModel::readRows() const
{
    TableWalk::LastAnswer<boardid, Codes> codes;
    const auto readOne = [this, &codes](const Record &record) {
        const boardid board = boardOf(record);
        return readRow(record, board, codes.of(board, [board] { return codesOf(board); }));
    };
    const TableLock lock(m_table);
    return TableWalk::read<Data>(
        m_table, [this](const Record &record) { return filter(record); }, readOne);
}

bool SecuritySelectorModel::filter(const Record &record) const
{
    return m_sessions->filter(record);
}

boardid SecuritySelectorModel::boardOf(const Record &record) const
{
    return {record.field(m_stockIdColumn).toInteger(), record.field(m_boardIdColumn).toInteger()};
}

SecuritySelectorModel::Codes SecuritySelectorModel::codesOf(boardid board)
{
    return {StockDirectory::i()->codeById(board.stock_id),
            BoardDirectory::i()->codeById(board.stock_id, board.board_id)};
}

SecuritySelectorModel::Data SecuritySelectorModel::read(const Record &record) const
{
    const boardid board = boardOf(record);
    return readRow(record, board, codesOf(board));
}

SecuritySelectorModel::Data SecuritySelectorModel::readRow(const Record &record, boardid board,
                                                           const Codes &codes) const
{
    Data data;
    data.boardId = board.board_id;
    data.stockCode = codes.stock;
    data.boardCode = codes.board;
    data.secId = record.field(m_secIdColumn).toInteger64();
    data.secName = record.field(m_secNameColumn).toString();
    data.secCode = record.field(m_secCodeColumn).toString();
    data.baseCode = record.field(m_baseCodeColumn).toString();
    return data;
}

// The order of operator<, the later read first among equals: boards are few and their
// securities mostly read one after the other, so to sort each board by name costs a fraction
// of a sort of them all.
QVector<SecuritySelectorModel::Group> SecuritySelectorModel::sortByBoard(QVector<Data> *rows)
{
    QMap<BoardKey, QVector<RowRange>> runs;
    for (int first = 0; first < rows->size();) {
        const Data &start = rows->at(first);
        int last = first + 1;
        while (last < rows->size() && rows->at(last).boardCode == start.boardCode &&
               rows->at(last).stockCode == start.stockCode)
            ++last;
        runs[keyOf(start)].append({first, last});
        first = last;
    }

    const Names names(*rows);
    const auto byName = [&names](int a, int b) { return names.isBefore(a, b); };
    std::vector<int> order;
    order.reserve(size_t(rows->size()));
    QVector<Group> groups;
    for (auto board = runs.cbegin(); board != runs.cend(); ++board) {
        const int first = int(order.size());
        for (const RowRange &run : *board) {
            for (int row = run.first; row < run.last; ++row)
                order.push_back(row);
        }
        TableWalk::sortLaterFirst(order.begin() + first, order.end(), byName);
        groups.append({board.key().first, board.key().second, {first, int(order.size())}});
    }
    TableWalk::arrange(rows, std::move(order));
    return groups;
}

SecuritySelectorModel::RowRange SecuritySelectorModel::rowsOfBoard(const QString &stockCode,
                                                                   const QString &boardCode) const
{
    const auto isBefore = [](const Group &group, const BoardKey &key) {
        return std::tie(group.stockCode, group.boardCode) < std::tie(key.first, key.second);
    };
    const auto group = std::lower_bound(m_groups.begin(), m_groups.end(),
                                        BoardKey(stockCode, boardCode), isBefore);
    if (group == m_groups.end() || group->stockCode != stockCode || group->boardCode != boardCode)
        return {0, 0};
    return group->rows;
}

void SecuritySelectorModel::setDefaultDataRole(ItemDataRole role)
{
    if (role == m_defaultDataRole)
        return;
    m_defaultDataRole = role;
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(m_rows.size() - 1));
}

int SecuritySelectorModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

Qt::ItemFlags SecuritySelectorModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled : Qt::NoItemFlags;
}

QVariant SecuritySelectorModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Data &row = m_rows.at(index.row());
    switch (role == Qt::DisplayRole || role == Qt::EditRole ? int(m_defaultDataRole) : role) {
    case StockCodeRole:
        return row.stockCode;
    case BoardIdRole:
        return row.boardId;
    case BoardCodeRole:
        return row.boardCode;
    case SecurityIdRole:
        return qlonglong(row.secId);
    case SecurityNameRole:
        return row.secName;
    case SecurityCodeRole:
        return row.secCode;
    case BaseCodeRole:
        return row.baseCode;
    default:
        return {};
    }
}
