#include "realserver.h"
#include "recorder.h"
#include "support/stricttest.h"

#include <QStandardPaths>

#include <thread>

using namespace nsFTP;

namespace {

struct Session
{
    explicit Session(const QString &kind, unsigned int bufferSize = 65536,
                     unsigned int seconds = 20)
        : server(kind)
        , client(nsSocket::CreateDefaultBlockingSocketInstance(), seconds, bufferSize)
        , local(folder.filePath("local"))
    {
        client.AttachObserver(&recorder);
    }
    bool get(const QString &name, bool passive) const
    {
        return client.DownloadFile(name.toStdString(), local.toStdString(), CType::Image, passive);
    }
    bool put(const QString &name, bool passive) const
    {
        return client.UploadFile(local.toStdString(), name.toStdString(), false, CType::Image,
                                 passive);
    }
    bool inStep() const
    {
        CReply reply;
        return client.SendCommand(CCommand::PWD, {}, reply) && reply.Code().Value() == "257";
    }

    RealServer server;
    QTemporaryDir folder;
    Recorder recorder;
    CFTPClient client;
    QString local;
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

void write(const QString &name, const QByteArray &content)
{
    QFile file(name);
    file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    file.write(content);
    file.close();
    file.setPermissions(QFile::Permissions(0x6666));
}

QByteArray read(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
}

// So that a comparison that fails does not print megabytes.
#define COMPARE_FILES(actual, expected) QVERIFY2((actual) == (expected), #actual)

#define START(session)                                                                             \
    if ((session).server.needsRoot())                                                              \
        QSKIP("NOT TRIED: only root can start pure-ftpd so that it lets anybody in");              \
    QVERIFY2((session).server.failure().isEmpty(), qPrintable((session).server.failure()));        \
    QVERIFY2((session).client.Login((session).server.logon()),                                     \
             qPrintable((session).recorder.last()))

const char *const Kinds[] = {"vsftpd", "pure-ftpd", "proftpd", "pyftpdlib", "ftp-proxy"};

} // namespace

// FORMKIT_FTP_MEGABYTES sets the size of the files that are moved (16 unless set).
class FtpRealServersTest : public StrictTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void commands_data() { servers(false); }
    void commands();
    void transfers_data();
    void transfers();
    void resumes_data() { servers(true); }
    void resumes();
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
    QVERIFY(unpack.waitForFinished(120000));
    QVERIFY2(unpack.exitCode() == 0, unpack.readAll().constData());
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
    Session session(kind);
    const CFTPClient &client = session.client;
    write(session.server.path("a file"), "hello");
    START(session);
    QVERIFY(session.inStep());
    QCOMPARE(client.System(), 0);
    QCOMPARE(client.Noop(), 0);
    QCOMPARE(client.Help(), 0);
    QCOMPARE(client.Status(), 0);
    QCOMPARE(client.MakeDirectory("dir"), 0);
    QCOMPARE(client.ChangeWorkingDirectory("dir"), 0);
    QCOMPARE(client.ChangeToParentDirectory(), 0);
    QCOMPARE(client.RemoveDirectory("dir"), 0);
    QCOMPARE(client.FileStructure(CStructure::File), 0);
    QCOMPARE(client.TransferMode(CTransferMode::Stream), 0);
    QCOMPARE(client.RepresentationType(CType::Image), 0);
    long size = 0;
    long long seconds = 0;
    QCOMPARE(client.FileSize("a file", size), 0);
    QCOMPARE(size, 5L);
    QCOMPARE(client.FileModificationTime("a file", seconds), 0);
    QVERIFY(qAbs(QDateTime::currentSecsSinceEpoch() - seconds) < 600);
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    QVERIFY(client.List("", entries, true));
    QCOMPARE(entries.size(), size_t(1));
    QCOMPARE(entries[0]->name, std::string("a file"));
    QCOMPARE(entries[0]->size, 5LL);
    std::vector<std::string> names;
    QVERIFY(client.NameList("", names, false));
    QVERIFY2(std::count(names.begin(), names.end(), "a file") == 1, names.front().c_str());
    QCOMPARE(client.Rename("a file", "b"), 0);
    QCOMPARE(client.Delete("b"), 0);
    QCOMPARE(client.Delete("b"), 1);
    // Answered by some with yes, by others with no, by all within their turn.
    QVERIFY(client.StructureMount("x") >= 0);
    QVERIFY(client.SiteParameters("HELP") >= 0);
    QVERIFY(client.Allocate(100) >= 0);
    QVERIFY(client.Abort() >= 0);
    QVERIFY(client.RepresentationType({CType::ASCII, CTypeFormat::NonPrint}) >= 0);
    QVERIFY(client.FileStructure(CStructure::Record) >= 0);
    QVERIFY(session.inStep());
    QCOMPARE(session.client.Logout(), 0);
    QCOMPARE(session.recorder.errors(), QStringList());
}

