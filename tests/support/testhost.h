#pragma once

#include <hostapi/icore.h>
#include <hostapi/idecoder.h>

#include <QMap>
#include <QStringList>
#include <QVariant>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

// The tests' own host: a second implementation of the contract, driven by code.
//
//     TestHost host;                                       // installed as the core
//     host.table("stocks").addRow({1, "Nasdaq", "XNAS"});  // cells in column order
//     host.table("boards").addRow({7, 1, "XNGS", "Global Select", "S"});
//     host.table("securities").addRow({100, 1, 7, "AAA", "Aaa Inc", "AAA", 20});
//     host.setSessions({{1, 20}});
//     StockSelectorModel model;                            // destroyed before the host
//     host.table("stocks").failAtCell(3);                  // the third cell read throws
//     QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
//     QCOMPARE(host.table("stocks").locks(), host.table("stocks").unlocks());
//     TestWriter writer([&](int round) { host.table("stocks").setRows(…); });
//
// A test that destroys the host while a lock is held or a row reference is out, or that has
// broken a rule of the contract (see TestTable::faults()), fails: the host's destructor logs
// a warning for each.
//
// Columns, in order:
//     stocks      stock_id, name, stock_code
//     boards      board_id, stock_id, board_code, name, sectype, flags, position (0 or 1)
//     securities  sec_id, stock_id, board_id, sec_code, sec_name, base_code, sess_id
//     gx.diler    name, client_code, mox_code
// The directories answer from the rows of "stocks" and "boards".

// A table, or, made by hand, any other: TestTable t("x", {{"id", FieldType::Integer64}}, {0}).
class TestTable : public Table
{
public:
    struct Column
    {
        QString name;
        FieldType type;
    };
    TestTable(const QString &name, const QVector<Column> &columns, const QVector<int> &keyColumns);
    ~TestTable() override;

    // The calls that change the content take the lock, so they may come from any thread (and
    // wait while another one walks).

    // Cells in column order; an invalid QVariant and every cell left out is null. The row
    // goes to its place in key order, behind rows with an equal key.
    void addRow(const QVariantList &cells);
    // Replaces the content in one step; setRows({}) empties the table.
    void setRows(const QVector<QVariantList> &rows);
    // Called, with the table locked, after each change.
    std::function<void()> changed;

    // Makes the n-th call of dataPtr() from now throw Exception("cell read failed"), once.
    void failAtCell(int n) { m_failAt = n; }

    // How often the lock was taken and given back, changes by this class included.
    int locks() const { return m_locks; }
    int unlocks() const { return m_unlocks; }
    bool isLocked() const { return m_locks != m_unlocks; }
    // Calls of dataPtr().
    int cellReads() const { return m_cellReads; }
    // Rows that exist: in the table, or out of it and still held.
    int liveRows() const;
    // References held by Records outside the table.
    int references() const;
    // Broken rules: the index used without the lock, a column that does not exist, an unlock
    // without a lock.
    QStringList faults() const;

    QString name() const override { return m_name; }
    int columnIndex(const QString &column) const override;
    void lock() override;
    void unlock() override;
    const MasterIndex *masterIndex() const override;
    Field dataPtr(RowData *row, int column) const override;
    RowData *newRow() const override;
    void freeRow(RowData *row) const override;

private:
    friend class TestHost;
    struct Row;
    class KeyIndex;

    Field cell(RowData *row, int column) const;
    bool isBefore(const Record &a, const Record &b) const;
    void insert(const QVariantList &cells);
    void addFault(const QString &text) const;

    const QString m_name;
    const QVector<Column> m_columns;
    const QVector<int> m_keyColumns;
    std::unique_ptr<MasterIndex> m_index;

    std::recursive_mutex m_lock;
    std::atomic<std::thread::id> m_holder{};
    std::atomic<int> m_locks{0};
    std::atomic<int> m_unlocks{0};
    mutable std::atomic<int> m_cellReads{0};
    mutable std::atomic<int> m_failAt{0};

    mutable std::mutex m_mutex; // guards the two below
    mutable std::set<RowData *> m_live;
    mutable QStringList m_faults;
    std::vector<Record> m_rows;
};

// The plug-in that announces new sessions.
class TestDecoder : public QObject, public IDecoder
{
    Q_OBJECT
    Q_INTERFACES(IDecoder)

signals:
    void aNewSessions();
};

class TestHost : public ICore
{
public:
    TestHost();
    ~TestHost() override;

    // One of the four tables (any other name ends the program).
    TestTable &table(const QString &name);
    // A table that the host is to offer as missing from now on.
    void removeTable(const QString &name);

    // Changes the open sessions, silently; emit decoder()->aNewSessions() to announce them.
    void setSessions(const QVector<SessionId> &sessions);
    // The second of the two plug-ins; the first is null.
    TestDecoder *decoder() { return &m_decoder; }
    void setPlugins(const QList<QObject *> &plugins) { m_plugins = plugins; }

    IDatabase *database() override;
    const StockDirectory *stockDirectory() const override;
    const BoardDirectory *boardDirectory() const override;
    QVector<SessionId> currentSessions() const override;
    QList<QObject *> plugins() const override { return m_plugins; }

private:
    class Database;
    class Stocks;
    class Boards;

    std::unique_ptr<Database> m_database;
    std::unique_ptr<Stocks> m_stocks;
    std::unique_ptr<Boards> m_boards;
    TestDecoder m_decoder;
    QList<QObject *> m_plugins;
    mutable std::mutex m_mutex;
    QVector<SessionId> m_sessions;
};

// Calls a function over and over on a thread of its own, with the number of the round, until
// it is destroyed or, when given, the rounds are done.
class TestWriter
{
public:
    explicit TestWriter(std::function<void(int round)> change, int rounds = -1);
    ~TestWriter();
    Q_DISABLE_COPY(TestWriter)

    // Rounds done.
    int rounds() const { return m_rounds; }
    bool isDone() const { return m_done; }

private:
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_done{false};
    std::atomic<int> m_rounds{0};
    std::thread m_thread;
};
