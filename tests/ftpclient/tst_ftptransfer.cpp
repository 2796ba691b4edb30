#include "recorder.h"
#include "scriptedserver.h"
#include "support/stricttest.h"

#include <QTemporaryDir>

#include <functional>

using namespace nsFTP;

namespace {

struct Session
{
    explicit Session(const QString &script = {}, unsigned int bufferSize = 4)
        : server(script)
        , client(nsSocket::CreateDefaultBlockingSocketInstance(), 5, bufferSize)
        , local(folder.filePath("file").toStdString())
    {
        client.AttachObserver(&recorder);
    }
    bool login() { return client.Login({"127.0.0.1", server.port(), "joe", "secret"}); }
    // What came after the logon; the port of a PORT is any.
    QString stream() const
    {
        QStringList commands = server.commands().mid(3);
        commands.replaceInStrings(QRegularExpression("(PORT 127,0,0,1),.*"), "\\1");
        return commands.join(',');
    }
    void write(const QByteArray &bytes) const
    {
        QFile file(QString::fromStdString(local));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
    }
    QByteArray read() const
    {
        QFile file(QString::fromStdString(local));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
    }

    QTemporaryDir folder;
    ScriptedServer server;
    Recorder recorder;
    CFTPClient client;
    std::string local;
};

using Operation = std::function<bool(Session &)>;

bool get(Session &s)
{
    return s.client.DownloadFile("f", s.local, CType::Image, true);
}

bool put(Session &s)
{
    return s.client.UploadFile(s.local, "f", false, CType::Image, true);
}

} // namespace

Q_DECLARE_METATYPE(Operation)

class FtpTransferTest : public StrictTest
{
    Q_OBJECT

private slots:
    void streams_data();
    void streams();
    void passiveReplies_data();
    void passiveReplies();
    void foreignAddresses_data();
    void foreignAddresses();
    void activePeers();
    void resumes_data();
    void resumes();
    void listings();
    void observersSeeTheBlocks();
    void abortFromAnotherThread();
    void oneTransferAtATime();
    void localFaults_data();
    void localFaults();
    void betweenServers_data();
    void betweenServers();
};

