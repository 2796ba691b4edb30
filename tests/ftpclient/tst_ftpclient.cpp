#include "session.h"
#include "support/datafile.h"
#include "support/stricttest.h"

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

using namespace nsFTP;

namespace {

// A socket whose system forgets who is at the other end.
class Forgetful : public nsSocket::CBlockingSocket
{
public:
    void GetPeerAddr(sockaddr * /*psa*/) const override
    {
        throw nsSocket::CBlockingSocketException("GetPeerName");
    }
};

} // namespace

// Whole conversations out of tables, and what tables cannot tell: observers, streams, threads,
// several clients.
class FtpClientTest : public StrictTest
{
    Q_OBJECT

private slots:
    void conversations();
    void logons() { compare(faultsOf(rowsOf("logons.txt"), logon)); }
    void betweenServers() { compare(faultsOf(rowsOf("between.txt"), between)); }
    void commands();
    void reports();
    void observers();
    void sessions();
    void listings();
    void passiveReplies();
    void peers();
    void abortFromAnotherThread();
    void oneTransferAtATime();
    void programmingErrors();

private:
    static void compare(const QByteArray &faults)
    {
        qInfo("%s", faults.constData());
        QVERIFY(faults.isEmpty());
    }
    static QString conversation(const QStringList &row);
    static QString logon(const QStringList &row);
    static QString between(const QStringList &row);
};

QString FtpClientTest::conversation(const QStringList &row)
{
    const bool slow = row[0].contains("slow");
    const bool byteByByte = row.last() == "byte by byte";
    Session session(row[2], byteByByte, slow ? 1 : 20, byteByByte ? 64 : 4096);
    if (row[1].contains("aborting"))
        session.server.content = QByteArray("0123").repeated(1000000);
    long long result = session.login() ? 0 : -1;
    if (row[1] != "login")
        result = session.perform(row[1]);
    session.recorder.afterBlock = [] {};
    QStringList sent = session.server.commands().mid(3);
    sent.replaceInStrings(QRegularExpression("(PORT 127,0,0,1),.*"), "\\1");
    const QString errors = session.recorder.errors().join('\n');
    const bool busy = session.client.IsTransferringData();
    if (!slow)
        session.server.settle();
    QString fault;
    for (int i = 0; i < 3; ++i)
        fault += session.inStep() || !session.client.IsConnected() ? "" : "out of step ";
    const QString outcome =
        QString::number(result) + (session.client.IsConnected() ? "" : " closed");
    if (outcome != row[3] || busy || errors.contains("secret"))
        fault += outcome + " busy " + QString::number(busy);
    if (result != 0 && session.lines != std::vector<std::string>{"kept"})
        fault += " lines lost";
    for (const QString &extra : row.mid(4)) {
        const QString wanted = extra.section(' ', 1);
        const QString file = session.read().left(99);
        const bool part = wanted.endsWith('*') && file.startsWith(wanted.chopped(1));
        if ((extra.startsWith("sends") && sent.join(',') != wanted) ||
            (extra.startsWith("file") && file != wanted && !part) ||
            (extra.startsWith("reports") && !errors.contains(QRegularExpression(wanted))))
            fault += " instead of " + extra + ": " + sent.join(',') + ", " + file + ", " + errors;
    }
    return fault;
}

void FtpClientTest::conversations()
{
    QList<DataRow> rows = rowsOf("conversations.txt");
    for (int i = rows.size() - 1; i >= 0; --i) {
        if (!rows[i][0].endsWith("at once")) {
            rows << rows[i];
            rows.last() << "byte by byte";
        }
    }
    compare(faultsOf(rows, conversation, 24));
}