void FtpRealServersTest::transfers_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("passive");
    QTest::addColumn<int>("bufferSize");
    for (const char *kind : Kinds) {
        for (const bool passive : {true, false}) {
            for (const int bufferSize : {65535, 65536, 1048576})
                QTest::addRow("%s, %s, %d", kind, passive ? "passive" : "active", bufferSize)
                    << kind << passive << bufferSize;
        }
    }
}

void FtpRealServersTest::transfers()
{
    QFETCH(QString, kind);
    QFETCH(bool, passive);
    QFETCH(int, bufferSize);
    Session session(kind, unsigned(bufferSize));
    const int megabytes = qEnvironmentVariableIntValue("FORMKIT_FTP_MEGABYTES");
    const QByteArray content = bytes((megabytes > 0 ? megabytes : 16) * 1024 * 1024);
    write(session.server.path("big"), content);
    START(session);
    QVERIFY(session.get("big", passive));
    COMPARE_FILES(read(session.local), content);
    QVERIFY(session.put("back", passive));
    COMPARE_FILES(read(session.server.path("back")), content);
    QCOMPARE(session.recorder.errors(), QStringList());
}

void FtpRealServersTest::resumes()
{
    QFETCH(QString, kind);
    QFETCH(bool, passive);
    Session session(kind);
    const QByteArray content = bytes(100001);
    write(session.server.path("f"), content);
    START(session);
    for (const int there : {0, 1, 50000, 100001}) {
        write(session.local, content.left(there));
        QVERIFY2(session.get("f", passive), qPrintable(session.recorder.last()));
        COMPARE_FILES(read(session.local), content);
        const QString name = QString("up%1").arg(there);
        write(session.server.path(name), content.left(there));
        QVERIFY(session.put(name, passive));
        COMPARE_FILES(read(session.server.path(name)), content);
    }
    QVERIFY(session.inStep());
}

void FtpRealServersTest::aborts()
{
    QFETCH(QString, kind);
    QFETCH(bool, passive);
    // The proxy answers no plain ABOR: the session then says that it is closed.
    const bool answersAbort = kind != "ftp-proxy";
    Session session(kind, 65536, answersAbort ? 20 : 2);
    const QByteArray content = bytes(40000000);
    write(session.server.path("f"), content);
    START(session);
    int blocks = 0;
    session.recorder.afterBlock = [&] {
        if (++blocks == 20)
            session.client.Abort();
    };
    QVERIFY(!session.get("f", passive));
    QVERIFY(content.startsWith(read(session.local)));
    const auto tenCommands = [&] {
        int answered = 0;
        for (int i = 0; i < 10; ++i)
            answered += session.inStep();
        if (answersAbort || session.client.IsConnected())
            return answered == 10;
        return session.client.Login(session.server.logon());
    };
    QVERIFY2(tenCommands(), qPrintable(session.recorder.last()));
    blocks = 0;
    write(session.local, content);
    QVERIFY(!session.put("up", passive));
    QVERIFY2(tenCommands(), qPrintable(session.recorder.last()));
    // What the aborted transfers left is completed.
    QVERIFY(session.put("up", passive));
    COMPARE_FILES(read(session.server.path("up")), content);
}

void FtpRealServersTest::serverDies()
{
    QFETCH(QString, kind);
    Session session(kind);
    write(session.server.path("f"), bytes(40000000));
    START(session);
    session.recorder.afterBlock = [&] { session.server.kill(); };
    QVERIFY(!session.get("f", true));
    QVERIFY(read(session.local).size() < 40000000);
    QCOMPARE(session.client.Noop(), -1);
    QVERIFY(!session.client.IsConnected());
}

// Each server to the next one.
void FtpRealServersTest::betweenServers()
{
    for (int i = 0; i < 4; ++i) {
        Session source(Kinds[i]);
        Session target(Kinds[(i + 1) % 4]);
        const QByteArray content = bytes(3000000);
        write(source.server.path("f"), content);
        START(source);
        START(target);
        for (const bool passive : {true, false}) {
            const std::string name = passive ? "p" : "a";
            QVERIFY2(CFTPClient::TransferFile(source.client, "f", target.client, name, CType::Image,
                                              passive),
                     qPrintable(source.recorder.last() + target.recorder.last()));
            COMPARE_FILES(read(target.server.path(QString::fromStdString(name))), content);
        }
        QVERIFY(source.inStep() && target.inStep());
    }
}

QTEST_GUILESS_MAIN(FtpRealServersTest)
#include "tst_ftprealservers.moc"