// The exact commands of each operation.
void FtpTransferTest::streams_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("stream");
    QTest::addColumn<bool>("good");
    const auto row = [](const char *name, const Operation &operation, const char *script,
                        const char *stream, bool good) {
        QTest::newRow(name) << operation << script << stream << good;
    };
    static std::vector<std::string> lines;
    static const auto list = [](bool passive) {
        return [passive](Session &s) { return s.client.List("d", lines, passive); };
    };
    static const auto execute = [](CCommand command, unsigned int offset, bool resume = true) {
        return [=](Session &s) {
            COutputStream stream("");
            s.client.SetResumeMode(resume);
            return s.client.ExecuteDatachannelCommand(command, "f", CType::Image, true, offset,
                                                      stream);
        };
    };
    row("list", list(true), "", "TYPE A,PASV,LIST d", true);
    row("list, active", list(false), "", "TYPE A,PORT 127,0,0,1,LIST d", true);
    row(
        "names", [](Session &s) { return s.client.NameList("", lines, true); }, "",
        "TYPE A,PASV,NLST", true);
    row("download", get, "", "TYPE I,SIZE f,PASV,RETR f", true);
    row(
        "download in ASCII",
        [](Session &s) {
            s.write("old");
            return s.client.DownloadFile("f", s.local, {CType::ASCII, CTypeFormat::NonPrint}, true);
        },
        "SIZE: 550 not in ASCII", "TYPE A N,SIZE f,PASV,RETR f", true);
    row(
        "upload",
        [](Session &s) {
            s.write("x");
            return put(s);
        },
        "SIZE: 550 no", "TYPE I,SIZE f,PASV,STOR f", true);
    row(
        "upload over an empty file",
        [](Session &s) {
            s.write("x");
            return put(s);
        },
        "SIZE: 213 0", "TYPE I,SIZE f,PASV,STOR f", true);
    row(
        "upload without resume",
        [](Session &s) {
            s.write("x");
            s.client.SetResumeMode(false);
            return put(s);
        },
        "", "TYPE I,PASV,STOR f", true);
    row(
        "upload resumed",
        [](Session &s) {
            s.write("abcdefghijkl");
            return put(s);
        },
        "", "TYPE I,SIZE f,PASV,APPE f", true);
    row(
        "upload unique, active",
        [](Session &s) {
            s.write("x");
            return s.client.UploadFile(s.local, "f", true, CType::Image, false);
        },
        "SIZE: 550 no", "TYPE I,SIZE f,PORT 127,0,0,1,STOU f", true);
    row("restart", execute(CCommand::RETR, 3), "", "TYPE I,PASV,REST 3,RETR f", true);
    row("restart far on", execute(CCommand::RETR, 4294967295U), "",
        "TYPE I,PASV,REST 4294967295,RETR f", true);
    row("restart refused", execute(CCommand::RETR, 3), "REST: 500 no", "TYPE I,PASV,REST 3", false);
    row("restart answered 200", execute(CCommand::RETR, 3), "REST: 200 well",
        "TYPE I,PASV,REST 3,RETR f", true);
    row("no restart without resume mode", execute(CCommand::RETR, 3, false), "",
        "TYPE I,PASV,RETR f", true);
    row("restart of APPE", execute(CCommand::APPE, 3), "", "TYPE I,PASV,REST 3,APPE f", true);
    row("no restart of NLST", execute(CCommand::NLST, 3), "", "TYPE I,PASV,NLST f", true);
    row("type refused", get, "TYPE: 504 no", "TYPE I", false);
    row("PASV refused", list(true), "PASV: 425 no", "TYPE A,PASV", false);
    row("PORT refused", list(false), "PORT: 500 no", "TYPE A,PORT 127,0,0,1", false);
    row("active, 2xx at once", list(false), "LIST: 226 nothing to tell",
        "TYPE A,PORT 127,0,0,1,LIST d", false);
    row("passive, 2xx at once", list(true), "LIST: 226 nothing to tell", "TYPE A,PASV,LIST d",
        false);
}

void FtpTransferTest::streams()
{
    QFETCH(Operation, operation);
    QFETCH(QString, script);
    Session session(script);
    QVERIFY(session.login());
    QTEST(operation(session), "good");
    QTEST(session.stream(), "stream");
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QCOMPARE(session.recorder.log.last(), "< 257 in step");
    QCOMPARE(session.recorder.errors(), QStringList());
}

void FtpTransferTest::passiveReplies_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QString>("address");
    const auto row = [](const char *reply, const char *address) {
        QTest::newRow(reply) << reply << address;
    };
    row("227 Entering Passive Mode (192,168,0,5,19,137).", "c0a80005:5001");
    row("227 Entering Passive Mode 192,168,0,5,19,137", "c0a80005:5001");
    row("227 =192,168,0,5,19,137", "c0a80005:5001");
    row("227 ( 192 , 168, 0,5 ,19, 137 )", "c0a80005:5001");
    row("227 (192,168,0,5,19,137", "c0a80005:5001");
    row("227-Here it comes\r\n 192,168,0,5,19,137\r\n227 done", "c0a80005:5001");
    row("227 (version 2,1) 255,255,255,255,255,255", "ffffffff:65535");
    row("227 0,0,0,0,0,1", "0:1");
    row("227 ok", "");
    row("227 (1,2,3,4,5)", "");
    row("227 (1,2,3,4,5,6,7)", "");
    row("227 (1,2,3,4,0,0)", "");
    row("227 (256,2,3,4,5,6)", "");
    row("227 (1,2,3,4,5,4294967302)", "");
    row("227 (1,2,3,-4,5,6)", "");
    row("227 (1,,2,3,4,5,6)", "");
}

void FtpTransferTest::passiveReplies()
{
    QFETCH(QString, reply);
    QFETCH(QString, address);
    unsigned int ip = 0;
    unsigned short port = 0;
    const bool found = CFTPClient::GetIpAddressFromResponse(reply.toStdString(), ip, port);
    QCOMPARE(found ? QString("%1:%2").arg(ip, 0, 16).arg(port) : QString(), address);
}

