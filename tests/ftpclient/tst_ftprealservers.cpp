#include "support/datafile.h"
#include "realserver.h"
#include "session.h"
#include "support/stricttest.h"

#include <QStandardPaths>

using namespace nsFTP;

namespace {

// The client of a real server that is killed in the end.
struct RealSession : Client
{
    explicit RealSession(const QString &kind, const QByteArray &content = "12345",
                         unsigned int seconds = 60)
        : Client(seconds, 65536), server(kind)
    {
        server.put("f", content);
    }
    bool login() { return client.Login(server.logon()); }
    RealServer server;
};

// Bytes that repeat nowhere near.
QByteArray bytes(int size)
{
    QByteArray result(size, Qt::Uninitialized);
    quint32 state = 12345;
    for (char &byte : result) {
        state = state * 1664525 + 1013904223;
        byte = char(state >> 24);
    }
    return result;
}

#define START(session)                                                                             \
    if (session.server.needsRoot())                                                                \
        QSKIP("NOT TRIED: only root can start pure-ftpd so that it lets anybody in");              \
    QVERIFY2(session.server.failure().isEmpty(), qPrintable(session.server.failure()));            \
    QVERIFY2(session.login(), qPrintable(session.recorder.last()))

const char *const Kinds[] = {"vsftpd", "pure-ftpd", "proftpd", "pyftpdlib", "ftp-proxy"};

} // namespace

// FORMKIT_FTP_MEGABYTES sets the size of the files that are moved (4 unless set).
class FtpRealServersTest : public StrictTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void commands_data() { servers(false); }
    void commands();
    void transfers_data() { servers(true); }
    void transfers();
    void aborts_data() { servers(true); }
    void aborts();
    void serverDies_data() { servers(false); }
    void serverDies();
    void betweenServers();

private:
    static void servers(bool bothModes);
};

void FtpRealServersTest::initTestCase()
{
    if (QStandardPaths::findExecutable("apt-get").isEmpty())
        QSKIP("NO REAL SERVERS TRIED: this machine has no apt-get to fetch them with");
    QProcess unpack;
    unpack.setProcessChannelMode(QProcess::MergedChannels);
    unpack.start(UNPACK_SCRIPT, {SERVERS_FOLDER});
    QVERIFY2(unpack.waitForFinished(200000), "fetching the servers takes too long");
    QVERIFY2(unpack.exitCode() == 0, "no servers fetched: " + unpack.readAll());
}

void FtpRealServersTest::servers(bool bothModes)
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("passive");
    for (const char *kind : Kinds) {
        QTest::addRow("%s", kind) << kind << true;
        if (bothModes)
            QTest::addRow("%s, active", kind) << kind << false;
    }
}

void FtpRealServersTest::commands()
{
    QFETCH(QString, kind);
    RealSession session(kind);
    START(session);
    for (const QStringList &row : rowsOf("realcommands.txt")) {
        const long long result = session.perform(row[0]);
        QVERIFY2(row[1] == "--" ? result >= 0 : result == row[1].toLongLong(), qPrintable(row[0]));
        if (row[0] == "size") {
            long long seconds = session.perform("mdtm");
            QVERIFY(qAbs(QDateTime::currentSecsSinceEpoch() - seconds) < 600);
            std::vector<std::shared_ptr<CFTPFileStatus>> entries;
            QVERIFY(session.client.List("", entries, false));
            QCOMPARE(entries.size(), size_t(1));
            QCOMPARE(entries[0]->name, std::string("f"));
            QCOMPARE(entries[0]->size, 5LL);
        }
    }
    QCOMPARE(std::count(session.lines.begin(), session.lines.end(), "f"), 1L);
    QCOMPARE(session.client.Logout(), 0);
    QCOMPARE(session.recorder.errors(), QStringList());
}

