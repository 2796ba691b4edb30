#include "support/stricttest.h"
#include "support/testhost.h"

#include <embeddedhost/embeddedhost.h>
#include <hostapi/exception.h>

#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

namespace {

// Two exchanges, three boards, 2,000 securities. Every text ends in the tag. No column has a
// type or a constraint, so that faults can be planted.
QStringList content(const QString &tag)
{
    QStringList sql = {
        "CREATE TABLE stocks (name, stock_code, stock_id)",
        "INSERT INTO stocks VALUES ('Beta @', 'XB@', 2), ('Alpha @', 'XA@', 1)",
        "CREATE TABLE boards (extra, stock_id, board_id, board_code, name, sectype, flags,"
        " position)",
        "INSERT INTO boards VALUES (0, 2, 7, 'B7@', 'Seven @', 'S', 5, 1),"
        " (0, 1, 9, 'B9@', 'Nine @', 'F', 8589934592, 0), (0, 1, 7, 'B7@', '', NULL, NULL, NULL)",
        "CREATE TABLE securities (stock_id, board_id, sec_id, sec_code, sec_name, base_code,"
        " sess_id)",
        "WITH RECURSIVE n(i) AS (SELECT 2000 UNION ALL SELECT i - 1 FROM n WHERE i > 1)"
        " INSERT INTO securities SELECT 2, 7, i, 'C' || i || '@', 'Name @', 'BASE@', 1 FROM n",
        "CREATE TABLE \"gx.diler\" (mox_code, client_code, name)",
        "INSERT INTO \"gx.diler\" VALUES ('M1', NULL, 'Partner @')",
        "CREATE TABLE sessions (stock_id, sess_id)",
        "INSERT INTO sessions VALUES (2, 1)",
    };
    return sql.replaceInStrings("@", tag);
}

constexpr int Rows = 2 + 3 + 2000 + 1 + 1;

QStringList column(Table *table, const QString &name)
{
    QStringList texts;
    const TableLock lock(table);
    for (const Record &row : *table->masterIndex())
        texts << table->dataPtr(row.row(), table->columnIndex(name)).toString();
    return texts;
}

// Reads a text as a number in the second row.
void throwingWalk(Table *table)
{
    const TableLock lock(table);
    int row = 0;
    for (const Record &record : *table->masterIndex())
        table->dataPtr(record.row(), table->columnIndex(row++ ? "name" : "stock_id")).toInteger();
}

} // namespace

class EmbeddedHostTest : public StrictTest
{
    Q_OBJECT

private slots:
    void contentOfAFile();
    void refusedFiles_data();
    void refusedFiles();
    void reloadUnderWalks();
    void endsOfALoad();
    void sessionsAndPlugins();
    void throwInAWalk();

private:
    QString makeFile(const QStringList &sql);

    QTemporaryDir m_folder;
    int m_files = 0;
};

QString EmbeddedHostTest::makeFile(const QStringList &sql)
{
    const QString file = m_folder.filePath(QString::number(++m_files) + ".sqlite");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "maker");
        database.setDatabaseName(file);
        bool ok = database.open() && database.transaction();
        for (const QString &statement : sql) {
            QSqlQuery query(database);
            ok = ok && query.exec(statement);
            if (!ok)
                qWarning() << statement << query.lastError();
        }
        database.commit();
    }
    QSqlDatabase::removeDatabase("maker");
    return file;
}