void FtpTransferTest::foreignAddresses_data()
{
    using Policy = CFTPClient::TPassiveAddress;
    QTest::addColumn<QString>("reply");
    QTest::addColumn<int>("policy");
    QTest::addColumn<bool>("good");
    QTest::newRow("used: nobody listens there")
        << "227 (127,0,0,2,{port})" << int(Policy::Use) << false;
    QTest::newRow("replaced") << "227 (10,9,8,7,{port})" << int(Policy::UseControlHost) << true;
    QTest::newRow("none, replaced")
        << "227 (0,0,0,0,{port})" << int(Policy::UseControlHost) << true;
    QTest::newRow("none, not used") << "227 (0,0,0,0,{port})" << int(Policy::Use) << false;
    QTest::newRow("refused") << "227 (127,0,0,2,{port})" << int(Policy::Refuse) << false;
    QTest::newRow("own, not refused") << "227 ({pasv})" << int(Policy::Refuse) << true;
}

void FtpTransferTest::foreignAddresses()
{
    QFETCH(QString, reply);
    QFETCH(int, policy);
    Session session("PASV: " + reply);
    QVERIFY(session.login());
    session.client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress(policy));
    QTEST(get(session), "good");
    QTEST(session.recorder.errors().isEmpty(), "good");
    QCOMPARE(session.client.Noop(), 0);
}

void FtpTransferTest::activePeers()
{
    Session session;
    QVERIFY(session.login());
    session.server.connectFrom = "127.0.0.2";
    QVERIFY(session.client.DownloadFile("f", session.local, CType::Image, false));
    QCOMPARE(session.read(), QByteArray("0123456789"));
    session.client.SetAcceptOnlyControlPeer(true);
    std::vector<std::string> lines;
    CFTPClient impatient(nsSocket::CreateDefaultBlockingSocketInstance(), 1);
    session.client.Logout();
    Recorder recorder;
    impatient.AttachObserver(&recorder);
    impatient.SetAcceptOnlyControlPeer(true);
    QVERIFY(impatient.Login({"127.0.0.1", session.server.port()}));
    QVERIFY(!impatient.List("", lines, false));
    QCOMPARE(recorder.errors().value(0),
             "! Data connection from 127.0.0.2 turned away. (formkit/FtpClient/FTPClient:972)");
    QVERIFY(recorder.errors().value(1).startsWith("! Accept error 0x"));
    QVERIFY(recorder.errors().value(1).endsWith(":968)"));
    session.server.connectFrom = "127.0.0.1";
    QVERIFY(impatient.List("", lines, false));
}

// The remote file is "0123456789".
void FtpTransferTest::resumes_data()
{
    QTest::addColumn<QByteArray>("local");
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("good");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const char *local, const char *script, bool good,
                        const char *after) {
        QTest::newRow(name) << QByteArray(local) << script << good << QByteArray(after);
    };
    row("nothing there", "none", "", true, "0123456789");
    row("empty", "", "", true, "0123456789");
    row("one byte", "a", "", true, "a123456789");
    row("the middle", "abcde", "", true, "abcde56789");
    row("the end", "abcdefghij", "", true, "abcdefghij");
    row("longer than the remote one", "abcdefghijk", "", false, "abcdefghijk");
    row("size not told", "abcde", "SIZE: 500 what", true, "abcde56789");
    row("REST refused", "abcde", "REST: 502 no", false, "abcde");
    row("REST ignored", "abcde", "RETR: 150 go|whole|226 done", false, "abcde");
    row("file refused", "abcde", "RETR: 550 no", false, "abcde");
    row("file refused, nothing there", "none", "SIZE: 550 no; RETR: 550 no", false, "none");
    row("broken off", "abc", "RETR: 150 go|part 4|cut|426 broken", false, "abc3456");
    row("broken off, ended cleanly", "abc", "RETR: 150 go|part 4|end|426 broken", false, "abc3456");
    row("empty remote file", "none", "RETR: 150 go|end|226 done", true, "");
}

