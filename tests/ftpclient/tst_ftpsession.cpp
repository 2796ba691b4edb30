#include "recorder.h"
#include "scriptedserver.h"
#include "support/stricttest.h"

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

using namespace nsFTP;

namespace {

struct Session
{
    explicit Session(const QString &script = {}, unsigned int bufferSize = 4096)
        : server(script), client(nsSocket::CreateDefaultBlockingSocketInstance(), 5, bufferSize)
    {
        client.AttachObserver(&recorder);
    }
    bool login() { return client.Login({"127.0.0.1", server.port(), "joe", "secret"}); }

    ScriptedServer server;
    Recorder recorder;
    CFTPClient client;
};

} // namespace

class FtpSessionTest : public StrictTest
{
    Q_OBJECT

private slots:
    void logon_data();
    void logon();
    void simpleCommands_data();
    void simpleCommands();
    void replies_data();
    void replies();
    void typeIsSentOnce();
    void sizesAndTimes_data();
    void sizesAndTimes();
    void lineBreaksAreRefused_data();
    void lineBreaksAreRefused();
    void reports();
    void observersComeAndGo();
    void loginAgainLogsOut();
    void commandsMayBePipelined();
    void programmingErrors_data();
    void programmingErrors();
};

// The replies are given by their classes; the command stream is what the scheme sends for them.
void FtpSessionTest::logon_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("replies");
    QTest::addColumn<QString>("stream");
    QTest::addColumn<QString>("verdict");
    struct Row
    {
        int type;
        const char *replies, *stream, *verdict;
    };
    // Verdicts: in (logged on, so that CWD follows), out (stopped), refused (told as well).
    const Row rows[] = {
        {0, "2", "USER u", "in"},
        {0, "32", "USER u,PASS p", "in"},
        {0, "332", "USER u,PASS p,ACCT a", "in"},
        {0, "333", "USER u,PASS p,ACCT a", "refused"},
        {0, "5", "USER u", "out"},
        {0, "34", "USER u,PASS p", "out"},
        {0, "1", "USER u", "out"},
        {1, "323332", "USER fu,PASS fp,SITE h:p,USER u,PASS p,ACCT a", "in"},
        {1, "232", "USER fu,SITE h:p,USER u", "in"},
        {1, "22", "USER fu,SITE h:p", "refused"},
        {1, "322", "USER fu,PASS fp,SITE h:p", "refused"},
        {1, "33", "USER fu,PASS fp", "refused"},
        {1, "2332", "USER fu,SITE h:p,USER u,PASS p", "in"},
        {1, "23333", "USER fu,SITE h:p,USER u,PASS p,ACCT a", "refused"},
        {1, "235", "USER fu,SITE h:p,USER u", "out"},
        {2, "322", "USER fu,PASS fp,USER u@h:p", "in"},
        {2, "22", "USER fu,USER u@h:p", "in"},
        {2, "3232", "USER fu,PASS fp,USER u@h:p,PASS p", "in"},
        {2, "32332", "USER fu,PASS fp,USER u@h:p,PASS p,ACCT a", "in"},
        {2, "32333", "USER fu,PASS fp,USER u@h:p,PASS p,ACCT a", "refused"},
        {2, "33", "USER fu,PASS fp", "refused"},
        {3, "22", "OPEN h:p,USER u", "in"},
        {3, "32", "OPEN h:p,USER u", "in"},
        {3, "232", "OPEN h:p,USER u,PASS p", "in"},
        {3, "2332", "OPEN h:p,USER u,PASS p,ACCT a", "in"},
        {3, "2333", "OPEN h:p,USER u,PASS p,ACCT a", "refused"},
        {3, "4", "OPEN h:p", "out"},
        {4, "322", "USER fu,PASS fp,USER u", "in"},
        {4, "22", "USER fu,USER u", "in"},
        {4, "232", "USER fu,USER u,PASS p", "in"},
        {4, "2332", "USER fu,USER u,PASS p,ACCT a", "in"},
        {4, "2333", "USER fu,USER u,PASS p,ACCT a", "refused"},
        {4, "33", "USER fu,PASS fp", "refused"},
        {5, "2", "USER u@h:p", "in"},
        {5, "32", "USER u@h:p,PASS p", "in"},
        {5, "332", "USER u@h:p,PASS p,ACCT a", "in"},
        {5, "333", "USER u@h:p,PASS p,ACCT a", "refused"},
        {6, "22", "USER fu@h:p,USER u", "in"},
        {6, "322", "USER fu@h:p,PASS fp,USER u", "in"},
        {6, "3232", "USER fu@h:p,PASS fp,USER u,PASS p", "in"},
        {6, "32332", "USER fu@h:p,PASS fp,USER u,PASS p,ACCT a", "in"},
        {6, "32333", "USER fu@h:p,PASS fp,USER u,PASS p,ACCT a", "refused"},
        {6, "33", "USER fu@h:p,PASS fp", "refused"},
        {7, "2", "USER u@h:p fu", "refused"},
        {7, "32", "USER u@h:p fu,PASS p", "in"},
        {7, "332", "USER u@h:p fu,PASS p,ACCT a", "in"},
        {7, "333", "USER u@h:p fu,PASS p,ACCT a", "refused"},
        {8, "2", "USER u@fu@h:p", "in"},
        {8, "32", "USER u@fu@h:p,PASS p@fp", "in"},
        {8, "332", "USER u@fu@h:p,PASS p@fp,ACCT a", "in"},
        {8, "333", "USER u@fu@h:p,PASS p@fp,ACCT a", "refused"},
    };
    for (const Row &row : rows) {
        QTest::addRow("%d %s", row.type, row.replies)
            << row.type << row.replies << row.stream << row.verdict;
    }
}

