#include "support/testhost.h"

#include <hostapi/exception.h>
#include <hostapi/fieldstypes.h>

#include <QDebug>

#include <algorithm>

namespace {

struct Cell
{
    qint32 small = 0;
    qint64 number = 0;
    double real = 0;
    decimal money;
    QString text;
    datetime moment;
    boardlist boards;
};

TestTable::Column column(const char *name)
{
    const FieldType *known = Gexabus::GxFieldsTypes::find(name);
    if (!known)
        known = FieldsTypes::find(name);
    return {name, known ? *known : FieldType(FieldType::String, 50)};
}

} // namespace

struct TestTable::Row : RowData
{
    explicit Row(int columns) : cells(size_t(columns)), presence(size_t(columns), 0) {}
    std::vector<Cell> cells;
    std::vector<quint32> presence;
};

class TestTable::KeyIndex : public MasterIndex
{
public:
    explicit KeyIndex(const TestTable *table) : m_table(table) {}
    int count() const override { return int(rows().size()); }
    Record at(int position) const override { return rows().at(size_t(position)); }
    Record find(const Record &key) const override
    {
        for (const Record &row : rows()) {
            if (!m_table->isBefore(row, key) && !m_table->isBefore(key, row))
                return row;
        }
        return {};
    }

private:
    const std::vector<Record> &rows() const
    {
        if (m_table->m_holder.load() != std::this_thread::get_id())
            m_table->addFault("the index was used without the lock");
        return m_table->m_rows;
    }
    const TestTable *m_table;
};

TestTable::TestTable(const QString &name, const QVector<Column> &columns,
                     const QVector<int> &keyColumns)
    : m_name(name)
    , m_columns(columns)
    , m_keyColumns(keyColumns)
    , m_index(std::make_unique<KeyIndex>(this))
{
}

TestTable::~TestTable()
{
    m_rows.clear();
    for (const QString &fault : qAsConst(m_faults))
        qWarning().noquote() << "TestTable" << m_name + ':' << fault;
    if (isLocked())
        qWarning().noquote() << "TestTable" << m_name + ": still locked";
    if (!m_live.empty())
        qWarning().noquote() << "TestTable" << m_name + ":" << m_live.size() << "rows leaked";
}

void TestTable::addRow(const QVariantList &cells)
{
    const TableLock guard(this);
    insert(cells);
    if (changed)
        changed();
}

void TestTable::setRows(const QVector<QVariantList> &rows)
{
    std::vector<Record> old; // let go after the lock
    const TableLock guard(this);
    old.swap(m_rows);
    for (const QVariantList &cells : rows)
        insert(cells);
    if (changed)
        changed();
}

void TestTable::insert(const QVariantList &cells)
{
    const Record record(this);
    for (int i = 0; i < cells.size(); ++i) {
        const QString text = cells.at(i).toString();
        Row *row = static_cast<Row *>(record.row());
        if (m_columns.at(i).type.type() == FieldType::BoardList) {
            row->cells[size_t(i)].boards = boardListFromString(text, nullptr);
            row->presence[size_t(i)] = 1;
        } else {
            cell(row, i) = QStringView(text);
        }
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

int TestTable::liveRows() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return int(m_live.size());
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

QStringList TestTable::faults() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_faults;
}

void TestTable::addFault(const QString &text) const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!m_faults.contains(text))
        m_faults << text;
}

int TestTable::columnIndex(const QString &column) const
{
    for (int i = 0; i < m_columns.size(); ++i) {
        if (m_columns.at(i).name == column)
            return i;
    }
    return -1;
}

void TestTable::lock()
{
    m_lock.lock();
    m_holder = std::this_thread::get_id();
    ++m_locks;
}

void TestTable::unlock()
{
    if (m_holder.load() != std::this_thread::get_id())
        return addFault("unlocked by a thread that does not hold the lock");
    // The two counts differ by the depth, as only the holder changes them.
    if (m_unlocks + 1 == m_locks)
        m_holder = std::thread::id();
    ++m_unlocks;
    m_lock.unlock();
}

const MasterIndex *TestTable::masterIndex() const
{
    return m_index.get();
}

Field TestTable::dataPtr(RowData *row, int column) const
{
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
    Row *row = static_cast<Row *>(data);
    Cell &cell = row->cells[size_t(column)];
    const FieldType type = m_columns.at(column).type;
    void *const storage[] = {&cell.small, &cell.number, &cell.real,  &cell.money,
                             &cell.text,  &cell.moment, &cell.boards};
    return Field(type, storage[type.type() - 1], &row->presence[size_t(column)], 1);
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
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_live.erase(row);
    }
    delete static_cast<Row *>(row);
}