void FtpTransferTest::resumes()
{
    QFETCH(QByteArray, local);
    QFETCH(QString, script);
    Session session(script, 64);
    if (local != "none")
        session.write(local);
    QVERIFY(session.login());
    QTEST(get(session), "good");
    QTEST(session.read(), "after");
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QCOMPARE(session.recorder.log.last(), "< 257 in step");
    // The way back: what the server holds already is not sent.
    session.recorder.log.clear();
    session.write("abcdefghijkl");
    QVERIFY(put(session));
    QCOMPARE(session.server.stored(), QByteArray("kl"));
    QVERIFY(session.recorder.log.contains("upload f 12 from 10"));
    session.write("abc");
    QVERIFY(!put(session));
    QCOMPARE(session.server.stored(), QByteArray("kl"));
}

void FtpTransferTest::listings()
{
    Session session(
        "LIST: 150 go|data|226 done; LIST: 150 go|data|226 done; NLST: 150 go|data|226 done;"
        "NLST: 150 go|data|226 done; LIST: 550 no");
    session.server.content = "total 2\r\n-rw-r--r-- 1 a b 5 Jan  1 2000 one\r\n\r\n"
                             "drwxr-xr-x 1 a b 5 Jan  1 2000 two";
    QVERIFY(session.login());
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    std::vector<std::string> lines;
    QVERIFY(session.client.List("some/path", entries, true));
    QCOMPARE(entries.size(), size_t(2));
    QCOMPARE(entries[1]->name, std::string("two"));
    QCOMPARE(entries[1]->path, std::string("some/path"));
    QVERIFY(session.client.List("some/path", lines, true));
    QCOMPARE(lines.size(), size_t(3));
    QCOMPARE(lines[0], std::string("total 2"));
    QVERIFY(session.client.NameList("some/path", entries, true));
    QCOMPARE(entries.size(), size_t(3));
    QCOMPARE(entries[0]->name, std::string("total 2"));
    QVERIFY(entries[0]->tryCwd && entries[0]->tryRetrieve);
    QVERIFY(session.client.NameList("some/path", lines, true));
    QVERIFY(!session.client.List("elsewhere", entries, true));
    QCOMPARE(entries.size(), size_t(3));
}

void FtpTransferTest::observersSeeTheBlocks()
{
    Session session({}, 4);
    QVERIFY(session.login());
    session.recorder.log.clear();
    QVERIFY(get(session));
    int received = 0;
    for (const QString &got : session.recorder.log.filter(QRegularExpression("^got ")))
        received += got.section(' ', 1).toInt();
    QCOMPARE(received, 10);
    QVERIFY(session.recorder.log.indexOf("begin") < session.recorder.log.indexOf("end 10"));
    session.client.SetResumeMode(false);
    session.recorder.log.clear();
    QVERIFY(put(session));
    QCOMPARE(session.recorder.log.filter(QRegularExpression("^(upload|sent)")),
             QStringList({"upload f 10 from 0", "sent 4", "sent 4", "sent 2"}));
}

// Aborts whose replies come in every way are among the bad servers.
void FtpTransferTest::abortFromAnotherThread()
{
    Session session("LIST: 150 go|flood|426 aborted; ABOR: 226 aborted", 65536);
    QVERIFY(session.login());
    std::thread other([&] {
        while (!session.client.IsTransferringData())
            std::this_thread::yield();
        session.client.Abort();
    });
    std::vector<std::string> lines = {"kept"};
    QVERIFY(!session.client.List("", lines, true));
    other.join();
    QCOMPARE(lines.size(), size_t(1));
    QVERIFY(!session.client.IsTransferringData());
    QVERIFY(session.client.List("", lines, true));
    QCOMPARE(session.stream(), "TYPE A,PASV,LIST,ABOR,PASV,LIST");
    QCOMPARE(session.client.Abort(), 0);
}

void FtpTransferTest::oneTransferAtATime()
{
    Session session;
    QVERIFY(session.login());
    bool second = true;
    session.recorder.afterBlock = [&] {
        COutputStream stream("");
        second = session.client.ExecuteDatachannelCommand(CCommand::LIST, "", CType::ASCII, true, 0,
                                                          stream) ||
                 session.client.DownloadFile("g", stream, CType::Image, true);
    };
    QVERIFY(get(session));
    QVERIFY(!second);
    QCOMPARE(session.stream(), "TYPE I,SIZE f,PASV,RETR f");
}

