// SPDX-License-Identifier: BSD-3-Clause
#include "support/testhost.h"

#include <hostapi/exception.h>
#include <hostapi/fieldstypes.h>

#include <QDebug>

#include <algorithm>

struct TestTable::Row : RowData
{
    struct Cell
    {
        qint32 small = 0;
        qint64 number = 0;
        double real = 0;
        decimal money;
        QString text;
        datetime moment;
        boardlist boards;
        quint32 presence = 0;
    };

    explicit Row(int columns) : cells(size_t(columns)) {}
    std::vector<Cell> cells;
};

TestTable::TestTable(const QString &name, const QStringList &columns,
                     const QVector<int> &keyColumns, const QVector<FieldType> &types)
    : m_name(name), m_columns(columns), m_keyColumns(keyColumns), m_types(types)
{
    for (const QString &column : types.isEmpty() ? columns : QStringList()) {
        const FieldType *known = Gexabus::GxFieldsTypes::find(column);
        if (!known)
            known = FieldsTypes::find(column);
        m_types << (known ? *known : FieldType(FieldType::String, 50));
    }
}

TestTable::~TestTable()
{
    m_rows.clear();
    if (isLocked())
        addFault("still locked");
    if (!m_live.empty())
        addFault(QString("%1 rows leaked").arg(m_live.size()));
    for (const QString &fault : std::as_const(m_faults))
        qWarning().noquote() << "TestTable" << m_name + ':' << fault;
}

void TestTable::addRow(const QVariantList &cells)
{
    const TableLock guard(this);
    insert(cells);
    m_changed();
}

void TestTable::setRows(const QVector<QVariantList> &rows)
{
    std::vector<Record> old; // let go after the lock
    const TableLock guard(this);
    old.swap(m_rows);
    for (const QVariantList &cells : rows)
        insert(cells);
    m_changed();
}

void TestTable::insert(const QVariantList &cells)
{
    const Record record(this);
    for (int i = 0; i < cells.size(); ++i) {
        const QString text = cells.at(i).toString();
        cell(record.row(), i) = QStringView(text);
    }
    const auto before = [this](const Record &a, const Record &b) { return isBefore(a, b); };
    m_rows.insert(std::upper_bound(m_rows.begin(), m_rows.end(), record, before), record);
}

bool TestTable::isBefore(const Record &a, const Record &b) const
{
    for (int key : m_keyColumns) {
        const int order = cell(a.row(), key).compare(cell(b.row(), key));
        if (order != 0)
            return order < 0;
    }
    return false;
}

const std::vector<Record> &TestTable::lockedRows() const
{
    if (!isHeldHere())
        addFault("the index was used without the lock");
    return m_rows;
}

Record TestTable::find(const Record &key) const
{
    for (const Record &row : lockedRows()) {
        if (!isBefore(row, key) && !isBefore(key, row))
            return row;
    }
    return {};
}

int TestTable::references() const
{
    const TableLock content(const_cast<TestTable *>(this));
    const std::lock_guard<std::mutex> guard(m_mutex);
    int count = -int(m_rows.size());
    for (const RowData *row : m_live)
        count += row->references;
    return count;
}

void TestTable::addFault(const QString &text) const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!m_faults.contains(text))
        m_faults << text;
}

void TestTable::lock()
{
    m_lock.lock();
    m_holder = std::this_thread::get_id();
    ++m_locks;
}

void TestTable::unlock()
{
    if (!isHeldHere())
        return addFault("unlocked by a thread that does not hold the lock");
    // The two counts differ by the depth, as only the holder changes them.
    if (m_unlocks + 1 == m_locks)
        m_holder = std::thread::id();
    ++m_unlocks;
    m_lock.unlock();
}

Field TestTable::dataPtr(RowData *row, int column) const
{
    if (!isFormsThread() && !isHeldHere())
        addFault("a cell was read on another thread without the lock");
    ++m_cellReads;
    if (m_failAt > 0 && --m_failAt == 0)
        throw Exception("cell read failed");
    return cell(row, column);
}