class TestHost::Database : public IDatabase
{
public:
    Database()
    {
        add("stocks", {"stock_id", "name", "stock_code"}, {0});
        add("boards",
            {"board_id", "stock_id", "board_code", "name", "sectype", "flags", "position"}, {1, 0});
        add("securities",
            {"sec_id", "stock_id", "board_id", "sec_code", "sec_name", "base_code", "sess_id"},
            {1, 2, 0});
        add("gx.diler", {"name", "client_code", "mox_code"}, {2});
    }
    Table *table(const QString &name) override
    {
        return missing.contains(name) ? nullptr : find(name);
    }
    TestTable *find(const QString &name) const
    {
        const auto found = m_tables.find(name);
        return found == m_tables.end() ? nullptr : found->second.get();
    }
    QStringList missing;

private:
    void add(const QString &name, const QVector<const char *> &columns, const QVector<int> &keys)
    {
        QVector<TestTable::Column> typed;
        for (const char *each : columns)
            typed << column(each);
        m_tables[name] = std::make_unique<TestTable>(name, typed, keys);
    }
    std::map<QString, std::unique_ptr<TestTable>> m_tables;
};

// The directories copy what they need at each change, so that a look-up waits for no table.
class TestHost::Stocks : public StockDirectory
{
public:
    void read(const TestTable &table)
    {
        QMap<int, QString> codes;
        for (const Record &row : table.m_rows)
            codes[table.cell(row.row(), 0).toInteger()] = table.cell(row.row(), 2).toString();
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_codes = codes;
    }
    QString codeById(int stockId) const override { return codes().value(stockId); }
    int idByCode(const QString &stockCode) const override { return codes().key(stockCode); }

private:
    QMap<int, QString> codes() const
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_codes;
    }
    mutable std::mutex m_mutex;
    QMap<int, QString> m_codes;
};

class TestHost::Boards : public BoardDirectory
{
    struct Known
    {
        QString code;
        qint64 flags = 0;
        bool isPosition = false;
    };

public:
    explicit Boards(const StockDirectory &stocks) : m_stocks(stocks) {}
    void read(const TestTable &table)
    {
        QMap<boardid, Known> boards;
        for (const Record &row : table.m_rows) {
            const auto cell = [&](int column) { return table.cell(row.row(), column); };
            boards[{cell(1).toInteger(), cell(0).toInteger()}] = {
                cell(2).toString(), cell(5).toString().toLongLong(), cell(6).toString() == "1"};
        }
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_boards = boards;
    }
    QString codeById(int stockId, int boardId) const override
    {
        return boards().value({stockId, boardId}).code;
    }
    int idByCode(const QString &stockCode, const QString &boardCode) const override
    {
        const QMap<boardid, Known> known = boards();
        for (auto it = known.begin(); it != known.end(); ++it) {
            if (it->code == boardCode && m_stocks.codeById(it.key().stock_id) == stockCode)
                return it.key().board_id;
        }
        return 0;
    }
    bool checkFlagsById(int stockId, int boardId, qint64 flags) const override
    {
        return boards().value({stockId, boardId}).flags & flags;
    }
    bool isPositionById(int stockId, int boardId) const override
    {
        return boards().value({stockId, boardId}).isPosition;
    }

private:
    QMap<boardid, Known> boards() const
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_boards;
    }
    const StockDirectory &m_stocks;
    mutable std::mutex m_mutex;
    QMap<boardid, Known> m_boards;
};

TestHost::TestHost()
    : m_database(std::make_unique<Database>())
    , m_stocks(std::make_unique<Stocks>())
    , m_boards(std::make_unique<Boards>(*m_stocks))
    , m_plugins{nullptr, &m_decoder}
{
    table("stocks").changed = [this] { m_stocks->read(table("stocks")); };
    table("boards").changed = [this] { m_boards->read(table("boards")); };
    ICore::install(this);
}

TestHost::~TestHost()
{
    ICore::install(nullptr);
}

TestTable &TestHost::table(const QString &name)
{
    TestTable *found = m_database->find(name);
    if (!found)
        qFatal("TestHost has no table %s", qPrintable(name));
    return *found;
}

void TestHost::removeTable(const QString &name)
{
    m_database->missing << name;
}

void TestHost::setSessions(const QVector<SessionId> &sessions)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_sessions = sessions;
}

QVector<SessionId> TestHost::currentSessions() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_sessions;
}

IDatabase *TestHost::database()
{
    return m_database.get();
}

const StockDirectory *TestHost::stockDirectory() const
{
    return m_stocks.get();
}

const BoardDirectory *TestHost::boardDirectory() const
{
    return m_boards.get();
}

TestWriter::TestWriter(std::function<void(int round)> change, int rounds)
    : m_thread([this, change = std::move(change), rounds] {
        while (!m_stop && m_rounds != rounds) {
            change(m_rounds);
            ++m_rounds;
        }
        m_done = true;
    })
{
}

TestWriter::~TestWriter()
{
    m_stop = true;
    m_thread.join();
}