void EmbeddedHostTest::contentOfAFile()
{
    EmbeddedHost host;
    QVERIFY2(host.loadNow(makeFile(content("x"))), qPrintable(host.errorText()));
    QCOMPARE(column(host.table("stocks"), "name"), QStringList({"Alpha x", "Beta x"}));
    QCOMPARE(column(host.table("boards"), "board_code"), QStringList({"B7x", "B9x", "B7x"}));
    QCOMPARE(column(host.table("securities"), "sec_id").mid(0, 3), QStringList({"1", "2", "3"}));
    QCOMPARE(column(host.table("gx.diler"), "name"), QStringList({"Partner x"}));
    QCOMPARE(host.currentSessions(), QVector<SessionId>({{2, 1}}));
    QCOMPARE(host.table("boards")->columnIndex("extra"), -1);

    Table *boards = host.table("boards");
    {
        const TableLock lock(boards);
        Record key(boards);
        key.field(boards->columnIndex("stock_id")) = 1;
        key.field(boards->columnIndex("board_id")) = 7;
        const Record found = boards->masterIndex()->find(key);
        for (const char *null : {"name", "sectype", "flags", "no such column"})
            QVERIFY2(found.field(boards->columnIndex(null)).isNull(), null);
        key.field(boards->columnIndex("board_id")) = 8;
        QVERIFY(boards->masterIndex()->find(key).isNull());
        QVERIFY(boards->masterIndex()->find(Record()).isNull());
    }

    const StockDirectory *stocks = host.stockDirectory();
    QCOMPARE(stocks->codeById(2), QString("XBx"));
    QCOMPARE(stocks->idByCode("XBx"), 2);
    QCOMPARE(stocks->codeById(3) + QString::number(stocks->idByCode("xbx")), QString("0"));
    const BoardDirectory *directory = host.boardDirectory();
    QCOMPARE(directory->codeById(1, 9), QString("B9x"));
    QCOMPARE(directory->idByCode("XAx", "B9x"), 9);
    QCOMPARE(directory->idByCode("XBx", "B9x"), 0);
    QVERIFY(directory->checkFlagsById(1, 9, Q_INT64_C(8589934593)));
    QVERIFY(!directory->checkFlagsById(1, 9, 1) && !directory->checkFlagsById(3, 9, -1));
    QVERIFY(directory->isPositionById(2, 7));
    QVERIFY(!directory->isPositionById(1, 7) && !directory->isPositionById(1, 8));
    QCOMPARE(host.liveRows(), Rows);
}

void EmbeddedHostTest::refusedFiles_data()
{
    QTest::addColumn<QString>("sql"); // done to a good file
    QTest::addColumn<QString>("error");
    const auto update = [](const char *table, const char *set, const char *where) {
        return QString("UPDATE %1 SET %2 WHERE %3").arg(table, set, where);
    };
    QTest::newRow("no table") << "DROP TABLE boards"
                              << "table \"boards\": is missing";
    QTest::newRow("no column") << "ALTER TABLE stocks DROP COLUMN name"
                               << "table \"stocks\", column \"name\": is missing";
    QTest::newRow("text for an integer")
        << update("securities", "sess_id = '1'", "sec_id = 17")
        << "table \"securities\", column \"sess_id\", row (stock_id 2, board_id 7, sec_id 17): "
           "holds a text, not an integer";
    QTest::newRow("fraction") << update("boards", "flags = 1.5", "board_id = 9")
                              << "table \"boards\", column \"flags\", row (stock_id 1, board_id "
                                 "9): holds a real number, not an integer";
    QTest::newRow("blob") << update("\"gx.diler\"", "name = x'00'", "1")
                          << "table \"gx.diler\", column \"name\", row (mox_code 'M1'): holds a "
                             "blob, not a text";
    QTest::newRow("number for a text")
        << update("stocks", "name = 5", "stock_id = 2")
        << "table \"stocks\", column \"name\", row (stock_id 2): holds an integer, not a text";
    QTest::newRow("bad key") << update("stocks", "stock_id = 'two'", "stock_id = 2")
                             << "table \"stocks\", column \"stock_id\", row (stock_id 'two'): "
                                "holds a text, not an integer";
    QTest::newRow("null key") << update("sessions", "sess_id = NULL", "1")
                              << "table \"sessions\", column \"sess_id\", row (stock_id 2, "
                                 "sess_id NULL): must not be empty";
    QTest::newRow("empty code") << update("stocks", "stock_code = ''", "stock_id = 1")
                                << "table \"stocks\", column \"stock_code\", row (stock_id 1): "
                                   "must not be empty";
    QTest::newRow("33 bits") << update("securities", "sess_id = 2147483648", "sec_id = 1")
                             << "table \"securities\", column \"sess_id\", row (stock_id 2, "
                                "board_id 7, sec_id 1): 2147483648 is outside the range of 32 bits";
    QTest::newRow("long text") << update("\"gx.diler\"", "client_code = '12345678'", "1")
                               << "table \"gx.diler\", column \"client_code\", row (mox_code "
                                  "'M1'): the text has 8 characters, 7 are allowed";
    QTest::newRow("key twice") << "INSERT INTO securities VALUES (2, 7, 5, '', '', '', 1)"
                               << "table \"securities\", columns \"stock_id\", \"board_id\", "
                                  "\"sec_id\", row (stock_id 2, board_id 7, sec_id 5): 2, 7, 5 "
                                  "stands there twice";
    QTest::newRow("code twice") << update("boards", "board_code = 'B7b'", "board_id = 9")
                                << "table \"boards\", columns \"stock_id\", \"board_code\", row "
                                   "(stock_id 1, board_id 9): 1, B7b stands there twice";
    QTest::newRow("unknown exchange") << update("sessions", "stock_id = 3", "1")
                                      << "table \"sessions\", column \"stock_id\", row (stock_id "
                                         "3, sess_id 1): table \"stocks\" has no such row";
    QTest::newRow("unknown board")
        << update("securities", "board_id = 8", "sec_id = 44")
        << "table \"securities\", columns \"stock_id\", \"board_id\", row (stock_id 2, board_id 8, "
           "sec_id 44): table \"boards\" has no such row";
}