void FtpSessionTest::logon()
{
    QFETCH(int, type);
    QFETCH(QString, replies);
    QFETCH(QString, stream);
    QFETCH(QString, verdict);
    QStringList commands = stream.split(',');
    QString script;
    for (int i = 0; i < commands.size(); ++i)
        script += commands[i].section(' ', 0, 0) + ": " + replies[i] + "00 so;";

    Session session(script);
    // Without a firewall the host's port is the server's; with one it only shows in arguments.
    const quint16 hostPort = type == 0 ? session.server.port() : 2100;
    CLogonInfo logon(type == 0 ? "127.0.0.1" : "h", hostPort, "u", "p", "a");
    logon.SetFirewall("127.0.0.1", "fu", "fp", session.server.port(),
                      CFirewallType::TFirewallTypeEnum(type));
    QCOMPARE(session.client.Login(logon), verdict == "in");
    commands.replaceInStrings("h:p", "h:2100");
    if (verdict == "in")
        commands << "CWD .";
    QCOMPARE(session.server.commands(), commands);
    const QStringList errors =
        verdict == "refused" ? QStringList("! Logon failed. (formkit/FtpClient/FTPClient:532)")
                             : QStringList();
    QCOMPARE(session.recorder.errors(), errors);
}

using Operation = std::function<int(CFTPClient &)>;
Q_DECLARE_METATYPE(Operation)

void FtpSessionTest::simpleCommands_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("stream");
    const auto row = [](const char *stream, const Operation &operation) {
        QTest::newRow(stream) << operation << stream;
    };
    static const int recordSize = 80;
    row("CWD a b", [](CFTPClient &c) { return c.ChangeWorkingDirectory("a b"); });
    row("CDUP", [](CFTPClient &c) { return c.ChangeToParentDirectory(); });
    row("PWD", [](CFTPClient &c) { return c.PrintWorkingDirectory(); });
    row("SYST", [](CFTPClient &c) { return c.System(); });
    row("NOOP", [](CFTPClient &c) { return c.Noop(); });
    row("MKD d", [](CFTPClient &c) { return c.MakeDirectory("d"); });
    row("RMD d", [](CFTPClient &c) { return c.RemoveDirectory("d"); });
    row("DELE f", [](CFTPClient &c) { return c.Delete("f"); });
    row("SITE chmod", [](CFTPClient &c) { return c.SiteParameters("chmod"); });
    row("HELP", [](CFTPClient &c) { return c.Help(); });
    row("HELP SITE", [](CFTPClient &c) { return c.Help("SITE"); });
    row("STAT", [](CFTPClient &c) { return c.Status(""); });
    row("STAT f", [](CFTPClient &c) { return c.Status("f"); });
    row("SMNT m", [](CFTPClient &c) { return c.StructureMount("m"); });
    row("REIN", [](CFTPClient &c) { return c.Reinitialize(); });
    row("STRU R", [](CFTPClient &c) { return c.FileStructure(CStructure::Record); });
    row("MODE B", [](CFTPClient &c) { return c.TransferMode(CTransferMode::Block); });
    row("ALLO 100", [](CFTPClient &c) { return c.Allocate(100); });
    row("ALLO 100 R 80", [](CFTPClient &c) { return c.Allocate(100, &recordSize); });
    row("TYPE A", [](CFTPClient &c) { return c.RepresentationType(CType::ASCII); });
    row("TYPE E T", [](CFTPClient &c) {
        return c.RepresentationType({CType::EBCDIC, CTypeFormat::TelnetFormat});
    });
    row("TYPE L 36", [](CFTPClient &c) { return c.RepresentationType(CType::LocalByte, 36); });
    row("TYPE L 8", [](CFTPClient &c) { return c.RepresentationType(CType::LocalByte); });
    row("PORT 192,168,0,5,19,137", [](CFTPClient &c) { return c.DataPort("192.168.0.5", 5001); });
    row("ABOR", [](CFTPClient &c) { return c.Abort(); });
    row("RNFR a,RNTO b", [](CFTPClient &c) { return c.Rename("a", "b"); });
}

