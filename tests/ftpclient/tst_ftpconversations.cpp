#include "support/datafile.h"
#include "session.h"
#include "support/stricttest.h"

using namespace nsFTP;

// Whole conversations out of tables. Whatever a server does, the operation ends with the result
// stated, and the command after it either reads its own reply or finds the session closed.
class FtpConversationsTest : public StrictTest
{
    Q_OBJECT

private slots:
    void logons() { compare(faultsOf(rowsOf("logons.txt"), logon)); }
    void conversations() { compare(faultsOf(rowsOf("conversations.txt"), conversation)); }
    void badServers();

private:
    static void compare(const QByteArray &faults) { QVERIFY2(faults.isEmpty(), faults); }
    static QString logon(const QStringList &row);
    static QString conversation(const QStringList &row);
    static QString badServer(const QStringList &row);
};

QString FtpConversationsTest::logon(const QStringList &row)
{
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

QString FtpConversationsTest::conversation(const QStringList &row)
{
    // The logon's own CWD comes first.
    Session session(row[2].startsWith("CWD") ? "CWD: 250;" + row[2] : row[2], false, 10, 64);
    if (!session.login())
        return "not logged on";
    const long long result = session.perform(row[1]);
    const QStringList expected = row[3].split(' ');
    const long long wanted = expected.size() == 1
                                 ? expected[0].toLongLong()
                                 : expected[0].toLongLong() * 1000 + expected[1].toLongLong();
    QStringList commands = session.server.commands().mid(3);
    commands.replaceInStrings(QRegularExpression("(PORT 127,0,0,1),.*"), "\\1");
    const QString errors = session.recorder.errors().join('\n');
    const bool reported = QRegularExpression(row.value(5, ".*")).match(errors).hasMatch();
    const bool inStep = session.inStep() && session.inStep() && session.client.IsConnected();
    if (result == wanted && (row[4] == "*" || commands.join(',') == row[4]) && reported && inStep)
        return errors.contains("secret") ? errors : QString();
    return QString("%1, %2, %3, in step %4")
        .arg(result)
        .arg(commands.join(','), errors)
        .arg(inStep);
}

QString FtpConversationsTest::badServer(const QStringList &row)
{
    const bool slow = row[0].contains("slow");
    Session session(row[2], row.last() == "byte by byte", slow ? 1 : 20, 4096);
    if (row[1] == "abort")
        session.server.content = QByteArray("0123").repeated(1000000);
    long long result = session.login() ? 0 : -1;
    if (row[1] != "login")
        result = session.perform(row[1]);
    const QByteArray content = row[4] == "(empty)" ? QByteArray() : row[4].toUtf8();
    if (result != row[3].toLongLong() || session.lines != std::vector<std::string>{"kept"} ||
        (!row[4].isEmpty() && session.read() != content) || session.client.IsTransferringData())
        return QString("%1, %2").arg(result).arg(QString(session.read().left(99)));
    if (!slow)
        session.server.settle();
    for (int i = 0; i < 3; ++i) {
        if (!session.inStep() && session.client.IsConnected())
            return "out of step";
    }
    return {};
}

void FtpConversationsTest::badServers()
{
    QList<DataRow> rows = rowsOf("badservers.txt");
    for (int i = rows.size() - 1; i >= 0; --i) {
        if (!rows[i][0].endsWith("at once")) {
            rows << rows[i];
            rows.last() << "byte by byte";
        }
    }
    compare(faultsOf(rows, badServer));
}

QTEST_GUILESS_MAIN(FtpConversationsTest)
#include "tst_ftpconversations.moc"
