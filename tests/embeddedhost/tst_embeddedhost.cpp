// SPDX-License-Identifier: BSD-3-Clause
#include "support/datafile.h"
#include "support/stricttest.h"

#include <embeddedhost/embeddedhost.h>
#include <hostapi/exception.h>

#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

class EmbeddedHostTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void contentOfAFile();
    void steps();
    void refusedFiles();
    void reloadUnderWalks();
    void endsOfALoad();
    void sessionsAndPlugins();
    void madeFromCsv();
    void generated();

private:
    QString makeFile(const QString &tag, const QString &change = {}, const QString &rows = "2000");

    QTemporaryDir m_folder;
    int m_files = 0;
};

namespace {

constexpr int Rows = 2 + 3 + 2000 + 1 + 2;

QByteArray contentOf(const QString &file)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

QStringList column(Table *table, const QString &name)
{
    const int index = table->columnIndex(name);
    QStringList texts;
    const TableLock lock(table);
    for (const Record &row : *table->masterIndex())
        texts << (row.field(index).isNull() ? "NULL" : row.field(index).toString());
    return texts;
}

// What the tool for databases writes to its error channel.
QString mkdb(const QStringList &arguments)
{
    QProcess process;
    process.start(FORMKIT_MKDB, arguments);
    process.waitForFinished();
    const QString error = QString::fromUtf8(process.readAllStandardError()).trimmed();
    return process.exitCode() == (error.isEmpty() ? 0 : 1) ? error : "wrong exit code: " + error;
}

} // namespace

QString EmbeddedHostTest::makeFile(const QString &tag, const QString &change, const QString &rows)
{
    QString file = m_folder.filePath(QString::number(++m_files) + ".sqlite");
    QString sql = contentOf(DATA_FOLDER "/content.sql");
    sql.replace('@', tag).replace("2000", rows);
    const QString script =
        "import sqlite3, sys; sqlite3.connect(sys.argv[1]).executescript(sys.argv[2])";
    if (QProcess::execute("/usr/bin/python3",
                          {"-c", script, file, "BEGIN;" + sql + ";" + change + ";COMMIT"}) != 0)
        qWarning("no such database");
    return file;
}

void EmbeddedHostTest::contentOfAFile()
{
    EmbeddedHost host;
    QVERIFY2(host.loadNow(makeFile("x")), qPrintable(host.errorText()));
    for (const DataRow &row : rowsOf("columns.txt"))
        QCOMPARE(column(host.table(row[0]), row[1]).join('|'), row[2]);
    QCOMPARE(column(host.table("securities"), "sec_id").mid(0, 3), QStringList({"1", "2", "3"}));
    QCOMPARE(host.table("boards")->columnIndex("extra"), -1);
    QCOMPARE(host.liveRows(), Rows);
    {
        Table *boards = host.table("boards");
        const TableLock lock(boards);
        Record key(boards);
        key.field(boards->columnIndex("stock_id")) = 1;
        key.field(boards->columnIndex("board_id")) = 9;
        key.field(boards->columnIndex("name")) = QString(); // no other cell becomes null
        const Record found = boards->masterIndex()->find(key);
        QCOMPARE(found.field(boards->columnIndex("name")).toString(), QString("Nine x"));
        QVERIFY(found.field(boards->columnIndex("no such column")).isNull());
        key.field(boards->columnIndex("board_id")) = 8;
        QVERIFY(boards->masterIndex()->find(key).isNull());
        QVERIFY(boards->masterIndex()->find(Record()).isNull());
    }
    const StockDirectory *stocks = host.stockDirectory();
    QCOMPARE(stocks->codeById(2) + stocks->codeById(3), QString("XBx"));
    QVERIFY(stocks->idByCode("XBx") == 2 && stocks->idByCode("xbx") == 0);
    const BoardDirectory *boards = host.boardDirectory();
    QCOMPARE(boards->codeById(1, 9) + boards->codeById(2, 9), QString("B9x"));
    QVERIFY(boards->idByCode("XAx", "B9x") == 9 && boards->idByCode("XBx", "B9x") == 0);
    QCOMPARE(boards->idByCode("none", "B9x"), 0);
    QVERIFY(boards->checkFlagsById(1, 9, Q_INT64_C(8589934593)));
    QVERIFY(!boards->checkFlagsById(1, 9, 1) && !boards->checkFlagsById(3, 9, -1));
    QVERIFY(boards->isPositionById(2, 7) && !boards->isPositionById(1, 7));
    QVERIFY(!boards->isPositionById(1, 8));
    const QString distinct = "UPDATE securities SET base_code = 'B' || sec_id";
    QVERIFY2(host.loadNow(makeFile("x", distinct, "5000")), qPrintable(host.errorText()));
    QCOMPARE(column(host.table("securities"), "base_code").last(), QString("B5000"));
}

