// SPDX-License-Identifier: BSD-3-Clause
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
//     QVERIFY(!host.table("stocks").isLocked());
//
// A test that destroys the host while a lock is held or a row reference is out, or that has used
// an index without the lock, asked for a cell of no column or unlocked what it had not locked,
// fails: the host's destructor logs a warning for each.
//
// Columns, in order:
//     stocks      stock_id, name, stock_code
//     boards      board_id, stock_id, board_code, name, sectype, flags, position (0 or 1)
//     securities  sec_id, stock_id, board_id, sec_code, sec_name, base_code, sess_id
//     gx.diler    name, client_code, mox_code
// The directories answer from the rows of "stocks" and "boards".

/// A table. What changes its content takes the lock, so it may come from any thread (and waits
/// while another one walks).
class TestTable : public Table, private MasterIndex
{
public:
    /// Without types the columns have those of their names.
    TestTable(const QString &name, const QStringList &columns, const QVector<int> &keyColumns,
              const QVector<FieldType> &types = {});
    ~TestTable() override;

    /// Cells in column order; an invalid QVariant and every cell left out is null. The row
    /// goes to its place in key order, behind rows with an equal key.
    void addRow(const QVariantList &cells);
    /// Replaces the content in one step; setRows({}) empties the table.
    void setRows(const QVector<QVariantList> &rows);

    /// Makes the n-th call of dataPtr() from now throw Exception("cell read failed"), once.
    void failAtCell(int n) { m_failAt = n; }

    bool isLocked() const { return m_locks != m_unlocks; }
    /// Calls of dataPtr().
    int cellReads() const { return m_cellReads; }
    /// References held by Records outside the table.
    int references() const;

    QString name() const override { return m_name; }
    int columnIndex(const QString &column) const override { return m_columns.indexOf(column); }
    void lock() override;
    void unlock() override;
    const MasterIndex *masterIndex() const override { return this; }
    Field dataPtr(RowData *row, int column) const override;
    RowData *newRow() const override;
    void freeRow(RowData *row) const override;

private:
    friend class TestHost;
    struct Row;

    int count() const override { return int(lockedRows().size()); }
    Record at(int position) const override { return lockedRows().at(size_t(position)); }
    Record find(const Record &key) const override;
    const std::vector<Record> &lockedRows() const;
    Field cell(RowData *row, int column) const;
    bool isBefore(const Record &a, const Record &b) const;
    void insert(const QVariantList &cells);
    void addFault(const QString &text) const;

    const QString m_name;
    const QStringList m_columns;
    const QVector<int> m_keyColumns;
    QVector<FieldType> m_types;
    std::function<void()> m_changed; ///< called with the table locked

    std::recursive_mutex m_lock;
    std::atomic<std::thread::id> m_holder{};
    std::atomic<int> m_locks{0};
    std::atomic<int> m_unlocks{0};
    mutable std::atomic<int> m_cellReads{0};
    mutable std::atomic<int> m_failAt{0};

    mutable std::mutex m_mutex; ///< guards the two below
    mutable std::set<RowData *> m_live;
    mutable QStringList m_faults;
    std::vector<Record> m_rows;
};

/// The plug-in that announces new sessions.
class TestDecoder : public QObject, public IDecoder
{
    Q_OBJECT
    Q_INTERFACES(IDecoder)

Q_SIGNALS:
    void aNewSessions();
};

class TestHost : public ICore, private StockDirectory, private BoardDirectory, private StepSource
{
public:
    TestHost();
    ~TestHost() override;

    /// One of the four tables (any other name ends the program).
    TestTable &table(const QString &name) { return *m_database.tables.at(name); }
    /// A table that the host is to offer as missing from now on.
    void removeTable(const QString &name) { m_database.missing << name; }

    /// Changes the open sessions, silently; emit decoder()->aNewSessions() to announce them.
    void setSessions(const QVector<SessionId> &sessions);
    /// Sets the steps of a security of exchange 1 and board 7.
    void setSteps(qint64 securityId, const TradingSteps &steps) { m_steps[securityId] = steps; }
    /// Makes the n-th call of a directory from now throw Exception("directory call failed"), once.
    void failAtDirectoryCall(int n) { m_failAt = n; }
    /// The first decoder of the plug-ins; in front of it are none and one that is no decoder.
    TestDecoder *decoder() { return &m_decoder; }

    IDatabase *database() override { return &m_database; }
    const StockDirectory *stockDirectory() const override { return this; }
    const BoardDirectory *boardDirectory() const override { return this; }
    const StepSource *stepSource() const override { return this; }
    QVector<SessionId> currentSessions() const override { return copy(m_sessions); }
    QList<QObject *> plugins() const override { return m_plugins; }

private:
    struct Database : IDatabase
    {
        Table *table(const QString &name) override;
        std::map<QString, std::unique_ptr<TestTable>> tables;
        QStringList missing;
    };
    struct Board
    {
        QString code;
        qint64 flags = 0;
        bool isPosition = false;
    };

    void addTable(const QString &name, const QString &columns, const QVector<int> &keyColumns);
    void countCall() const;
    QString codeById(int stockId) const override;
    int idByCode(const QString &stockCode) const override;
    QString codeById(int stockId, int boardId) const override;
    int idByCode(const QString &stockCode, const QString &boardCode) const override;
    bool checkFlagsById(int stockId, int boardId, qint64 flags) const override;
    bool isPositionById(int stockId, int boardId) const override;
    TradingSteps stepsOf(int stockId, int boardId, qint64 securityId) const override
    {
        return stockId == 1 && boardId == 7 ? m_steps.value(securityId) : TradingSteps();
    }

    template <typename Shared> Shared copy(const Shared &shared) const
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return shared;
    }

    Database m_database;
    QObject m_other;
    TestDecoder m_decoder, m_second;
    const QList<QObject *> m_plugins{nullptr, &m_other, &m_decoder, &m_second};
    mutable std::atomic<int> m_failAt{0};
    mutable std::mutex m_mutex; ///< guards the three below
    QVector<SessionId> m_sessions;
    QMap<qint64, TradingSteps> m_steps;
    QMap<int, QString> m_stocks;
    QMap<boardid, Board> m_boards;
};
