#include "realserver.h"
#include "session.h"
#include "support/datafile.h"
#include "support/stricttest.h"

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
    if (session.server.failure().contains("NOT TRIED"))                                            \
        QSKIP(qPrintable(session.server.failure()));                                               \
    QVERIFY2(session.server.failure().isEmpty(), qPrintable(session.server.failure()));            \
    QVERIFY2(session.login(), qPrintable(session.recorder.last()))

} // namespace

// FORMKIT_FTP_SERVER names the server, all of them unless set; FORMKIT_FTP_MEGABYTES sets the size
// of the files that are moved (4 unless set).
class FtpRealServersTest : public StrictTest
{
    Q_OBJECT

public:
    explicit FtpRealServersTest(const QString &kind) : m_kind(kind) {}

private slots:
    void initTestCase();
    void commands();
    void transfers_data() { modes(); }
    void transfers();
    void aborts_data() { modes(); }
    void aborts();
    void serverDies();
    void betweenServers();

private:
    static void modes();

    const QString m_kind;
};

void FtpRealServersTest::initTestCase()
{
    QProcess unpack;
    unpack.setProcessChannelMode(QProcess::MergedChannels);
    unpack.start(UNPACK_SCRIPT, {SERVERS_FOLDER});
    QVERIFY2(unpack.waitForFinished(200000), "fetching the servers takes too long");
    if (unpack.exitCode() == 77)
        QSKIP("NOT TRIED: " + unpack.readAll());
    QVERIFY2(unpack.exitCode() == 0, "no servers fetched: " + unpack.readAll());
}

void FtpRealServersTest::modes()
{
    QTest::addColumn<bool>("passive");
    QTest::newRow("passive") << true;
    QTest::newRow("active") << false;
}

void FtpRealServersTest::commands()
{
    RealSession session(m_kind);
    START(session);
    for (const QStringList &row : rowsOf("realcommands.txt")) {
        const long long result = session.perform(row[0]);
        QVERIFY2(row[1] == "--" ? result >= 0 : result == row[1].toLongLong(), qPrintable(row[0]));
    }
    QVERIFY(qAbs(QDateTime::currentSecsSinceEpoch() - session.perform("mdtm")) < 600);
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    QVERIFY(session.client.List("", entries, false));
    QCOMPARE(entries.size(), size_t(1));
    QCOMPARE(entries[0]->name, std::string("f"));
    QCOMPARE(entries[0]->size, 5LL);
    QCOMPARE(std::count(session.lines.begin(), session.lines.end(), "f"), 1L);
    QCOMPARE(session.client.Logout(), 0);
    QCOMPARE(session.recorder.errors(), QStringList());
}

// Down and up in three buffer sizes, and resumed from the beginning, the middle and the end.
void FtpRealServersTest::transfers()
{
    QFETCH(bool, passive);
    const int megabytes = qMax(1, qEnvironmentVariable("FORMKIT_FTP_MEGABYTES", "4").toInt());
    const QByteArray content = bytes(megabytes * 1024 * 1024);
    RealSession session(m_kind, content);
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
    QFETCH(bool, passive);
    // The proxy answers no plain ABOR: the session then says that it is closed.
    const bool answersAbort = m_kind != "ftp-proxy";
    const QByteArray content = bytes(20000000);
    RealSession session(m_kind, content, answersAbort ? 60 : 2);
    START(session);
    int blocks = 0;
    session.recorder.afterBlock = [&] {
        if (++blocks % 20 == 0)
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
    session.write(content);
    QVERIFY(!session.put("up", passive));
    QVERIFY2(inStep(), qPrintable(session.recorder.last()));
    // What the aborted transfers left is completed.
    session.recorder.afterBlock = [] {};
    QVERIFY2(session.put("up", passive), qPrintable(session.recorder.last()));
    QVERIFY(session.server.get("up") == content);
}

void FtpRealServersTest::serverDies()
{
    RealSession session(m_kind, bytes(20000000));
    START(session);
    session.recorder.afterBlock = [&] { session.server.kill(); };
    QVERIFY(!session.get("f"));
    QVERIFY(session.read().size() < 20000000);
    QCOMPARE(session.client.Noop(), -1);
    QVERIFY(!session.client.IsConnected());
}

// To pyftpdlib and back. A proxy stands in the way of such transfers.
void FtpRealServersTest::betweenServers()
{
    const QByteArray content = bytes(3000000);
    RealSession here(m_kind == "ftp-proxy" ? "pyftpdlib" : m_kind, content);
    RealSession there("pyftpdlib", content);
    START(here);
    START(there);
    for (const bool passive : {true, false}) {
        for (const auto &[from, to] : {std::pair(&here, &there), std::pair(&there, &here)}) {
            const QString name = passive ? "p" : "a";
            QVERIFY2(CFTPClient::TransferFile(from->client, "f", to->client, name.toStdString(),
                                              CType::Image, passive),
                     qPrintable(from->recorder.last() + to->recorder.last()));
            QVERIFY(to->server.get(name) == content);
        }
    }
    QVERIFY(here.inStep() && there.inStep());
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString all = "vsftpd,pure-ftpd,proftpd,pyftpdlib,ftp-proxy";
    int failures = 0;
    for (const QString &kind : qEnvironmentVariable("FORMKIT_FTP_SERVER", all).split(',')) {
        qInfo("%s", qPrintable(kind));
        FtpRealServersTest test(kind);
        failures += QTest::qExec(&test, argc, argv);
    }
    return failures;
}

#include "tst_ftprealservers.moc"
