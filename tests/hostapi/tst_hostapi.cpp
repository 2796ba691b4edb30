#include "support/datafile.h"
#include "support/stricttest.h"
#include "support/testhost.h"

#include <hostapi/exception.h>
#include <hostapi/indexsort.h>
#include <hostapi/localesymbols.h>
#include <hostapi/securitiessessionfilter.h>

#include <ctime>
#include <limits>

// The dates are run once per locale (LC_ALL), as their locale form is that of QLocale::system().
// The local clock is one that skips the hour after midnight on 24 April 2026.
class HostApiTest : public StrictTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void numbers();
    void sums();
    void numbersOfEveryLocale();
    void cells();
    void comparisons();
    void boards();
    void systemDates();
    void localeDates();
    void everyDateReadsBack();
    void records();
    void sortedIndex();
    void sessionFilter();
    void noTables();
};

namespace {

// One cell of any type.
struct Cell
{
    Cell(const QString &code, int parameter, const QString &text)
        : table("t", {{"c", FieldType(FieldType::Type(code.toInt()), parameter)}}, {0})
        , record(&table)
        , field(record.field(0))
    {
        field = text;
    }

    TestTable table;
    Record record;
    Field field;
};

// The text that an operation gives, or that of what it throws.
template <typename Operation> QString outcome(const Operation &operation)
{
    try {
        return operation();
    } catch (const Exception &failure) {
        return failure.text();
    }
}

enum Column { SecId, StockId, BoardId, SecCode, SecName, BaseCode, SessId };

// By code, without exchange 9.
class CodeIndex : public IndexSort
{
public:
    using IndexSort::IndexSort;

protected:
    bool filter(const Record &row) const override { return row.field(StockId).toInteger() != 9; }
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

void HostApiTest::initTestCase()
{
    qputenv("TZ", "EET-2EEST,M4.5.5/0,M10.5.4/24");
    tzset();
    QVERIFY(!QDateTime(QDate(2026, 4, 24), QTime(0, 30)).isValid());
    QVERIFY(qEnvironmentVariable("LC_ALL").startsWith(QLocale::system().name()));
}

void HostApiTest::numbers()
{
    for (const DataRow &row : rowsOf("numbers.txt")) {
        const bool system = row[0].isEmpty();
        const LocaleSymbols symbols{QLocale(row[0])};
        QCOMPARE(system ? decimal::canConvert(row[1], false)
                        : decimal::canConvert(row[1], false, symbols),
                 row[3] != "!");
        const QString result = outcome([&] {
            decimal number = system ? decimal(row[1])
                                    : decimal::fromLocaleString(row[1], symbols, row[2].toInt());
            number.setScale(row[2].toShort());
            return number.toString();
        });
        const QString refusal = "Can't convert from '" + row[1] + "'' to decimal";
        QCOMPARE(result, row[3] == "!" ? refusal : row[3]);
    }
    QVERIFY(decimal::canConvert(u"", true));
}

void HostApiTest::sums()
{
    for (const DataRow &row : rowsOf("sums.txt")) {
        const decimal a(row[0]);
        const decimal b(row[1]);
        QCOMPARE(outcome([&] { return (a + b).toString(); }), row[2]);
        QCOMPARE(outcome([&] { return (a - b).toString(); }), row[3]);
        QCOMPARE(a.compare(b), row[4].toInt());
    }
}

void HostApiTest::numbersOfEveryLocale()
{
    using Limits = std::numeric_limits<qint64>;
    for (QLocale locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        locale.setNumberOptions(QLocale::DefaultNumberOptions);
        for (const qint64 word :
             {Limits::min(), qint64(-1234567890), qint64(-107), Limits::max()}) {
            const int cents = int(qAbs(word % 100));
            const QString shown = locale.toString(word / 100) + locale.decimalPoint() +
                                  locale.toString(cents / 10) + locale.toString(cents % 10);
            const decimal price(word, 2);
            const QString keyed = price.toString().replace('.', locale.decimalPoint());
            QCOMPARE(price.toSystemString(locale), shown);
            for (const QString &text : {shown, keyed})
                QCOMPARE(decimal::fromLocaleString(text, locale, 2).word(), word);
        }
    }
}

// Into a cell that was null, and one that was not; what fails leaves either as it was.
void HostApiTest::cells()
{
    for (const DataRow &row : rowsOf("cells.txt")) {
        for (const char *before : {"", row[0] == "6" ? "2007.07.07" : row[0] == "7" ? "" : "7"}) {
            Cell cell(row[0], row[1].toInt(), before);
            Field &field = cell.field;
            const QString was = field.toString();
            const auto assign = [&] {
                if (row[2].startsWith("int "))
                    field = row[2].mid(4).toInt();
                else
                    field = row[2];
                return field.toString();
            };
            QCOMPARE(outcome(assign), row[3]);
            const auto integers = [&] {
                return QString("%1 %2").arg(field.toInteger()).arg(field.toInteger64());
            };
            if (row.size() > 4)
                QCOMPARE(outcome(integers), row[4]);
            else
                QCOMPARE(field.toString(), was);
        }
    }
}

void HostApiTest::comparisons()
{
    for (const DataRow &row : rowsOf("comparisons.txt")) {
        const Cell a(row[0], 20, row[1]);
        const Cell b(row[2], 20, row[3]);
        QVERIFY2(a.field.compare(b.field) == row[4].toInt(), qPrintable(row.join(' ')));
    }
}

void HostApiTest::boards()
{
    for (const DataRow &row : rowsOf("boards.txt")) {
        bool ok = false;
        const boardlist list = boardListFromString(row[0], &ok);
        Boards boards;
        for (const Board board : list)
            boards.add(board);
        QCOMPARE(boardListToString(list), ok ? row[0] : QString());
        QCOMPARE(ok ? boardListToString(boards) : "!", row[1]);
    }
}

void HostApiTest::systemDates()
{
    for (const char *name : {"C", "fa_IR", "ar_EG", "bn_BD"}) {
        QLocale::setDefault(QLocale(name));
        for (const DataRow &row : rowsOf("dates.txt"))
            QCOMPARE(datetime(row[0]).toString(), row[1]);
    }
    const datetime moment(QDate(2024, 2, 29), QTime(0, 30));
    QCOMPARE(moment.msecs(), qint64(1709166600000));
    QVERIFY(moment.date() == QDate(2024, 2, 29) && moment.time() == QTime(0, 30));
    QCOMPARE(moment.addYears(2).toString(), QString("2026.02.28 00:30:00.000"));
    QVERIFY(datetime().addYears(1).isNull() && !datetime().date().isValid());
    QVERIFY(datetime(QDate()).isNull() && datetime(QDate(2026, 1, 1), QTime()).isNull());
    const QDateTime now = QDateTime::currentDateTime();
    QVERIFY(!(datetime::now() < datetime(now.date(), now.time())));
}

void HostApiTest::localeDates()
{
    const datetime moment(QDate(2026, 3, 5), QTime(21, 2, 3, 4));
    const QString time = " 21:02:03.004";
    const QString date = moment.toSystemString(true, QLocale::ShortFormat);
    QCOMPARE(moment.toSystemString(false, QLocale::ShortFormat), date + time);
    QCOMPARE(datetime().toSystemString(false, QLocale::ShortFormat), QString());
    QHash<QString, QString> dates;
    for (const DataRow &row : rowsOf("localedates.txt"))
        dates[row[0]] = row[1];
    QCOMPARE(date, dates[QLocale::system().name()]);

    const QString format = QLocale::system().dateFormat(QLocale::ShortFormat);
    for (const QString &text : {QString(), format, date.left(4), date + 'x', date + time,
                                QString(date).replace('5', "32"), QString(100000, '0')})
        QVERIFY(datetime::fromSystemString(text, true, QLocale::ShortFormat).isNull());
    for (const QString &text : {date, time, time.mid(1), date + " 24:02:03.004"})
        QVERIFY(datetime::fromSystemString(text, false, QLocale::ShortFormat).isNull());
}

// As written, as typed on a keyboard without direction marks, and in native digits; a date of
// a year 00 or 70 also where the locale writes two digits.
void HostApiTest::everyDateReadsBack()
{
    QVector<QDate> dates = {{2000, 2, 29}, {2026, 4, 24}, {2070, 1, 1}, {2099, 12, 31}};
    for (QDate date(2000, 1, 1); date.year() < 2100; date = date.addDays(23))
        dates << date;
    for (const QDate &date : qAsConst(dates)) {
        const datetime moment(date, QTime(0, 30, 0, 4));
        for (const auto format : {QLocale::ShortFormat, QLocale::LongFormat}) {
            const QString text = moment.toSystemString(false, format);
            QVERIFY(datetime::fromSystemString(text, false, format) == moment);
            for (const QChar c : text)
                QVERIFY(!c.isDigit() || c.unicode() < 0x80);
        }
        const QString text = moment.toSystemString(true, QLocale::ShortFormat);
        QString native = text;
        for (int digit = 0; digit <= 9; ++digit)
            native.replace(QChar('0' + digit), QLocale::system().toString(digit));
        for (const QString &typed : {QString(text).remove(QChar(0x200f)), native})
            QCOMPARE(datetime::fromSystemString(typed, true, QLocale::ShortFormat).date(), date);
    }
}

void HostApiTest::records()
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

void HostApiTest::sortedIndex()
{
    TestHost host;
    TestTable &table = host.table("securities");
    const QVector<QVariantList> rows = {
        {1, 1, 7, "C"}, {2, 1, 7, "A"}, {3, 1, 7, "C"}, {4, 1, 7, "A"}, {5, 9, 7, "B"}};
    table.setRows(rows);
    CodeIndex all("securities", true);
    CodeIndex firsts("securities", false);
    for (CodeIndex *index : {&all, &firsts}) {
        QCOMPARE(index->count(), 0);
        index->build();
    }
    QCOMPARE(idsOf(all) + ' ' + idsOf(firsts), QString("2413 21"));

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

void HostApiTest::sessionFilter()
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
    const TableLock lock(&table);
    QCOMPARE(idsOf(*table.masterIndex(), &open), QString("134"));
    QCOMPARE(idsOf(*table.masterIndex(), &tens), QString("13"));
    QCOMPARE(idsOf(*table.masterIndex(), both.get()), QString("3"));
    QVERIFY(!open.filter(Record()));
}

void HostApiTest::noTables()
{
    Table *table = ICore::instance()->table("securities");
    QVERIFY(Record(table).field(table->columnIndex("sec_id")).isNull());
    QCOMPARE(BoardDirectory::i()->idByCode(StockDirectory::i()->codeById(1), "ARCX"), 0);
    TestHost host;
    host.removeTable("gx.diler");
    expectWarning("ICore::table: the host has no table \"gx.diler\"");
    QCOMPARE(ICore::instance()->table("gx.diler")->masterIndex()->count(), 0);
}

QTEST_GUILESS_MAIN(HostApiTest)
#include "tst_hostapi.moc"
