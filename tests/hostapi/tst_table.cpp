#include "support/stricttest.h"

#include <hostapi/exception.h>
#include <hostapi/icore.h>
#include <hostapi/indexsort.h>
#include <hostapi/securitiessessionfilter.h>

namespace {

struct Row : RowData
{
    quint32 presence = 0;
    qint32 cells[3] = {};
};

// A core with one table: rows of exchange, session and id, given out and back by count.
class TinyHost : public ICore, private IDatabase, private Table, private MasterIndex
{
public:
    TinyHost() { install(this); }
    ~TinyHost() override { install(nullptr); }
    void add(int stock, int session, int id)
    {
        Record record(this);
        record.field(0) = stock;
        record.field(1) = session;
        record.field(2) = id;
        rows.push_back(record);
    }

    IDatabase *database() override { return this; }
    Table *table(const QString &name) override { return name == "tiny" ? this : nullptr; }
    const StockDirectory *stockDirectory() const override { return nullptr; }
    const BoardDirectory *boardDirectory() const override { return nullptr; }
    QVector<SessionId> currentSessions() const override { return sessions; }
    QList<QObject *> plugins() const override { return {}; }

    int locks = 0;
    mutable int liveRows = 0;
    QVector<SessionId> sessions;
    std::vector<Record> rows;

private:
    QString name() const override { return "tiny"; }
    int columnIndex(const QString &column) const override { return column == "id" ? 2 : -1; }
    void lock() override { ++locks; }
    void unlock() override { --locks; }
    const MasterIndex *masterIndex() const override { return this; }
    Field dataPtr(RowData *row, int column) const override
    {
        Row *own = static_cast<Row *>(row);
        return Field(FieldType::Integer, &own->cells[column], &own->presence, 1u << column);
    }
    RowData *newRow() const override { return ++liveRows, new Row; }
    void freeRow(RowData *row) const override { delete (--liveRows, static_cast<Row *>(row)); }
    int count() const override { return int(rows.size()); }
    Record at(int position) const override { return rows.at(size_t(position)); }
    Record find(const Record &) const override { return Record(); }
};

// By session, without exchange 9; throws at the n-th call of either function when told to.
class SessionIndex : public IndexSort
{
public:
    using IndexSort::IndexSort;
    mutable int failAt = 0;

protected:
    bool filter(const Record &record) const override
    {
        return countDown(), record.field(0).toInteger() != 9;
    }
    int compare(const Record &a, const Record &b) const override
    {
        return countDown(), a.field(1).compare(b.field(1));
    }
    void countDown() const
    {
        if (failAt > 0 && --failAt == 0)
            throw Exception("told to");
    }
};

QString idsOf(const Index &index, const ValueFilter *filter = nullptr)
{
    QString ids;
    for (const Record &record : index) {
        if (!filter || filter->filter(record))
            ids += record.field(2).toString();
    }
    return ids;
}

} // namespace

class TableTest : public StrictTest
{
    Q_OBJECT

private slots:
    void records();
    void sortedIndex();
    void sessionFilter();
    void missingTables();
};

void TableTest::records()
{
    TinyHost host;
    host.add(1, 10, 5);
    Table *table = ICore::instance()->table("tiny");
    Record kept = *table->masterIndex()->begin();
    Record copy = kept;
    Record moved = std::move(copy);
    QVERIFY(copy.isNull() && copy.field(0).isNull());
    QCOMPARE(kept.row()->references.load(), 3);
    moved = Record(table);
    QVERIFY(moved.field(2).isNull());
    QVERIFY(moved.field(table->columnIndex("no such column")).isNull());
    kept = *&kept;
    QCOMPARE(kept.row()->references.load(), 2);

    host.rows.clear();
    QCOMPARE(kept.field(2).toInteger(), 5);
    QCOMPARE(host.liveRows, 2);
    kept = moved = Record();
    QCOMPARE(host.liveRows, 0);
}

void TableTest::sortedIndex()
{
    TinyHost host;
    for (const SessionId row : {SessionId{1, 30}, {1, 10}, {9, 10}, {2, 30}, {1, 10}})
        host.add(row.stock_id, row.sess_id, int(host.rows.size()) + 1);
    SessionIndex all("tiny", true);
    QCOMPARE(all.count(), 0);
    all.build();
    QCOMPARE(idsOf(all), QString("2514"));
    SessionIndex firsts("tiny", false);
    firsts.build();
    QCOMPARE(idsOf(firsts), QString("21"));

    host.rows.pop_back();
    for (const int call : {3, 6}) { // in the walk, in the sort
        all.failAt = call;
        QVERIFY_EXCEPTION_THROWN(all.build(), Exception);
        QCOMPARE(host.locks, 0);
        QCOMPARE(idsOf(all), QString("2514"));
    }
    host.rows.clear();
    all.build();
    firsts.build();
    QCOMPARE(host.liveRows, 0);
}

void TableTest::sessionFilter()
{
    TinyHost host;
    for (const SessionId row : {SessionId{1, 10}, {1, 20}, {2, 10}, {2, 20}, {0, 0}})
        host.add(row.stock_id, row.sess_id, int(host.rows.size()) + 1);
    Table *table = ICore::instance()->table("tiny");
    const MasterIndex &all = *table->masterIndex();
    host.sessions = {{2, 20}, {1, 10}, {2, 10}};
    const SecuritiesSessionFilter open(table, 1, {0, 1}, -1, nullptr);
    const SecuritiesSessionFilter tens(table, 1, {0, 1}, 10, nullptr);
    host.sessions = {{2, 20}, {2, 10}};
    const auto both = SecuritiesSessionFilter(table, 1, {0, 1}, -1, &tens).clone();
    host.sessions.clear();
    QCOMPARE(idsOf(all, &open), QString("134"));
    QCOMPARE(idsOf(all, &tens), QString("13"));
    QCOMPARE(idsOf(all, both.get()), QString("3"));
    QVERIFY(!open.filter(Record()));
}

void TableTest::missingTables()
{
    Table *table = ICore::instance()->table("securities");
    QCOMPARE(ICore::instance()->table("securities"), table);
    QCOMPARE(table->columnIndex("sec_id"), -1);
    QVERIFY(Record(table).field(-1).isNull());
    SessionIndex index("securities", true);
    index.build();
    QCOMPARE(index.count(), 0);
    QCOMPARE(StockDirectory::i()->codeById(1), QString());
    QCOMPARE(BoardDirectory::i()->idByCode("XNYS", "ARCX"), 0);
    QVERIFY(ICore::instance()->plugins().isEmpty());

    TinyHost host;
    expectWarning("ICore::table: the host has no table \"gx.diler\"");
    QCOMPARE(ICore::instance()->table("gx.diler")->masterIndex()->count(), 0);
}

QTEST_GUILESS_MAIN(TableTest)
#include "tst_table.moc"