// Each is done three times: answered well, answered badly, not answered.
void FtpSessionTest::simpleCommands()
{
    QFETCH(Operation, operation);
    QFETCH(QString, stream);
    // A comma parts commands, except in the argument of PORT.
    const QStringList commands =
        stream.startsWith("PORT") ? QStringList(stream) : stream.split(',');
    const QString last = commands.last().section(' ', 0, 0);
    // The logon's own CWD comes first.
    Session session(QString(last == "CWD" ? "CWD: 250 in;" : "") + last + ": 200 fine;" + last +
                    ": 550 no;" + last + ": close");
    QVERIFY(session.login());
    const int before = session.server.commands().size();
    QCOMPARE(operation(session.client), 0);
    QCOMPARE(session.server.commands().mid(before), commands);
    if (last == "TYPE")
        session.client.RepresentationType(CType::Image);
    QCOMPARE(operation(session.client), last == "TYPE" ? -1 : 1);
    QCOMPARE(operation(session.client), -1);
    QVERIFY(!session.client.IsConnected());
}

void FtpSessionTest::replies_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("result");
    QTest::newRow("single") << "200 ok"
                            << "200 ok" << 0;
    QTest::newRow("code alone") << "200"
                                << "200" << 0;
    QTest::newRow("bare line feed stays") << "raw 200 ok\n"
                                          << "200 ok\n"
                                          << 0;
    QTest::newRow("lines") << "200-a\r\n b\r\n200 c"
                           << "200-a\r\n b\r\n200 c" << 0;
    QTest::newRow("another number does not close")
        << "200-a\r\n226 b\r\n20 c\r\n200-d\r\n200 e"
        << "200-a\r\n226 b\r\n20 c\r\n200-d\r\n200 e" << 0;
    QTest::newRow("short line does not close") << "200-a\r\n200\r\n200 b"
                                               << "200-a\r\n200\r\n200 b" << 0;
    QTest::newRow("NUL") << "200 a␀b" << QString("200 a%1b").arg(QChar(0)) << 0;
    QTest::newRow("intermediate") << "350 more"
                                  << "350 more" << -1;
    QTest::newRow("transient") << "450 no"
                               << "450 no" << 1;
    QTest::newRow("longer than the buffer")
        << "200 " + QString(500, 'x') << "200 " + QString(500, 'x') << 0;
}

// With a buffer of 64 bytes, so that long replies come in several receives.
void FtpSessionTest::replies()
{
    QFETCH(QString, script);
    QFETCH(QString, text);
    QFETCH(int, result);
    Session session("NOOP: " + script, 64);
    QVERIFY(session.login());
    QCOMPARE(session.client.Noop(), result);
    QCOMPARE(session.recorder.log.last(), "< " + text);
}

void FtpSessionTest::typeIsSentOnce()
{
    Session session("TYPE: 200 ok; TYPE: 200 ok; TYPE: 500 no");
    QVERIFY(session.login());
    const CFTPClient &client = session.client;
    QCOMPARE(client.RepresentationType(CType::Image), 0);
    QCOMPARE(client.RepresentationType(CType::Image), 0);
    QCOMPARE(client.RepresentationType({CType::ASCII, CTypeFormat::NonPrint}), 0);
    QCOMPARE(client.RepresentationType(CType::Image), 1);
    QCOMPARE(client.RepresentationType({CType::ASCII, CTypeFormat::NonPrint}), 0);
    QCOMPARE(client.Reinitialize(), 0);
    QCOMPARE(client.RepresentationType({CType::ASCII, CTypeFormat::NonPrint}), 0);
    QCOMPARE(session.server.commands().mid(3),
             QString("TYPE I,TYPE A N,TYPE I,TYPE A N,REIN,TYPE A N").split(','));
}