// The columns may be missing, as they are in the first file.
void EmbeddedHostTest::steps()
{
    EmbeddedHost host;
    const auto stepsOf = [&](int board, qint64 security) {
        const TradingSteps steps = host.stepSource()->stepsOf(2, board, security);
        return steps.price.toString() + ' ' + steps.lot.toString();
    };
    QVERIFY(host.loadNow(makeFile("x")));
    QCOMPARE(stepsOf(7, 5), QString("0 0"));
    const QString columns = "ALTER TABLE securities ADD COLUMN lot;"
                            "ALTER TABLE securities ADD COLUMN price_step;"
                            "UPDATE securities SET price_step = '0.0005', lot = sec_id * 10 "
                            "WHERE sec_id % 2 = 1; UPDATE securities SET lot = 3 WHERE sec_id = 8";
    QVERIFY2(host.loadNow(makeFile("x", columns)), qPrintable(host.errorText()));
    QCOMPARE(stepsOf(7, 5), QString("0.0005 50"));
    QCOMPARE(stepsOf(7, 1999), QString("0.0005 19990"));
    QCOMPARE(stepsOf(7, 8), QString("0 3"));
    QCOMPARE(stepsOf(7, 6) + stepsOf(9, 5) + stepsOf(7, 2001), QString("0 00 00 0"));
}

void EmbeddedHostTest::refusedFiles()
{
    EmbeddedHost host;
    QVERIFY(host.loadNow(makeFile("a")));
    QSignalSpy failed(&host, &EmbeddedHost::failed);
    for (const DataRow &row : rowsOf("refused.txt")) {
        const QString bad = makeFile("b", row[0]);
        host.load(bad);
        QTRY_VERIFY_WITH_TIMEOUT(!host.isLoading(), 60000);
        QCOMPARE(failed.size(), 1);
        QCOMPARE(failed.takeFirst().at(0).toString(), bad + ": " + row[1]);
        QVERIFY(!host.loadNow(bad));
        QCOMPARE(host.errorText(), bad + ": " + row[1]);
        QCOMPARE(failed.size(), 1);
        failed.clear();
        QCOMPARE(column(host.table("stocks"), "stock_code"), QStringList({"XAa", "XBa"}));
        QCOMPARE(host.stockDirectory()->codeById(1), QString("XAa"));
        QCOMPARE(host.liveRows(), Rows);
    }
}

// Fifty reloads, by turns from two files, while this thread walks: whoever holds the lock
// sees one file's content in all tables, and rows that are held stay readable.
void EmbeddedHostTest::reloadUnderWalks()
{
    const QStringList files = {makeFile("a"), makeFile("b")};
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
        QCOMPARE(host.currentSessions().size(), 2);
        const TableLock lock(securities);
        const QString tag = column(host.table("stocks"), "name").at(0).right(1);
        int rows = 0;
        for (const Record &row : *securities->masterIndex()) {
            ++rows;
            QVERIFY(row.field(3).asStaticString().endsWith(tag));
            QVERIFY(host.stockDirectory()->codeById(row.field(0).toInteger()).endsWith(tag));
        }
        QCOMPARE(rows, 2000);
        held.push_back(securities->masterIndex()->at(loads));
    }
    QCOMPARE(host.errorText(), QString());
    for (const Record &row : held)
        QVERIFY(row.field(securities->columnIndex("sec_name")).toString().startsWith("Name "));
    QVERIFY(host.liveRows() > Rows);
    held.clear();
    QCOMPARE(host.liveRows(), Rows);
}

void EmbeddedHostTest::endsOfALoad()
{
    const QString large = makeFile("l", {}, "200000");
    const QString file = makeFile("s");
    EmbeddedHost host;
    QSignalSpy loaded(&host, &EmbeddedHost::loaded);
    QSignalSpy cancelled(&host, &EmbeddedHost::cancelled);
    QSignalSpy progress(&host, &EmbeddedHost::progress);

    host.load(large);
    host.load(large); // after the first
    QVERIFY(host.isLoading());
    host.cancel();
    QTRY_COMPARE_WITH_TIMEOUT(cancelled.size(), 1, 60000);
    QVERIFY(!host.isLoading());
    QCOMPARE(host.liveRows(), 0);

    host.load(large);
    host.load(file);
    QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, 60000);
    QCOMPARE(cancelled.size(), 2);
    QCOMPARE(host.stockDirectory()->codeById(1), QString("XAs"));
    QVERIFY(progress.contains(QVariantList({"securities", 2000, 2000})));
    QVERIFY(progress.contains(QVariantList({"sessions", 2, 2})));

    host.load(large);
    QVERIFY(host.loadNow(file));
    QCOMPARE(cancelled.size(), 3);
    Table *stocks = host.table("stocks");
    const auto failingWalk = [&] {
        const TableLock lock(stocks);
        for (const Record &row : *stocks->masterIndex())
            row.field(stocks->columnIndex("name")).toInteger();
    };
    QVERIFY_EXCEPTION_THROWN(failingWalk(), Exception);
    host.reload(); // takes the lock on another thread
    QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 3, 60000);
    host.load(m_folder.filePath("none"));
    QTRY_COMPARE_WITH_TIMEOUT(host.errorText(), m_folder.filePath("none") + ": no such file",
                              60000);
    QCOMPARE(host.liveRows(), Rows);
    host.load(large);
    host.cancel();
    QTRY_COMPARE_WITH_TIMEOUT(cancelled.size(), 4, 60000);
    QCOMPARE(host.errorText(), QString());
    host.load(large); // and the host goes
}