QString FtpClientTest::logon(const QStringList &row)
{
    const int type = row[0].toInt();
    QStringList commands = row[2].split(',');
    QString script;
    for (int i = 0; i < commands.size(); ++i)
        script += commands[i].section(' ', 0, 0) + ": " + row[1][i] + "00 so;";
    Session session(script);
    // Without a firewall the host's port is the server's; with one it only shows in arguments.
    const quint16 shown = row[2].contains(":p") ? 2100 : 21;
    CLogonInfo logon(type == 0 ? "127.0.0.1" : "h", type == 0 ? session.server.port() : shown, "u",
                     "p", "a");
    logon.SetFirewall("127.0.0.1", "fu", "fp", session.server.port(),
                      CFirewallType::TFirewallTypeEnum(type));
    const bool in = session.client.Login(logon);
    commands.replaceInStrings("h:p", "h:2100");
    if (row[3] == "in")
        commands << "CWD .";
    const QString failed = "! Logon failed. (formkit/FtpClient/FTPClient:532)";
    const QString sent = session.server.commands().join(',');
    const QString errors = session.recorder.errors().join("");
    if (in == (row[3] == "in") && sent == commands.join(',') &&
        errors == (row[3] == "refused" ? failed : QString()))
        return {};
    return QString("%1, %2, %3").arg(in).arg(sent, errors);
}

QString FtpClientTest::between(const QStringList &row)
{
    Session source(row[0]);
    Session target(row[1]);
    const bool passive = row[2] == "passive";
    const bool in = source.login() && target.login();
    const bool good = source.client.DownloadFile("a", target.client, "b", CType::Image, passive);
    const bool inStep = source.inStep() && target.inStep();
    const bool withItself =
        source.client.UploadFile(source.client, "a", "b", CType::Image, passive);
    QStringList sent = source.server.commands().mid(3) + target.server.commands().mid(3);
    sent.replaceInStrings(QRegularExpression("PORT .*"), "PORT");
    const bool asTold = sent.join(',') == QString("%1,PWD,%2,PWD").arg(row[4], row[5]);
    return in && good == (row[3] == "yes") && inStep && !withItself && asTold ? "" : sent.join(',');
}

void FtpClientTest::commands()
{
    Session session;
    const CFTPClient &c = session.client;
    const int recordSize = 80;
    QVERIFY(session.login());
    QCOMPARE(c.ChangeWorkingDirectory("a b") + c.ChangeToParentDirectory() +
                 c.PrintWorkingDirectory() + c.System() + c.Noop() + c.MakeDirectory("d") +
                 c.RemoveDirectory("d") + c.Delete("f") + c.SiteParameters("x y") + c.Help() +
                 c.Help("SITE") + c.Status() + c.Status("f") + c.StructureMount("m") +
                 c.FileStructure(CStructure::Record) + c.TransferMode(CTransferMode::Block) +
                 c.Allocate(100) + c.Allocate(100, &recordSize) + c.DataPort("192.168.0.5", 5001) +
                 c.Move("a", "b") + c.Abort() + c.Reinitialize(),
             0);
    QCOMPARE(session.server.commands().mid(3).join(','),
             "CWD a b,CDUP,PWD,SYST,NOOP,MKD d,RMD d,DELE f,SITE x y,HELP,HELP SITE,STAT,STAT f,"
             "SMNT m,STRU R,MODE B,ALLO 100,ALLO 100 R 80,PORT 192,168,0,5,19,137,RNFR a,RNTO b,"
             "ABOR,REIN");
}

