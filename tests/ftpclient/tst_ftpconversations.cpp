#include "support/datafile.h"
#include "session.h"
#include "support/stricttest.h"

using namespace nsFTP;

namespace {

// Operations by name; 0, 1 and -1 as commands give them, or a number that was asked for.
using Arguments = QStringList;
using Operation = std::function<long long(Session &, const Arguments &)>;

long long told(int result, long long value)
{
    return result == 0 ? value : result * 1000LL + value;
}

long long good(bool result)
{
    return result ? 0 : -1;
}

CRepresentation typeOf(const Arguments &a)
{
    const CType type = CType::TTypeEnum(QString("AEIL").indexOf(a[0]));
    return {type, CTypeFormat::TTypeFormatEnum(QString(" NTC").indexOf(a.value(1, " ")) & 3)};
}

const std::map<QString, Operation> Operations = {
    {"cwd",
     [](Session &s, const Arguments &a) { return s.client.ChangeWorkingDirectory(text(a)); }},
    {"cdup", [](Session &s, const Arguments &) { return s.client.ChangeToParentDirectory(); }},
    {"pwd", [](Session &s, const Arguments &) { return s.client.PrintWorkingDirectory(); }},
    {"syst", [](Session &s, const Arguments &) { return s.client.System(); }},
    {"noop", [](Session &s, const Arguments &) { return s.client.Noop(); }},
    {"mkd", [](Session &s, const Arguments &a) { return s.client.MakeDirectory(text(a)); }},
    {"rmd", [](Session &s, const Arguments &a) { return s.client.RemoveDirectory(text(a)); }},
    {"dele", [](Session &s, const Arguments &a) { return s.client.Delete(text(a)); }},
    {"site", [](Session &s, const Arguments &a) { return s.client.SiteParameters(text(a)); }},
    {"help", [](Session &s, const Arguments &a) { return s.client.Help(text(a)); }},
    {"stat", [](Session &s, const Arguments &a) { return s.client.Status(text(a)); }},
    {"smnt", [](Session &s, const Arguments &a) { return s.client.StructureMount(text(a)); }},
    {"rein", [](Session &s, const Arguments &) { return s.client.Reinitialize(); }},
    {"abor", [](Session &s, const Arguments &) { return s.client.Abort(); }},
    {"stru",
     [](Session &s, const Arguments &) { return s.client.FileStructure(CStructure::Record); }},
    {"mode",
     [](Session &s, const Arguments &) { return s.client.TransferMode(CTransferMode::Block); }},
    {"port", [](Session &s, const Arguments &) { return s.client.DataPort("192.168.0.5", 5001); }},
    {"rename", [](Session &s, const Arguments &) { return s.client.Rename("a", "b"); }},
    {"move", [](Session &s, const Arguments &) { return s.client.Move("a", "b"); }},
    {"allo",
     [](Session &s, const Arguments &a) {
         const int size = a.value(0).toInt();
         return s.client.Allocate(100, size > 0 ? &size : nullptr);
     }},
    {"type",
     [](Session &s, const Arguments &a) {
         return s.client.RepresentationType(typeOf(a), a.value(1).toUInt());
     }},
    {"size",
     [](Session &s, const Arguments &) {
         long size = -7;
         const int result = s.client.FileSize("f", size);
         return told(result, size);
     }},
    {"mdtm",
     [](Session &s, const Arguments &) {
         long long seconds = -7;
         const int result = s.client.FileModificationTime("f", seconds);
         return told(result, seconds);
     }},
    {"list",
     [](Session &s, const Arguments &a) {
         return good(s.client.List("d", s.lines, !a.contains("active")));
     }},
    {"names",
     [](Session &s, const Arguments &) { return good(s.client.NameList("", s.lines, true)); }},
    {"get",
     [](Session &s, const Arguments &a) {
         const CRepresentation ascii(CType::ASCII, CTypeFormat::NonPrint);
         return good(s.client.DownloadFile("f", s.local, a.contains("ascii") ? ascii : CType::Image,
                                           !a.contains("active")));
     }},
    {"put",
     [](Session &s, const Arguments &a) {
         const bool unique = a.contains("unique");
         return good(s.client.UploadFile(s.local, "f", unique, CType::Image, !unique));
     }},
    {"abort",
     [](Session &s, const Arguments &) {
         s.server.content = QByteArray("0123").repeated(1000000);
         s.recorder.afterBlock = [&] { s.client.Abort(); };
         const bool result = s.client.DownloadFile("f", s.local, CType::Image, true);
         s.recorder.afterBlock = [] {};
         // The block in hand is kept, whatever its size.
         if (s.read().size() > 4 && s.read().size() <= 4096)
             s.write(s.read().left(4));
         return good(result);
     }},
    {"run",
     [](Session &s, const Arguments &a) {
         COutputStream stream("");
         int command = 0;
         while (CCommand(CCommand::TCommandEnum(command)).AsString() != a[0].toStdString())
             ++command;
         return good(s.client.ExecuteDatachannelCommand(CCommand::TCommandEnum(command), "f",
                                                        CType::Image, true, a[1].toUInt(), stream));
     }},
    {"policy",
     [](Session &s, const Arguments &a) {
         using Policy = CFTPClient::TPassiveAddress;
         s.client.SetPassiveAddressPolicy(a[0] == "replace" ? Policy::UseControlHost
                                                            : Policy::Refuse);
         return 0;
     }},
    {"replace", [](Session &s, const Arguments &) { return s.client.SetResumeMode(false), 0; }},
    {"much", [](Session &s, const Arguments &) { return s.write(QByteArray(20000000, 'x')), 0; }},
    {"local",
     [](Session &s, const Arguments &a) {
         QFile file(QString::fromStdString(s.local));
         if (a[0] != "none")
             s.write(a[0] == "4GiB" ? QByteArray() : a[0].toUtf8());
         return good(a[0] != "4GiB" || file.resize(1LL << 32));
     }},
};

} // namespace