// Down and up in three buffer sizes, and resumed from the beginning, the middle and the end.
void FtpRealServersTest::transfers()
{
    QFETCH(QString, kind);
    QFETCH(bool, passive);
    const int megabytes = qEnvironmentVariableIntValue("FORMKIT_FTP_MEGABYTES");
    const QByteArray content = bytes((megabytes > 0 ? megabytes : 4) * 1024 * 1024);
    RealSession session(kind, content);
    START(session);
    for (const unsigned int bufferSize : {65535U, 65536U, 1048576U}) {
        Client other(60, bufferSize);
        QVERIFY(other.client.Login(session.server.logon()));
        QVERIFY2(other.get("f", passive), qPrintable(other.recorder.last()));
        QVERIFY(other.read() == content);
        QVERIFY2(other.put("back", passive), qPrintable(other.recorder.last()));
        QVERIFY(session.server.get("back") == content);
        QCOMPARE(session.client.Delete("back"), 0);
        QCOMPARE(other.recorder.errors(), QStringList());
    }
    for (const int there : {0, 1, content.size() / 2, content.size()}) {
        session.write(content.left(there));
        QVERIFY2(session.get("f", passive), qPrintable(session.recorder.last()));
        QVERIFY(session.read() == content);
        session.server.put("up", content.left(there));
        QVERIFY2(session.put("up", passive), qPrintable(session.recorder.last()));
        QVERIFY(session.server.get("up") == content);
    }
    QVERIFY(session.inStep());
}

void FtpRealServersTest::aborts()
{
    QFETCH(QString, kind);
    QFETCH(bool, passive);
    // The proxy answers no plain ABOR: the session then says that it is closed.
    const bool answersAbort = kind != "ftp-proxy";
    const QByteArray content = bytes(20000000);
    RealSession session(kind, content, answersAbort ? 60 : 2);
    START(session);
    int blocks = 0;
    session.recorder.afterBlock = [&] {
        if (++blocks == 20)
            session.client.Abort();
    };
    const auto inStep = [&] {
        int answered = 0;
        for (int i = 0; i < 10; ++i)
            answered += session.inStep();
        return answersAbort || session.client.IsConnected() ? answered == 10 : session.login();
    };
    QVERIFY(!session.get("f", passive));
    QVERIFY(content.startsWith(session.read()));
    QVERIFY2(inStep(), qPrintable(session.recorder.last()));
    blocks = 0;
    session.write(content);
    QVERIFY(!session.put("up", passive));
    QVERIFY2(inStep(), qPrintable(session.recorder.last()));
    // What the aborted transfers left is completed.
    QVERIFY2(session.put("up", passive), qPrintable(session.recorder.last()));
    QVERIFY(session.server.get("up") == content);
}

void FtpRealServersTest::serverDies()
{
    QFETCH(QString, kind);
    RealSession session(kind, bytes(20000000));
    START(session);
    session.recorder.afterBlock = [&] { session.server.kill(); };
    QVERIFY(!session.get("f"));
    QVERIFY(session.read().size() < 20000000);
    QCOMPARE(session.client.Noop(), -1);
    QVERIFY(!session.client.IsConnected());
}

// Each server to the next one.
void FtpRealServersTest::betweenServers()
{
    for (int i = 0; i < 4; ++i) {
        const QByteArray content = bytes(3000000);
        RealSession source(Kinds[i], content);
        RealSession target(Kinds[(i + 1) % 4]);
        START(source);
        START(target);
        for (const bool passive : {true, false}) {
            const QString name = passive ? "p" : "a";
            QVERIFY2(CFTPClient::TransferFile(source.client, "f", target.client, name.toStdString(),
                                              CType::Image, passive),
                     qPrintable(source.recorder.last() + target.recorder.last()));
            QVERIFY(target.server.get(name) == content);
        }
        QVERIFY(source.inStep() && target.inStep());
    }
}

QTEST_GUILESS_MAIN(FtpRealServersTest)
#include "tst_ftprealservers.moc"