void FtpSessionTest::sizesAndTimes_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<int>("result");
    QTest::addColumn<qint64>("value");
    QTest::newRow("SIZE 5 GiB") << "213 5368709120" << 0 << 5368709120LL;
    QTest::newRow("SIZE blanks") << "213   7 " << 0 << 7LL;
    QTest::newRow("SIZE lines") << "213-here\r\n213 7" << 0 << 7LL;
    for (const char *bad :
         {"213 -5", "213 99999999999999999999", "213 ", "213", "213 seven", "213 7x"})
        QTest::addRow("SIZE %s", bad) << bad << -1 << -7LL;
    QTest::newRow("SIZE refused") << "550 no" << 1 << -7LL;
    QTest::newRow("MDTM") << "213 20240229120001" << 0 << 1709208001LL;
    QTest::newRow("MDTM fraction") << "213 19700101000000.123" << 0 << 0LL;
    for (const char *bad :
         {"213 20241301000000", "213 2024", "213 202402291200010", "213 20240200000000"})
        QTest::addRow("MDTM %s", bad) << bad << -1 << -7LL;
}

void FtpSessionTest::sizesAndTimes()
{
    QFETCH(QString, reply);
    QFETCH(int, result);
    QFETCH(qint64, value);
    Session session("SIZE: " + reply + ";MDTM: " + reply);
    QVERIFY(session.login());
    long size = -7;
    long long seconds = -7;
    if (QString(QTest::currentDataTag()).startsWith("SIZE")) {
        QCOMPARE(session.client.FileSize("f", size), result);
        QCOMPARE(qint64(size), value);
    } else {
        QCOMPARE(session.client.FileModificationTime("f", seconds), result);
        QCOMPARE(qint64(seconds), value);
    }
}

void FtpSessionTest::lineBreaksAreRefused_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("command");
    const auto row = [](const char *command, const Operation &operation) {
        QTest::newRow(command) << operation << command;
    };
    static const std::string bad = "x\r\nDELE y";
    static std::vector<std::string> names;
    row("DELE", [](CFTPClient &c) { return c.Delete(bad); });
    row("MKD", [](CFTPClient &c) { return c.MakeDirectory(std::string("a\0b", 3)); });
    row("RNTO", [](CFTPClient &c) { return c.Rename("a", "b\n"); });
    row("LIST", [](CFTPClient &c) { return c.List("a\r", names, true) ? 0 : -1; });
    row("RETR", [](CFTPClient &c) {
        COutputStream out("");
        return c.DownloadFile(bad, out, CType::Image, true) ? 0 : -1;
    });
    row("STOR", [](CFTPClient &c) {
        COutputStream out("");
        return c.UploadFile(out, bad, false, CType::Image, true) ? 0 : -1;
    });
    row("PASS", [](CFTPClient &c) {
        return c.Login({"127.0.0.1", 21, "u", "top\nsecret"}) ? 0 : -1;
    });
    row("SITE", [](CFTPClient &c) {
        return c.Login({"h\n", 21, "u", "p", "a", "127.0.0.1", "u", "p", 21,
                        CFirewallType::SiteHostName})
                   ? 0
                   : -1;
    });
}

void FtpSessionTest::lineBreaksAreRefused()
{
    QFETCH(Operation, operation);
    QFETCH(QString, command);
    Session session;
    QVERIFY(session.login());
    const int before = session.server.commands().size();
    QCOMPARE(operation(session.client), -1);
    QCOMPARE(session.recorder.errors(),
             QStringList("! Line break or NUL in an argument of " + command +
                         ". (formkit/FtpClient/FTPClient:612)"));
    QCOMPARE(session.client.Noop(), 0);
    QCOMPARE(session.server.commands().mid(before), QStringList("NOOP"));
}