// Whole conversations out of tables. Whatever a server does, the operation ends with the result
// stated, and the command after it either reads its own reply or finds the session closed.
class FtpConversationsTest : public StrictTest
{
    Q_OBJECT

private slots:
    void logons_data();
    void logons();
    void conversations_data();
    void conversations();
    void badServers_data();
    void badServers();

private:
    long long perform(Session &session, const QString &operations, bool &loggedOn);
    static void inStep(Session &session);
};

void FtpConversationsTest::logons_data()
{
    QTest::addColumn<QStringList>("row");
    for (const QStringList &row : rowsOf("logons.txt"))
        QTest::addRow("%s %s", qPrintable(row[0]), qPrintable(row[1])) << row;
}

void FtpConversationsTest::logons()
{
    QFETCH(QStringList, row);
    const int type = row[0].toInt();
    QStringList commands = row[2].split(',');
    QString script;
    for (int i = 0; i < commands.size(); ++i)
        script += commands[i].section(' ', 0, 0) + ": " + row[1][i] + "00 so;";
    Session session(script);
    // Without a firewall the host's port is the server's; with one it only shows in arguments.
    const quint16 hostPort = type == 0 ? session.server.port() : 2100;
    CLogonInfo logon(type == 0 ? "127.0.0.1" : "h", hostPort, "u", "p", "a");
    logon.SetFirewall("127.0.0.1", "fu", "fp", session.server.port(),
                      CFirewallType::TFirewallTypeEnum(type));
    QCOMPARE(session.client.Login(logon), row[3] == "in");
    commands.replaceInStrings("h:p", "h:2100");
    if (row[3] == "in")
        commands << "CWD .";
    QCOMPARE(session.server.commands(), commands);
    const QString failed = "! Logon failed. (formkit/FtpClient/FTPClient:532)";
    QCOMPARE(session.recorder.errors().join(""), row[3] == "refused" ? failed : QString());
}

long long FtpConversationsTest::perform(Session &session, const QString &operations, bool &loggedOn)
{
    loggedOn = session.login();
    long long result = good(loggedOn);
    for (const QString &operation : operations.split(',')) {
        const Arguments words = operation.split(' ');
        if (words[0] != "login")
            result = Operations.at(words[0])(session, words.mid(1));
    }
    return result;
}

void FtpConversationsTest::inStep(Session &session)
{
    for (int i = 0; i < 3; ++i) {
        CReply reply;
        const bool answered = session.client.SendCommand(CCommand::PWD, {}, reply);
        QVERIFY2(answered ? reply.Value() == "257 in step" : !session.client.IsConnected(),
                 reply.Value().c_str());
    }
}

void FtpConversationsTest::conversations_data()
{
    QTest::addColumn<QStringList>("row");
    QTest::addColumn<bool>("byteByByte");
    for (const QStringList &row : rowsOf("conversations.txt")) {
        QTest::newRow(qPrintable(row[0])) << row << false;
        QTest::addRow("%s, byte by byte", qPrintable(row[0])) << row << true;
    }
}

void FtpConversationsTest::conversations()
{
    QFETCH(QStringList, row);
    QFETCH(bool, byteByByte);
    // The logon's own CWD comes first.
    Session session(row[2].startsWith("CWD") ? "CWD: 250;" + row[2] : row[2], byteByByte, 10, 64);
    bool loggedOn = false;
    const long long result = perform(session, row[1], loggedOn);
    QVERIFY(loggedOn);
    const QStringList expected = row[3].split(' ');
    QCOMPARE(result, expected.size() == 1
                         ? expected[0].toLongLong()
                         : expected[0].toLongLong() * 1000 + expected[1].toLongLong());
    QStringList commands = session.server.commands().mid(3);
    commands.replaceInStrings(QRegularExpression("(PORT 127,0,0,1),.*"), "\\1");
    QCOMPARE(commands.join(','), row[4]);
    inStep(session);
    QVERIFY(session.client.IsConnected());
}

void FtpConversationsTest::badServers_data()
{
    QTest::addColumn<QStringList>("row");
    QTest::addColumn<bool>("byteByByte");
    for (const QStringList &row : rowsOf("badservers.txt")) {
        QTest::newRow(qPrintable(row[0])) << row << false;
        if (!row[0].endsWith("at once"))
            QTest::addRow("%s, byte by byte", qPrintable(row[0])) << row << true;
    }
}

void FtpConversationsTest::badServers()
{
    QFETCH(QStringList, row);
    QFETCH(bool, byteByByte);
    const bool slow = row[0].contains("slow");
    Session session(row[2], byteByByte, slow ? 1 : 10, 4096);
    session.lines = {"kept"};
    bool loggedOn = false;
    QCOMPARE(perform(session, row[1], loggedOn), row[3].toLongLong());
    QCOMPARE(session.lines, std::vector<std::string>({"kept"}));
    if (!row[4].isEmpty())
        QCOMPARE(session.read(), row[4] == "(empty)" ? QByteArray() : row[4].toUtf8());
    QVERIFY(!session.client.IsTransferringData());
    if (!slow)
        session.server.settle();
    inStep(session);
}

QTEST_GUILESS_MAIN(FtpConversationsTest)
#include "tst_ftpconversations.moc"
