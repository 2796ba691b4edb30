#include "session.h"
#include "support/stricttest.h"

#include <csignal>
#include <functional>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using namespace nsFTP;

using Operation = std::function<int(Session &)>;
Q_DECLARE_METATYPE(Operation)
using Fault = std::function<void()>;
Q_DECLARE_METATYPE(Fault)

// What the tables of conversations cannot tell: observers, streams, threads, several clients.
class FtpClientTest : public StrictTest
{
    Q_OBJECT

private slots:
    void reports();
    void observersComeAndGo();
    void loginAgainLogsOut();
    void commandsMayBePipelined();
    void listings();
    void passiveReplies();
    void onlyControlPeer();
    void abortFromAnotherThread();
    void oneTransferAtATime();
    void betweenServers();
    void refusals_data();
    void refusals();
    void programmingErrors_data();
    void programmingErrors();
};

void FtpClientTest::reports()
{
    Session session("PWD: raw 257-a\r\n257 ␀b\n; NOOP: close");
    QVERIFY(session.login());
    session.recorder.log.clear();
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QVERIFY(session.client.DownloadFile("f", session.local, CType::Image, true));
    session.client.SetResumeMode(false);
    QVERIFY(session.client.UploadFile(session.local, "f", false, CType::Image, true));
    QCOMPARE(session.client.Noop(), -1);
    QCOMPARE(session.client.Noop(), -1);
    QStringList log = session.recorder.log;
    QCOMPARE(log.takeAt(1), QString("< 257-a\r\n257 %1b\n").arg(QChar(0)));
    log.replaceInStrings(QRegularExpression(" \\(127,.*"), "");
    QCOMPARE(
        log.join(','),
        "> PWD,> TYPE I,< 200 ok,> SIZE f,< 213 10,> PASV,< 227 Entering Passive Mode,> RETR f,"
        "< 150 here,begin,got 4,got 4,got 2,end 10,< 226 done,upload f 10 from 0,> PASV,"
        "< 227 Entering Passive Mode,> STOR f,< 150 give,sent 4,sent 4,sent 2,< 226 done,> NOOP");
    session.recorder.log.clear();
    QVERIFY(!session.client.Login({"127.0.0.1", 1}));
    QCOMPARE(session.recorder.log.size(), 1);
    QVERIFY(session.recorder.log[0].startsWith("! Connect error 0x000000"));
}

void FtpClientTest::observersComeAndGo()
{
    Session session;
    Recorder leaves;
    CFTPClient &client = session.client;
    client.AttachObserver(&session.recorder);
    client.AttachObserver(&leaves);
    QCOMPARE(client.GetObservers().size(), size_t(2));
    {
        Recorder dies;
        client.AttachObserver(&dies);
    }
    // Leaving from within a call is allowed, whichever is called first.
    leaves.afterBlock = [&] { client.DetachObserver(&leaves); };
    QVERIFY(session.login() && client.List("", session.lines, true));
    QVERIFY(!leaves.log.contains("end 10"));
    QVERIFY(session.recorder.log.contains("end 10"));
    QCOMPARE(client.GetObservers(), CFTPClient::TObserverSet({&session.recorder}));
    {
        CFTPClient second(nsSocket::CreateDefaultBlockingSocketInstance());
        second.DetachObserver(&leaves);
        second.AttachObserver(&leaves);
    }
}

void FtpClientTest::loginAgainLogsOut()
{
    Session session;
    QVERIFY(session.login());
    QVERIFY(session.login());
    QCOMPARE(session.client.Logout(), 0);
    QCOMPARE(session.client.Logout(), -1);
    const QStringList once = {"USER joe", "PASS secret", "CWD .", "QUIT"};
    QCOMPARE(session.server.commands(), once + once);
}

void FtpClientTest::commandsMayBePipelined()
{
    Session session("NOOP: 200 first; NOOP: 200 second");
    QVERIFY(session.login());
    CReply reply;
    QVERIFY(session.client.SendCommand(CCommand::NOOP, {}));
    QVERIFY(session.client.SendCommand(CCommand::NOOP, {}));
    QVERIFY(session.client.GetResponse(reply));
    QCOMPARE(reply.Value(), std::string("200 first"));
    QVERIFY(session.client.GetResponse(reply));
    QCOMPARE(reply.Value(), std::string("200 second"));
}

void FtpClientTest::listings()
{
    Session session;
    session.server.content = "total 2\r\n-rw-r--r-- 1 a b 5 Jan  1 2000 one\r\n\r\n"
                             "drwxr-xr-x 1 a b 5 Jan  1 2000 two";
    QVERIFY(session.login());
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    QVERIFY(session.client.List("some/path", entries, true));
    QCOMPARE(entries.size(), size_t(2));
    QCOMPARE(entries[1]->name + " " + entries[1]->path, std::string("two some/path"));
    QVERIFY(session.client.List("some/path", session.lines, true));
    QCOMPARE(session.lines.size(), size_t(3));
    QCOMPARE(session.lines[0], std::string("total 2"));
    QVERIFY(session.client.NameList("some/path", entries, true));
    QCOMPARE(entries.size(), size_t(3));
    QCOMPARE(entries[0]->name, std::string("total 2"));
    QVERIFY(entries[0]->tryCwd && entries[0]->tryRetrieve);
}