void FtpTransferTest::localFaults_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("error");
    QTest::newRow("no folder to write to") << Operation([](Session &s) {
        return s.client.DownloadFile("f", s.folder.filePath("no/f").toStdString(), CType::Image,
                                     true);
    }) << "! Cannot open .*/no/f: No such file or directory .*:1204\\)";
    QTest::newRow("nothing to read") << Operation(put) << "! Cannot open .*:1204\\)";
    QTest::newRow("disk full") << Operation([](Session &s) {
        return s.client.DownloadFile("f", "/dev/full", CType::Image, true);
    }) << "! Cannot write /dev/full: .*:1204\\)";
    QTest::newRow("beyond 32 bits") << Operation([](Session &s) {
        QFile file(QString::fromStdString(s.local));
        file.open(QIODevice::WriteOnly);
        file.resize(1LL << 32);
        return get(s);
    }) << "! Cannot resume at 4294967296. .*:1230\\)";
    QTest::newRow("more than a listing may have") << Operation([](Session &s) {
        COutputStream stream("", 5);
        return s.client.DownloadFile("f", stream, CType::Image, true);
    }) << "";
}

void FtpTransferTest::localFaults()
{
    QFETCH(Operation, operation);
    QFETCH(QString, error);
    Session session("SIZE: 500 what");
    QVERIFY(session.login());
    QVERIFY(!operation(session));
    QVERIFY(QRegularExpression("^" + error + "$")
                .match(session.recorder.errors().join('\n'))
                .hasMatch());
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QCOMPARE(session.recorder.log.last(), "< 257 in step");
}

void FtpTransferTest::betweenServers_data()
{
    QTest::addColumn<QString>("sourceScript");
    QTest::addColumn<QString>("targetScript");
    QTest::addColumn<bool>("passive");
    QTest::addColumn<bool>("good");
    QTest::addColumn<QString>("sourceStream");
    QTest::addColumn<QString>("targetStream");
    QTest::newRow("source listens") << ""
                                    << "" << true << true << "TYPE I,SIZE a,PASV,RETR a"
                                    << "TYPE I,PORT 127,0,0,1,STOR b";
    QTest::newRow("target listens") << ""
                                    << "" << false << true << "TYPE I,SIZE a,PORT 127,0,0,1,RETR a"
                                    << "TYPE I,PASV,STOR b";
    QTest::newRow("nothing to send") << "SIZE: 550 no"
                                     << "" << true << false << "TYPE I,SIZE a"
                                     << "TYPE I";
    QTest::newRow("source refuses")
        << "RETR: 550 no"
        << "STOR: 150 go|426 broken" << true << false << "TYPE I,SIZE a,PASV,RETR a"
        << "TYPE I,PORT 127,0,0,1,STOR b,ABOR";
    QTest::newRow("target runs full")
        << ""
        << "STOR: 150 go|data|452 full" << true << false << "TYPE I,SIZE a,PASV,RETR a"
        << "TYPE I,PORT 127,0,0,1,STOR b";
}

void FtpTransferTest::betweenServers()
{
    QFETCH(QString, sourceScript);
    QFETCH(QString, targetScript);
    QFETCH(bool, passive);
    QFETCH(bool, good);
    Session source(sourceScript);
    Session target(targetScript);
    QVERIFY(source.login() && target.login());
    QCOMPARE(source.client.DownloadFile("a", target.client, "b", CType::Image, passive), good);
    QTEST(source.stream(), "sourceStream");
    QTEST(target.stream(), "targetStream");
    if (good)
        QCOMPARE(target.server.stored(), QByteArray("0123456789"));
    QCOMPARE(source.client.PrintWorkingDirectory(), 0);
    QCOMPARE(target.client.PrintWorkingDirectory(), 0);
    QVERIFY(!source.client.UploadFile(source.client, "a", "b", CType::Image, passive));
}

QTEST_GUILESS_MAIN(FtpTransferTest)
#include "tst_ftptransfer.moc"