void EmbeddedHostTest::refusedFiles()
{
    QFETCH(QString, sql);
    QFETCH(QString, error);
    const QString good = makeFile(content("a"));
    EmbeddedHost host;
    QVERIFY(host.loadNow(good));
    const QString bad = makeFile(content("b") << sql);
    QSignalSpy failed(&host, &EmbeddedHost::failed);
    host.load(bad);
    QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, 60000);
    QCOMPARE(failed.at(0).at(0).toString(), bad + ": " + error);
    QVERIFY(!host.loadNow(bad));
    QCOMPARE(host.errorText(), bad + ": " + error);
    QCOMPARE(column(host.table("stocks"), "stock_code"), QStringList({"XAa", "XBa"}));
    QCOMPARE(host.stockDirectory()->codeById(1), QString("XAa"));
    QCOMPARE(host.liveRows(), Rows);
}

// Fifty reloads, by turns from two files, while this thread walks: whoever holds the lock
// sees one file's content in all tables, and rows that are held stay readable.
void EmbeddedHostTest::reloadUnderWalks()
{
    const QStringList files = {makeFile(content("a")), makeFile(content("b"))};
    EmbeddedHost host;
    QVERIFY(host.loadNow(files.at(0)));
    int loads = 0;
    connect(&host, &EmbeddedHost::loaded, this, [&] {
        if (++loads < 50)
            host.load(files.at(loads % 2));
    });
    host.load(files.at(1));
    Table *securities = host.table("securities");
    std::vector<Record> held;
    while (loads < 50 && host.errorText().isEmpty()) {
        QCoreApplication::processEvents();
        // The directories and the sessions need no lock.
        QVERIFY(host.boardDirectory()->isPositionById(2, 7));
        QCOMPARE(host.currentSessions().size(), 1);
        const TableLock lock(securities);
        const QString tag = column(host.table("stocks"), "name").at(0).right(1);
        int rows = 0;
        for (const Record &row : *securities->masterIndex()) {
            ++rows;
            QVERIFY(securities->dataPtr(row.row(), 3).asStaticString().endsWith(tag));
            const int stock = securities->dataPtr(row.row(), 0).toInteger();
            QVERIFY(host.stockDirectory()->codeById(stock).endsWith(tag));
        }
        QCOMPARE(rows, 2000);
        held.push_back(securities->masterIndex()->at(loads));
    }
    QCOMPARE(host.errorText(), QString());
    for (const Record &row : held)
        QCOMPARE(row.field(securities->columnIndex("sec_name")).toString().left(5),
                 QString("Name "));
    QVERIFY(host.liveRows() > Rows);
    held.clear();
    QCOMPARE(host.liveRows(), Rows);
}