void FtpClientTest::passiveReplies()
{
    unsigned int ip = 0;
    unsigned short port = 0;
    for (const char *reply :
         {"227 Entering Passive Mode (192,168,0,5,19,137).", "227 Passive 192,168,0,5,19,137",
          "227 =192,168,0,5,19,137", "227 ( 192 , 168, 0,5 ,19, 137 )", "227 (192,168,0,5,19,137",
          "227-Here\r\n 192,168,0,5,19,137\r\n227 done", "227 (version 2,1) 192,168,0,5,19,137"}) {
        QVERIFY2(CFTPClient::GetIpAddressFromResponse(reply, ip, port), reply);
        QCOMPARE(ip, 0xc0a80005U);
        QCOMPARE(int(port), 5001);
    }
    for (const char *reply :
         {"227 (1,2,3,-4,5,6)", "227 (1,,2,3,4,5,6)", "227 (1,2,3,4,5,4294967302)"})
        QVERIFY2(!CFTPClient::GetIpAddressFromResponse(reply, ip, port), reply);
}

void FtpClientTest::onlyControlPeer()
{
    Session session({}, false, 1);
    QVERIFY(session.login());
    session.server.connectFrom = "127.0.0.2";
    QVERIFY(session.client.List("", session.lines, false));
    session.client.SetAcceptOnlyControlPeer(true);
    QVERIFY(!session.client.List("", session.lines, false));
    QCOMPARE(session.recorder.errors().value(0),
             "! Data connection from 127.0.0.2 turned away. (formkit/FtpClient/FTPClient:972)");
    QVERIFY(session.recorder.errors().value(1).startsWith("! Accept error 0x"));
    QVERIFY(session.recorder.errors().value(1).endsWith(":968)"));
    session.server.connectFrom = "127.0.0.1";
    QVERIFY(session.client.List("", session.lines, false));
}

void FtpClientTest::abortFromAnotherThread()
{
    Session session("LIST: 150 go|flood|426 aborted; ABOR: 226 aborted", false, 5, 65536);
    QVERIFY(session.login());
    std::thread other([&] {
        while (!session.client.IsTransferringData())
            std::this_thread::yield();
        session.client.Abort();
    });
    QVERIFY(!session.client.List("", session.lines, true));
    other.join();
    QVERIFY(session.client.List("", session.lines, true));
    QCOMPARE(session.server.commands().mid(3),
             QStringList({"TYPE A", "PASV", "LIST", "ABOR", "PASV", "LIST"}));
}

void FtpClientTest::oneTransferAtATime()
{
    Session session;
    QVERIFY(session.login());
    bool second = false;
    session.recorder.afterBlock = [&] {
        second = second || session.client.List("", session.lines, true) ||
                 session.client.DownloadFile("g", session.local, CType::Image, true);
    };
    QVERIFY(session.client.DownloadFile("f", session.local, CType::Image, true));
    QVERIFY(!second);
    QCOMPARE(session.server.commands().mid(3), QStringList({"TYPE I", "SIZE f", "PASV", "RETR f"}));
}

void FtpClientTest::betweenServers()
{
    struct Row
    {
        const char *sourceScript, *targetScript;
        bool passive, good;
        const char *source, *target;
    };
    for (const Row &row : {
             Row{"", "", true, true, "TYPE I,SIZE a,PASV,RETR a", "TYPE I,PORT,STOR b"},
             Row{"", "", false, true, "TYPE I,SIZE a,PORT,RETR a", "TYPE I,PASV,STOR b"},
             Row{"SIZE: 550 no", "", true, false, "TYPE I,SIZE a", "TYPE I"},
             Row{"RETR: 550 no", "STOR: 150 go|426 broken", true, false,
                 "TYPE I,SIZE a,PASV,RETR a", "TYPE I,PORT,STOR b,ABOR"},
             Row{"", "STOR: 150 go|data|452 full", true, false, "TYPE I,SIZE a,PASV,RETR a",
                 "TYPE I,PORT,STOR b"},
         }) {
        Session source(row.sourceScript);
        Session target(row.targetScript);
        QVERIFY(source.login() && target.login());
        QCOMPARE(source.client.DownloadFile("a", target.client, "b", CType::Image, row.passive),
                 row.good);
        QCOMPARE(source.client.PrintWorkingDirectory() + target.client.PrintWorkingDirectory(), 0);
        QStringList commands = source.server.commands().mid(3) + target.server.commands().mid(3);
        commands.replaceInStrings(QRegularExpression("PORT .*"), "PORT");
        QCOMPARE(commands.join(','), QString("%1,PWD,%2,PWD").arg(row.source, row.target));
        QCOMPARE(target.server.stored(),
                 row.good ? QByteArray("0123456789") : target.server.stored());
        QVERIFY(!source.client.UploadFile(source.client, "a", "b", CType::Image, row.passive));
    }
}