Field TestTable::cell(RowData *data, int column) const
{
    if (!data || column < 0 || column >= m_columns.size()) {
        addFault(QString("no cell in column %1").arg(column));
        return {};
    }
    Row::Cell &cell = static_cast<Row *>(data)->cells[size_t(column)];
    void *const storage[] = {&cell.small, &cell.number, &cell.real,  &cell.money,
                             &cell.text,  &cell.moment, &cell.boards};
    return Field(m_types.at(column), storage[m_types.at(column).type() - 1], &cell.presence, 1);
}

RowData *TestTable::newRow() const
{
    RowData *row = new Row(m_columns.size());
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_live.insert(row);
    return row;
}

void TestTable::freeRow(RowData *row) const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_live.erase(row);
    delete static_cast<Row *>(row);
}

TestHost::TestHost()
{
    addTable("stocks", "stock_id name stock_code", {0});
    addTable("boards", "board_id stock_id board_code name sectype flags position", {1, 0});
    addTable("securities", "sec_id stock_id board_id sec_code sec_name base_code sess_id",
             {1, 2, 0});
    addTable("gx.diler", "name client_code mox_code", {2});
    ICore::install(this);
}

TestHost::~TestHost()
{
    ICore::install(nullptr);
}

// The directories copy what they need at each change, so that a look-up waits for no table.
void TestHost::addTable(const QString &name, const QString &columns, const QVector<int> &keyColumns)
{
    auto &table = m_database.tables[name];
    table = std::make_unique<TestTable>(name, columns.split(' '), keyColumns);
    table->m_changed = [this, name, changed = table.get()] {
        QMap<int, QString> stocks;
        QMap<boardid, Board> boards;
        for (const Record &row : changed->m_rows) {
            const auto cell = [&](int column) { return changed->cell(row.row(), column); };
            if (name == "stocks")
                stocks[cell(0).toInteger()] = cell(2).toString();
            else if (name == "boards")
                boards[{cell(1).toInteger(), cell(0).toInteger()}] = {
                    cell(2).toString(), cell(5).toString().toLongLong(), cell(6).toString() == "1"};
        }
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (name == "stocks")
            m_stocks = stocks;
        else if (name == "boards")
            m_boards = boards;
    };
}

Table *TestHost::Database::table(const QString &name)
{
    return missing.contains(name) || !tables.count(name) ? nullptr : tables.at(name).get();
}

void TestHost::setSessions(const QVector<SessionId> &sessions)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_sessions = sessions;
}

void TestHost::checkThread() const
{
    const TestTable &any = *m_database.tables.begin()->second;
    if (!any.isFormsThread())
        any.addFault("the core or a directory was asked on another thread");
}

void TestHost::countCall() const
{
    checkThread();
    if (m_failAt > 0 && --m_failAt == 0)
        throw Exception("directory call failed");
}

QString TestHost::codeById(int stockId) const
{
    countCall();
    return copy(m_stocks).value(stockId);
}

int TestHost::idByCode(const QString &stockCode) const
{
    countCall();
    return copy(m_stocks).key(stockCode);
}

QString TestHost::codeById(int stockId, int boardId) const
{
    countCall();
    return copy(m_boards).value({stockId, boardId}).code;
}

int TestHost::idByCode(const QString &stockCode, const QString &boardCode) const
{
    countCall();
    const QMap<boardid, Board> boards = copy(m_boards);
    for (auto it = boards.begin(); it != boards.end(); ++it) {
        if (it->code == boardCode && codeById(it.key().stock_id) == stockCode)
            return it.key().board_id;
    }
    return 0;
}

bool TestHost::checkFlagsById(int stockId, int boardId, qint64 flags) const
{
    countCall();
    return copy(m_boards).value({stockId, boardId}).flags & flags;
}

bool TestHost::isPositionById(int stockId, int boardId) const
{
    countCall();
    return copy(m_boards).value({stockId, boardId}).isPosition;
}