void FtpSessionTest::reports()
{
    Session session("PWD: 257-a\r\n257 b; NOOP: close");
    QVERIFY(session.login());
    session.recorder.log.clear();
    QCOMPARE(session.client.PrintWorkingDirectory(), 0);
    QCOMPARE(session.client.Noop(), -1);
    QCOMPARE(session.client.Noop(), -1);
    QCOMPARE(session.recorder.log, QStringList({"> PWD", "< 257-a\r\n257 b", "> NOOP"}));
    session.recorder.log.clear();
    CLogonInfo nowhere("127.0.0.1", 1);
    QVERIFY(!session.client.Login(nowhere));
    QCOMPARE(session.recorder.log.size(), 1);
    QVERIFY(session.recorder.log.first().startsWith("! Connect error 0x000000"));
    QCOMPARE(CCommand(CCommand::PASS).AsMaskedString({"secret"}), std::string("PASS ****"));
}

void FtpSessionTest::observersComeAndGo()
{
    ScriptedServer server;
    Recorder stays;
    {
        CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance(), 5);
        Recorder leaves;
        client.AttachObserver(&stays);
        client.AttachObserver(&stays);
        client.AttachObserver(&leaves);
        QCOMPARE(client.GetObservers().size(), size_t(2));
        {
            Recorder dies;
            client.AttachObserver(&dies);
        }
        // Leaving from within a call is allowed, whichever is called first.
        client.DetachObserver(&leaves);
        leaves.afterBlock = [&] { client.DetachObserver(&leaves); };
        client.AttachObserver(&leaves);
        QVERIFY(client.Login({"127.0.0.1", server.port(), "u", "p"}));
        std::vector<std::string> lines;
        QVERIFY(client.List("", lines, true));
        QVERIFY(!leaves.log.contains("end 10"));
        QVERIFY(stays.log.contains("end 10"));
        QCOMPARE(client.GetObservers(), CFTPClient::TObserverSet({&stays}));
    }
    CFTPClient second(nsSocket::CreateDefaultBlockingSocketInstance());
    second.DetachObserver(&stays);
    QVERIFY(second.GetObservers().empty());
}

void FtpSessionTest::loginAgainLogsOut()
{
    Session session;
    QVERIFY(session.login());
    QVERIFY(session.login());
    QCOMPARE(session.client.Logout(), 0);
    QCOMPARE(session.client.Logout(), -1);
    const QStringList once = {"USER joe", "PASS secret", "CWD .", "QUIT"};
    QCOMPARE(session.server.commands(), once + once);
}

void FtpSessionTest::commandsMayBePipelined()
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

using Fault = std::function<void()>;
Q_DECLARE_METATYPE(Fault)

void FtpSessionTest::programmingErrors_data()
{
    QTest::addColumn<Fault>("fault");
    static const auto client = [] {
        return std::make_shared<CFTPClient>(nsSocket::CreateDefaultBlockingSocketInstance());
    };
    static COutputStream stream("");
    QTest::newRow("no socket") << Fault([] { CFTPClient c(nullptr); });
    QTest::newRow("no observer") << Fault([] { client()->AttachObserver(nullptr); });
    QTest::newRow("no directory") << Fault([] { client()->ChangeWorkingDirectory(""); });
    QTest::newRow("reply without a class") << Fault([] { CFTPClient::SimpleErrorCheck({}); });
    QTest::newRow("no data-channel command") << Fault([] {
        client()->ExecuteDatachannelCommand(CCommand::PWD, "", CType::ASCII, true, 0, stream);
    });
    QTest::newRow("no parser") << Fault([] {
        std::vector<std::shared_ptr<CFTPFileStatus>> result;
        const auto c = client();
        c->SetFileListParser(nullptr);
        c->List("", result, true);
    });
    QTest::newRow("no handle") << Fault([] { nsSocket::CBlockingSocket().Listen(); });
    QTest::newRow("no message") << Fault([] { nsSocket::CBlockingSocketException e(nullptr); });
    QTest::newRow("no such type") << Fault([] { CType(CType::TTypeEnum(4)).AsString(); });
    QTest::newRow("no format") << Fault([] { CTypeFormat(CTypeFormat::None).AsString(); });
    QTest::newRow("no such firewall")
        << Fault([] { CFirewallType(CFirewallType::TFirewallTypeEnum(9)).AsStorageString(); });
    QTest::newRow("no such command")
        << Fault([] { CCommand(CCommand::TCommandEnum(36)).AsString(); });
}

void FtpSessionTest::programmingErrors()
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

QTEST_GUILESS_MAIN(FtpSessionTest)
#include "tst_ftpsession.moc"