// Refused with a report, the session in step.
void FtpClientTest::refusals_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *error, const Operation &operation) {
        QTest::newRow(error) << operation << error;
    };
    row("argument of DELE", [](Session &s) { return s.client.Delete("x\r\nDELE y"); });
    row("argument of MKD",
        [](Session &s) { return s.client.MakeDirectory(std::string("a\0b", 3)); });
    row("argument of RNTO", [](Session &s) { return s.client.Rename("a", "b\n"); });
    row("argument of LIST", [](Session &s) { return s.client.List("a\r", s.lines, true) - 1; });
    row("argument of RETR",
        [](Session &s) { return s.client.DownloadFile("x\n", s.local, CType::Image, true) - 1; });
    row("argument of STOR", [](Session &s) {
        s.write("x");
        return s.client.UploadFile(s.local, "x\n", false, CType::Image, true) - 1;
    });
    row("argument of PASS", [](Session &s) {
        return s.client.Login({"127.0.0.1", 21, "u", "top\nsecret"}) - 1;
    });
    row("argument of SITE", [](Session &s) {
        CLogonInfo logon("h\n");
        logon.SetFirewall("127.0.0.1", "u", "p", 21, CFirewallType::SiteHostName);
        return s.client.Login(logon) - 1;
    });
    row("in a host name", [](Session &s) { return s.client.Login({"h\n"}) - 1; });
    row("Cannot open .*/no/f: No such file or directory", [](Session &s) {
        return s.client.DownloadFile("f", s.local + "/no/f", CType::Image, true) - 1;
    });
    row("Cannot open .*/file: No such", [](Session &s) {
        return s.client.UploadFile(s.local, "f", false, CType::Image, true) - 1;
    });
    row("Cannot write /dev/full: ",
        [](Session &s) { return s.client.DownloadFile("f", "/dev/full", CType::Image, true) - 1; });
    row("", [](Session &s) {
        COutputStream tooSmall("", 5);
        return s.client.DownloadFile("f", tooSmall, CType::Image, true) - 1;
    });
}

void FtpClientTest::refusals()
{
    QFETCH(Operation, operation);
    QFETCH(QString, error);
    Session session;
    QVERIFY(session.login());
    QCOMPARE(operation(session), -1);
    const QString errors = session.recorder.errors().join('\n');
    QVERIFY2(QRegularExpression(error).match(errors).hasMatch() && !errors.contains("secret"),
             qPrintable(errors));
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QCOMPARE(session.recorder.log.last(), "< 257 in step");
}

void FtpClientTest::programmingErrors_data()
{
    QTest::addColumn<Fault>("fault");
    static const auto client = [] {
        return std::make_shared<CFTPClient>(nsSocket::CreateDefaultBlockingSocketInstance());
    };
    const auto row = [](const char *name, const Fault &fault) { QTest::newRow(name) << fault; };
    row("no socket", [] { CFTPClient c(nullptr); });
    row("no observer", [] { client()->AttachObserver(nullptr); });
    row("no directory", [] { client()->ChangeWorkingDirectory(""); });
    row("reply without a class", [] { CFTPClient::SimpleErrorCheck({}); });
    row("no data-channel command", [] {
        COutputStream stream("");
        client()->ExecuteDatachannelCommand(CCommand::PWD, "", CType::ASCII, true, 0, stream);
    });
    row("no parser", [] {
        std::vector<std::shared_ptr<CFTPFileStatus>> result;
        const auto c = client();
        c->SetFileListParser(nullptr);
        c->List("", result, true);
    });
    row("no handle", [] { nsSocket::CBlockingSocket().Listen(); });
    row("no message", [] { nsSocket::CBlockingSocketException e(nullptr); });
    row("no such type", [] { CType(CType::TTypeEnum(4)).AsString(); });
    row("no format", [] { CTypeFormat(CTypeFormat::None).AsString(); });
    row("no such firewall",
        [] { CFirewallType(CFirewallType::TFirewallTypeEnum(9)).AsStorageString(); });
    row("no such command", [] { CCommand(CCommand::TCommandEnum(36)).AsString(); });
}

void FtpClientTest::programmingErrors()
{
    QFETCH(Fault, fault);
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL);
        ::close(STDERR_FILENO);
        fault();
        ::_exit(0);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT);
}

QTEST_GUILESS_MAIN(FtpClientTest)
#include "tst_ftpclient.moc"
