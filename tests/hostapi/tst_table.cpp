#include "support/stricttest.h"
#include "support/testhost.h"

#include <hostapi/exception.h>
#include <hostapi/indexsort.h>
#include <hostapi/securitiessessionfilter.h>

namespace {

enum Column { SecId, StockId, BoardId, SecCode, SecName, BaseCode, SessId };

// By code, without exchange 9. The test host makes cells fail to read.
class CodeIndex : public IndexSort
{
public:
    using IndexSort::IndexSort;

protected:
    bool filter(const Record &record) const override
    {
        return record.field(StockId).toInteger() != 9;
    }
    int compare(const Record &a, const Record &b) const override
    {
        return a.field(SecCode).compare(b.field(SecCode));
    }
};

QString idsOf(const Index &index, const ValueFilter *filter = nullptr)
{
    QString ids;
    for (const Record &record : index) {
        if (!filter || filter->filter(record))
            ids += record.field(SecId).toString();
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
    TestHost host;
    TestTable &table = host.table("securities");
    table.addRow({5, 1, 7});
    Record kept = (TableLock(&table), *table.masterIndex()->begin());
    Record copy = kept;
    const Record moved = std::move(copy);
    QVERIFY(copy.isNull() && copy.field(SecId).isNull() && Record(&table).field(SecId).isNull());
    QCOMPARE(table.references(), 2);
    kept = *&kept;
    table.setRows({});
    QCOMPARE(kept.field(SecId).toInteger(), 5);
    QVERIFY(kept.field(table.columnIndex("no such column")).isNull());
    kept = Record();
    QCOMPARE(table.references(), 1);
}

void TableTest::sortedIndex()
{
    TestHost host;
    TestTable &table = host.table("securities");
    const QVector<QVariantList> rows = {
        {1, 1, 7, "C"}, {2, 1, 7, "A"}, {3, 1, 7, "C"}, {4, 1, 7, "A"}, {5, 9, 7, "B"}};
    table.setRows(rows);
    CodeIndex all("securities", true);
    QCOMPARE(all.count(), 0);
    all.build();
    QCOMPARE(idsOf(all), QString("2413"));
    CodeIndex firsts("securities", false);
    firsts.build();
    QCOMPARE(idsOf(firsts), QString("21"));

    table.setRows(rows.mid(1));
    for (const int cell : {3, 6}) { // in the walk, in the sort
        table.failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(all.build(), Exception);
        QVERIFY(!table.isLocked());
        QCOMPARE(idsOf(all), QString("2413"));
    }
    all.build();
    QCOMPARE(idsOf(all), QString("243"));
}

void TableTest::sessionFilter()
{
    TestHost host;
    TestTable &table = host.table("securities");
    const QVariant none;
    for (const auto &[id, stock, session] :
         QVector<std::array<int, 3>>{{1, 1, 10}, {2, 1, 20}, {3, 2, 10}, {4, 2, 20}})
        table.addRow({id, stock, 7, none, none, none, session});
    table.addRow({5, none, 7});
    host.setSessions({{2, 20}, {1, 10}, {2, 10}});
    const SecuritiesSessionFilter open(&table, SessId, {StockId, SessId}, -1, nullptr);
    const SecuritiesSessionFilter tens(&table, SessId, {StockId, SessId}, 10, nullptr);
    host.setSessions({{2, 20}, {2, 10}});
    const auto both = SecuritiesSessionFilter(&table, SessId, {StockId}, -1, &tens).clone();
    host.setSessions({});
    const TableLock lock(&table);
    QCOMPARE(idsOf(*table.masterIndex(), &open), QString("134"));
    QCOMPARE(idsOf(*table.masterIndex(), &tens), QString("13"));
    QCOMPARE(idsOf(*table.masterIndex(), both.get()), QString("3"));
    QVERIFY(!open.filter(Record()));
}

void TableTest::missingTables()
{
    Table *table = ICore::instance()->table("securities");
    QCOMPARE(table->columnIndex("sec_id"), -1);
    QVERIFY(Record(table).field(SecId).isNull());
    CodeIndex index("securities", true);
    index.build();
    QCOMPARE(index.count(), 0);
    QCOMPARE(StockDirectory::i()->codeById(1), QString());
    QCOMPARE(BoardDirectory::i()->idByCode("XNYS", "ARCX"), 0);
    TestHost host;
    host.removeTable("gx.diler");
    expectWarning("ICore::table: the host has no table \"gx.diler\"");
    QCOMPARE(ICore::instance()->table("gx.diler")->masterIndex()->count(), 0);
}

QTEST_GUILESS_MAIN(TableTest)
#include "tst_table.moc"