void FtpClientTest::reports()
{
    Session session("PWD: raw 257-a\r\n257 ␀b\n; NOOP: close");
    QVERIFY(session.login());
    session.recorder.log.clear();
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QVERIFY(session.get("f"));
    session.client.SetResumeMode(false);
    QVERIFY(session.put("f"));
    QCOMPARE(session.client.Noop() + session.client.Noop(), -2);
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

void FtpClientTest::observers()
{
    Session one;
    Session other;
    Recorder leaves;
    {
        Recorder dies;
        for (Session *session : {&one, &other}) {
            session->client.AttachObserver(&session->recorder);
            session->client.AttachObserver(&leaves);
            session->client.AttachObserver(&dies);
        }
    }
    // Leaving from within a call is allowed, whichever is called first.
    leaves.afterBlock = [&] { one.client.DetachObserver(&leaves); };
    for (Session *session : {&one, &other})
        QVERIFY(session->login() && session->client.List("", session->lines, true));
    QCOMPARE(leaves.log.count("end 10"), 1);
    QVERIFY(one.recorder.log.contains("end 10"));
    QCOMPARE(one.client.GetObservers(), CFTPClient::TObserverSet({&one.recorder}));
    QCOMPARE(other.client.GetObservers(), CFTPClient::TObserverSet({&other.recorder, &leaves}));
    {
        CFTPClient dies(nsSocket::CreateDefaultBlockingSocketInstance());
        dies.AttachObserver(&leaves);
    }
}

void FtpClientTest::sessions()
{
    Session session("NOOP: 200 first; NOOP: 200 second", false, ~0U);
    QVERIFY(session.login());
    CReply reply;
    QVERIFY(session.client.SendCommand(CCommand::NOOP, {}));
    QVERIFY(session.client.SendCommand(CCommand::NOOP, {}));
    for (const char *text : {"200 first", "200 second"}) {
        QVERIFY(session.client.GetResponse(reply));
        QCOMPARE(reply.Value(), std::string(text));
    }
    QVERIFY(session.login());
    QCOMPARE(session.client.Logout(), 0);
    QCOMPARE(session.client.Logout(), -1);
    QCOMPARE(session.server.commands().join(','),
             "USER joe,PASS secret,CWD .,NOOP,NOOP,QUIT,USER joe,PASS secret,CWD .,QUIT");
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
    QVERIFY(session.client.NameList("some/path", entries, true));
    QCOMPARE(entries.size(), size_t(3));
    QCOMPARE(entries[0]->name + " " + entries[0]->path, std::string("total 2 some/path"));
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
    for (const char *reply : {"227 (1,2,3,-4,5,6)", "227 (1,,2,3,4,5,6)", "227 (1,2,3,256,5,6)",
                              "227 (1,2,3,4,5,4294967302)", "227 (1,2,3,4,5,6,7)"})
        QVERIFY2(!CFTPClient::GetIpAddressFromResponse(reply, ip, port), reply);
}

// Who may send and whom data are fetched from.
void FtpClientTest::peers()
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

    CFTPClient client(std::make_shared<Forgetful>());
    Session other;
    QVERIFY(client.Login({"127.0.0.1", other.server.port()}));
    QVERIFY(client.List("", session.lines, true) && client.List("", session.lines, false));
    client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress::UseControlHost);
    client.SetAcceptOnlyControlPeer(true);
    QVERIFY(!client.List("", session.lines, true) && !client.List("", session.lines, false));
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

void FtpClientTest::programmingErrors()
{
    using Victim = std::shared_ptr<CFTPClient>;
    COutputStream stream("");
    const std::vector<std::function<void(const Victim &)>> faults = {
        [](const Victim &) { CFTPClient c(nullptr); },
        [](const Victim &c) { c->AttachObserver(nullptr); },
        [](const Victim &c) { c->ChangeWorkingDirectory(""); },
        [](const Victim &) { CFTPClient::SimpleErrorCheck({}); },
        [&](const Victim &c) {
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
        [](const Victim &) { CCommand(CCommand::TCommandEnum(36)).AsString(); }};
    for (const auto &fault : faults) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::signal(SIGABRT, SIG_DFL);
            ::close(STDERR_FILENO);
            fault(std::make_shared<CFTPClient>(nsSocket::CreateDefaultBlockingSocketInstance()));
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT,
                 QByteArray::number(int(&fault - faults.data())));
    }
}

QTEST_GUILESS_MAIN(FtpClientTest)
#include "tst_ftpclient.moc"
