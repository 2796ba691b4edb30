#include "session.h"
#include "support/stricttest.h"

#include <csignal>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using namespace nsFTP;

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
    void programmingErrors();
};

void FtpClientTest::reports()
{
    Session session("PWD: raw 257-a\r\n257 ␀b\n; NOOP: close");
    QVERIFY(session.login());
    session.recorder.log.clear();
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QVERIFY(session.get("f"));
    session.client.SetResumeMode(false);
    QVERIFY(session.put("f"));
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
    for (const char *text : {"200 first", "200 second"}) {
        QVERIFY(session.client.GetResponse(reply));
        QCOMPARE(reply.Value(), std::string(text));
    }
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
    COutputStream tooSmall("", 5);
    QVERIFY(!session.client.DownloadFile("f", tooSmall, CType::Image, true));
    QVERIFY(session.inStep());
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
    const QStringList errors = session.recorder.errors();
    QCOMPARE(errors.value(0),
             "! Data connection from 127.0.0.2 turned away. (formkit/FtpClient/FTPClient:972)");
    QVERIFY(QRegularExpression("^! Accept error 0x.*:968").match(errors.value(1)).hasMatch());
    session.server.connectFrom = "127.0.0.1";
    QVERIFY(session.client.List("", session.lines, false));
}

void FtpClientTest::abortFromAnotherThread()
{
    Session session("LIST: 150 go|flood|426 aborted; ABOR: 226 aborted", false, 20, 65536);
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
        second = second || session.client.List("", session.lines, true) || session.get("g");
    };
    QVERIFY(session.get("f"));
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
             Row{"", "STOR: 553 no", true, false, "TYPE I,SIZE a,PASV", "TYPE I,PORT,STOR b"},
             Row{"", "STOR: 150 go|data|452 full", true, false, "TYPE I,SIZE a,PASV,RETR a",
                 "TYPE I,PORT,STOR b"},
         }) {
        Session source(row.sourceScript);
        Session target(row.targetScript);
        QVERIFY(source.login() && target.login());
        QCOMPARE(source.client.DownloadFile("a", target.client, "b", CType::Image, row.passive),
                 row.good);
        QVERIFY(source.inStep() && target.inStep());
        QStringList commands = source.server.commands().mid(3) + target.server.commands().mid(3);
        commands.replaceInStrings(QRegularExpression("PORT .*"), "PORT");
        QCOMPARE(commands.join(','), QString("%1,PWD,%2,PWD").arg(row.source, row.target));
        QVERIFY(!row.good || target.server.stored() == "0123456789");
        QVERIFY(!source.client.UploadFile(source.client, "a", "b", CType::Image, row.passive));
    }
}

void FtpClientTest::programmingErrors()
{
    using Victim = std::shared_ptr<CFTPClient>;
    const std::vector<std::function<void(const Victim &)>> faults = {
        [](const Victim &) { CFTPClient c(nullptr); },
        [](const Victim &c) { c->AttachObserver(nullptr); },
        [](const Victim &c) { c->ChangeWorkingDirectory(""); },
        [](const Victim &) { CFTPClient::SimpleErrorCheck({}); },
        [](const Victim &c) {
            COutputStream stream("");
            c->ExecuteDatachannelCommand(CCommand::PWD, "", CType::ASCII, true, 0, stream);
        },
        [](const Victim &c) {
            std::vector<std::shared_ptr<CFTPFileStatus>> result;
            c->SetFileListParser(nullptr);
            c->List("", result, true);
        },
        [](const Victim &) { nsSocket::CBlockingSocket().Listen(); },
        [](const Victim &) { nsSocket::CBlockingSocketException e(nullptr); },
        [](const Victim &) { CType(CType::TTypeEnum(4)).AsString(); },
        [](const Victim &) { CTypeFormat(CTypeFormat::None).AsString(); },
        [](const Victim &) {
            CFirewallType(CFirewallType::TFirewallTypeEnum(9)).AsStorageString();
        },
        [](const Victim &) { CCommand(CCommand::TCommandEnum(36)).AsString(); }};
    for (size_t i = 0; i < faults.size(); ++i) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::signal(SIGABRT, SIG_DFL);
            ::close(STDERR_FILENO);
            faults[i](
                std::make_shared<CFTPClient>(nsSocket::CreateDefaultBlockingSocketInstance()));
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT, QByteArray::number(int(i)));
    }
}

QTEST_GUILESS_MAIN(FtpClientTest)
#include "tst_ftpclient.moc"
