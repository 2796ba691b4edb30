#include "support/stricttest.h"

#include <embeddedhost/embeddedhost.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace {

struct Result
{
    int exitCode;
    QString error;
};

Result run(const QStringList &arguments)
{
    QProcess process;
    process.start(FORMKIT_MKDB, arguments);
    process.waitForFinished();
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardError()).trimmed()};
}

QByteArray contentOf(const QString &file)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

int rowsOf(EmbeddedHost &host, const QString &name)
{
    Table *table = host.table(name);
    const TableLock lock(table);
    return table->masterIndex()->count();
}

} // namespace

class MkdbTest : public StrictTest
{
    Q_OBJECT

private slots:
    void faultsOfCsv_data();
    void faultsOfCsv();
    void sample();
    void generated();

private:
    QTemporaryDir m_folder;
};

void MkdbTest::faultsOfCsv_data()
{
    QTest::addColumn<QByteArray>("old"); // in the sample's boards.csv
    QTest::addColumn<QByteArray>("changed");
    QTest::addColumn<QString>("error"); // "line:column: reason", empty when it is good
    const auto row = [](const char *name, const char *old, const char *changed, const char *error) {
        QTest::newRow(name) << QByteArray(old) << QByteArray(changed) << QString(error);
    };
    row("CRLF and a byte order mark", "stock_id,board_id", "\xef\xbb\xbfstock_id,board_id", "");
    row("quotes", "1,3,XASE,NYSE American,", "1,3,XASE,\"NYSE \"\"A\"\",\nb\",", "");
    row("no column", "sectype,", "", "1:1: column \"sectype\" is missing");
    row("unknown column", "name,", "nam,", "1:30: table \"boards\" has no column \"nam\"");
    row("column twice", "sectype,", "name,", "1:35: column \"name\" again");
    row("cells", "4,2,AIMX,AIM,S", "4,2,AIMX,AIM,S,S", "14:1: 8 cells, not 7");
    row("no integer", "AIM,S,1,", "AIM,S,1.0,", "14:16: flags: \"1.0\" is no integer in range");
    row("long text", "AIM,S,", "AIM,SS,", "14:14: sectype: longer than 1 characters");
    row("open quote", "AIM,S", "\"AIM,S", "14:10: the closing quote is missing");
    row("quote inside", "AIM,S", "A\"IM,S",
        "14:10: a quote inside a cell that does not begin with one");
    row("behind a quote", "AIM,S", "\"AI\"M,S", "14:10: text behind the closing quote");
    row("Latin-1", "AIM,S", "A\xcdM,S", "14:10: not UTF-8");
    row("key twice", "4,2,AIMX", "4,1,AIMX",
        "14:1: UNIQUE constraint failed: boards.stock_id, boards.board_id");
    row("unknown exchange", "4,2,AIMX", "44,2,AIMX", "14:1: FOREIGN KEY constraint failed");
    row("no key", "4,2,AIMX", "4,,AIMX", "14:1: NOT NULL constraint failed: boards.board_id");
}

void MkdbTest::faultsOfCsv()
{
    QFETCH(QByteArray, old);
    QFETCH(QByteArray, changed);
    QFETCH(QString, error);
    const QDir sample(FORMKIT_SAMPLE_FOLDER);
    for (const QString &name : sample.entryList({"*.csv"})) {
        QByteArray text = contentOf(sample.filePath(name));
        if (name == "boards.csv") {
            QVERIFY(text.contains(old));
            text.replace(text.indexOf(old), old.size(), changed);
            text.replace("\n", error.isEmpty() ? "\r\n" : "\n");
        }
        QFile copy(m_folder.filePath(name));
        QVERIFY(copy.open(QIODevice::WriteOnly) && copy.write(text) == text.size());
    }
    const QString database = m_folder.filePath("out.sqlite");
    QFile::remove(database);
    const Result result = run({"--csv", m_folder.path(), database});
    const QString file = m_folder.filePath("boards.csv");
    QCOMPARE(result.error, error.isEmpty() ? QString() : file + ':' + error);
    QCOMPARE(result.exitCode, error.isEmpty() ? 0 : 1);
    QCOMPARE(QFile::exists(database), error.isEmpty());
    QVERIFY(!QFile::exists(database + ".part"));
}

void MkdbTest::sample()
{
    EmbeddedHost host;
    QVERIFY2(host.loadNow(FORMKIT_SAMPLE_DATABASE), qPrintable(host.errorText()));
    QCOMPARE(rowsOf(host, "stocks"), 12);
    QCOMPARE(rowsOf(host, "securities"), 5000);
    QCOMPARE(rowsOf(host, "gx.diler"), 40);
    QCOMPARE(host.boardDirectory()->idByCode("XLON", "AIMX"), 2);
}

void MkdbTest::generated()
{
    const auto make = [this](const QString &name, const QString &seed) {
        const QString file = m_folder.filePath(name);
        const Result result =
            run({"--securities", "2500", "--per-board", "100", "--seed", seed, file});
        if (result.exitCode != 0)
            qWarning() << result.error;
        return file;
    };
    const QString file = make("one", "7");
    QCOMPARE(contentOf(make("two", "7")), contentOf(file));
    QVERIFY(contentOf(make("three", "8")) != contentOf(file));
    EmbeddedHost host;
    QVERIFY2(host.loadNow(file), qPrintable(host.errorText()));
    QCOMPARE(rowsOf(host, "securities"), 2500);
    QCOMPARE(rowsOf(host, "boards"), 25);
    QVERIFY(run({"--securities", "0", file}).error.startsWith("--securities: \"0\" is no number"));
    QCOMPARE(run({"--securities", "5", m_folder.filePath("no/such")}).exitCode, 1);
}

QTEST_GUILESS_MAIN(MkdbTest)
#include "tst_mkdb.moc"