void EmbeddedHostTest::endsOfALoad()
{
    QStringList large = content("l");
    large.replaceInStrings("2000", "200000");
    const QString largeFile = makeFile(large);
    const QString file = makeFile(content("s"));
    EmbeddedHost host;
    QSignalSpy loaded(&host, &EmbeddedHost::loaded);
    QSignalSpy cancelled(&host, &EmbeddedHost::cancelled);
    QSignalSpy progress(&host, &EmbeddedHost::progress);

    host.load(largeFile);
    QVERIFY(host.isLoading());
    host.cancel();
    QTRY_COMPARE_WITH_TIMEOUT(cancelled.size(), 1, 60000);
    QVERIFY(!host.isLoading());
    QCOMPARE(host.liveRows(), 0);

    host.load(largeFile);
    host.load(file);
    QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, 60000);
    QCOMPARE(cancelled.size(), 2);
    QCOMPARE(host.stockDirectory()->codeById(1), QString("XAs"));
    QVERIFY(progress.contains(QVariantList({"securities", 2000, 2000})));
    QVERIFY(progress.contains(QVariantList({"sessions", 1, 1})));

    host.load(largeFile);
    QVERIFY(host.loadNow(file));
    QCOMPARE(cancelled.size(), 3);
    host.reload();
    QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 3, 60000);
    host.load(m_folder.filePath("none"));
    QTRY_COMPARE_WITH_TIMEOUT(host.errorText(), m_folder.filePath("none") + ": no such file",
                              60000);
    QVERIFY(!host.loadNow(QCoreApplication::applicationFilePath()));
    QVERIFY2(host.errorText().contains("not a database"), qPrintable(host.errorText()));
    QCOMPARE(host.liveRows(), Rows);
    host.load(largeFile); // and the host goes
}

void EmbeddedHostTest::sessionsAndPlugins()
{
    EmbeddedHost host;
    ICore::install(&host);
    QSignalSpy announced(qobject_cast<EmbeddedDecoder *>(host.plugins().at(0)),
                         SIGNAL(aNewSessions()));
    QVERIFY(qobject_cast<IDecoder *>(host.plugins().at(0)));
    const QString file = makeFile(content("a"));
    QVERIFY(host.loadNow(file));
    QCOMPARE(announced.size(), 1);
    QVERIFY(host.loadNow(file));
    QCOMPARE(announced.size(), 1);
    host.setSessions({{1, 5}});
    QCOMPARE(announced.size(), 2);
    QCOMPARE(ICore::instance()->currentSessions(), QVector<SessionId>({{1, 5}}));
    {
        QObject plugin;
        host.addPlugin(&plugin);
        QCOMPARE(host.plugins().at(1), &plugin);
    }
    QCOMPARE(host.plugins(), QList<QObject *>({host.decoder(), nullptr}));
}

void EmbeddedHostTest::throwInAWalk()
{
    TestHost counting;
    TestTable &stocks = counting.table("stocks");
    stocks.setRows({{1, "Alpha", "XA"}, {2, "Beta", "XB"}, {3, "Gamma", "XC"}});
    QVERIFY_EXCEPTION_THROWN(throwingWalk(&stocks), Exception);
    stocks.failAtCell(3);
    QVERIFY_EXCEPTION_THROWN(column(&stocks, "name"), Exception);
    QCOMPARE(stocks.locks(), stocks.unlocks());
    QCOMPARE(stocks.references(), 0);
    QCOMPARE(stocks.liveRows(), 3);

    EmbeddedHost host;
    QVERIFY(host.loadNow(makeFile(content("a"))));
    QVERIFY_EXCEPTION_THROWN(throwingWalk(host.table("stocks")), Exception);
    QSignalSpy loaded(&host, &EmbeddedHost::loaded);
    host.reload(); // needs the lock, on another thread
    QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, 60000);
    QCOMPARE(host.liveRows(), Rows);
}

QTEST_GUILESS_MAIN(EmbeddedHostTest)
#include "tst_embeddedhost.moc"