void EmbeddedHostTest::sessionsAndPlugins()
{
    {
        EmbeddedHost host;
        ICore::install(&host);
        QSignalSpy announced(host.plugins().at(0), SIGNAL(aNewSessions()));
        QVERIFY(qobject_cast<IDecoder *>(host.plugins().at(0)));
        const QString file = makeFile("a");
        for (int load = 0; load < 2; ++load) {
            QVERIFY(host.loadNow(file));
            QCOMPARE(announced.size(), 1);
        }
        host.setSessions({{1, 5}});
        QCOMPARE(announced.size(), 2);
        QCOMPARE(ICore::instance()->currentSessions(), QVector<SessionId>({{1, 5}}));
        auto plugin = std::make_unique<QObject>();
        host.addPlugin(plugin.get());
        QCOMPARE(host.plugins(), QList<QObject *>({host.decoder(), plugin.get()}));
        plugin.reset();
        QCOMPARE(host.plugins(), QList<QObject *>({host.decoder(), nullptr}));
    }
    QVERIFY(ICore::instance()->plugins().isEmpty());
}

void EmbeddedHostTest::madeFromCsv()
{
    const QDir sample(FORMKIT_SAMPLE_FOLDER);
    const QString file = m_folder.filePath("boards.csv");
    const QString database = m_folder.filePath("out.sqlite");
    for (const QString &name : sample.entryList({"*.csv"}))
        QFile::copy(sample.filePath(name), m_folder.filePath(name));
    for (const DataRow &row : rowsOf("boardscsv.txt")) {
        const bool isGood = !row[2].contains(':');
        QString text = QString::fromUtf8(contentOf(sample.filePath("boards.csv")));
        QVERIFY(text.contains(row[0]));
        text.replace(text.indexOf(row[0]), row[0].size(), row[1]);
        text.replace("\n", isGood ? "\r\n" : "\n");
        QFile boards(file);
        QVERIFY(boards.open(QIODevice::WriteOnly));
        boards.write(row.size() > 3 ? text.toLatin1() : text.toUtf8());
        boards.close();
        QFile::remove(database);
        QCOMPARE(mkdb({"--csv", m_folder.path(), database}),
                 isGood ? QString() : file + ':' + row[2]);
        QVERIFY(!QFile::exists(database + ".part"));
        EmbeddedHost host;
        QCOMPARE(host.loadNow(database), isGood);
        QCOMPARE(host.boardDirectory()->checkFlagsById(8, 2, 8), row[2] == "yes");
    }
}

void EmbeddedHostTest::generated()
{
    const QString file = m_folder.filePath("invented");
    const auto invented = [&](const QString &seed) {
        const QStringList size = {"--securities", "2500", "--per-board", "100"};
        const QByteArray error = mkdb(size + QStringList({"--seed", seed, file})).toUtf8();
        return error + contentOf(file);
    };
    const QByteArray content = invented("7");
    QVERIFY(invented("8") != content && invented("7") == content);
    EmbeddedHost host;
    QVERIFY2(host.loadNow(file), qPrintable(host.errorText()));
    QCOMPARE(column(host.table("securities"), "sec_id").size(), 2500);
    QCOMPARE(column(host.table("boards"), "board_id").size(), 25);
    QVERIFY2(host.loadNow(FORMKIT_SAMPLE_DATABASE), qPrintable(host.errorText()));
    QCOMPARE(column(host.table("securities"), "sec_id").size(), 5000);
    QVERIFY(mkdb({"--securities", "0", file}).startsWith("--securities: \"0\" is no number"));
    QVERIFY(mkdb({"--securities", "5", m_folder.filePath("no/such")}).contains("cannot be writ"));
}

QTEST_GUILESS_MAIN(EmbeddedHostTest)
#include "tst_embeddedhost.moc"
