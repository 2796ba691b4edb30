// SPDX-License-Identifier: BSD-3-Clause
#include "session.h"
#include "support/datafile.h"
#include "support/inputsocket.h"
#include "support/stricttest.h"

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

using namespace nsFTP;

namespace {

QString conversation(const QStringList &row)
{
    const bool slow = row[0].contains("slow");
    const bool byteByByte = row.last() == "byte by byte";
    const bool logsOn = row[1].startsWith("logon ");
    const QByteArray content = row[1].contains(": abort") && !row[2].contains("part")
                                   ? QByteArray("0123").repeated(1000000)
                                   : QByteArray("0123456789");
    Session session(row[2], byteByByte, slow ? 2 : 20, byteByByte ? 64 : 4096, content);
    long long result = logsOn || session.login() ? 0 : -1;
    if (row[1] != "login") {
        session.recorder.log.clear();
        result = session.perform(row[1]);
    }
    session.recorder.hook = nullptr;
    const QString log = session.recorder.log.join(',');
    QStringList sent = session.server.commands().mid(logsOn ? 0 : 3);
    sent.replaceInStrings(QRegularExpression("(PORT 127,0,0,1),.*"), "\\1");
    sent.replaceInStrings(QRegularExpression("(EPRT .*)\\|.*\\|$"), "\\1");
    const QString errors = session.recorder.errors().join('\n');
    QString outcome = QString::number(result);
    for (int i = 0; i < 3; ++i)
        outcome += session.inStep() || !session.client.IsConnected() ? "" : " out of step";
    outcome += session.client.IsConnected() ? "" : " closed";
    const bool lost = result != 0 && session.lines != std::vector<std::string>{"kept"};
    bool good = outcome == row[3] && !errors.contains("secret") && !lost;
    const QString file = session.read().left(99);
    for (const QString &extra : row.mid(4)) {
        const QString wanted = extra.section(' ', 1);
        const bool part = wanted.endsWith('*') && file.startsWith(wanted.chopped(1));
        good = good && (!extra.startsWith("sends") || sent.join(',') == wanted) &&
               (!extra.startsWith("log") || log.contains(QRegularExpression(wanted))) &&
               (!extra.startsWith("file") || file == wanted || part) &&
               (!extra.startsWith("reports") || errors.contains(QRegularExpression(wanted)));
    }
    return good ? ""
                : QStringList({outcome, sent.join(','), file, errors, log.left(2000)}).join("; ");
}

QString between(const QStringList &row)
{
    Session source(row[0]);
    Session target(row[1]);
    const bool in = source.login() && target.login();
    const bool good =
        source.client.DownloadFile("a", target.client, "b", CType::Image, row[2] == "passive");
    const bool inStep = source.inStep() && target.inStep() &&
                        !source.client.UploadFile(source.client, "a", "b", CType::Image, true);
    QStringList sent = source.server.commands().mid(3) + target.server.commands().mid(3);
    sent.replaceInStrings(QRegularExpression("PORT .*"), "PORT");
    const bool asTold =
        sent.join(',') == QString("%1,PWD,MDTM f,%2,PWD,MDTM f").arg(row[4], row[5]);
    const bool reported = source.recorder.errors().join('\n').contains(row.value(6));
    const bool asWanted = good == (row[3] == "yes") && asTold && reported;
    return in && asWanted && inStep ? "" : sent.join(',');
}

void compare(const QByteArray &faults)
{
    qInfo("%s", faults.constData());
    QVERIFY(faults.isEmpty());
}

// A stream that sends commands of its own.
struct AskingStream : COutputStream
{
    explicit AskingStream(const CFTPClient &client) : COutputStream(""), asked(client) {}
    void OnBytesReceived(const std::vector<char> & /*buffer*/, long /*count*/) override
    {
        result = asked.Noop();
    }

    const CFTPClient &asked;
    int result = 0;
};

// A socket that can make only so many others and does not know its peer. Its first Accept() is
// interrupted.
class Troubled : public nsSocket::CBlockingSocket
{
public:
    explicit Troubled(int others = 0) : m_others(others) {}

private:
    IBlockingSocket *CreateInstance() const override
    {
        if (m_others == 0)
            throw nsSocket::CBlockingSocketException("CreateInstance");
        --m_others;
        return new Troubled;
    }
    bool Accept(IBlockingSocket &connected, sockaddr *psa) const override
    {
        return !std::exchange(m_disturbed, false) && CBlockingSocket::Accept(connected, psa);
    }
    void GetPeerAddr(sockaddr * /*psa*/) const override
    {
        throw nsSocket::CBlockingSocketException("GetPeerName");
    }
    // A wait that begins again has what is left of the time.
    void SetWaitLimit(int seconds) override
    {
        limits << seconds;
        CBlockingSocket::SetWaitLimit(seconds);
    }

public:
    static inline QVector<int> limits;

private:
    mutable int m_others;
    mutable bool m_disturbed = true;
};

} // namespace

// Whole conversations out of tables, and what tables cannot tell: observers, streams, threads,
// several clients.
class FtpClientTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void conversations()
    {
        QList<DataRow> rows = rowsOf("conversations.txt") + rowsOf("logons.txt");
        for (int i = rows.size() - 1; i >= 0; --i) {
            if (!rows[i][0].endsWith("at once")) {
                rows << rows[i];
                rows.last() << "byte by byte";
            }
        }
        compare(faultsOf(rows, conversation, 24));
    }

    // Replies that stand ready belong to the commands to come, whatever a stranger's socket says.
    void repliesStandReady()
    {
        const QString rest = "250 in;200 I;213 10;227 (1,2,3,4,5,6);150;226;200 P;150;226;221 bye;";
        for (const DataRow &row : rowsOf("logons.txt")) {
            QString replies = QString("220 hi;%1;%2").arg(row[2], rest).replace(";", "\r\n");
            replies.remove(QRegularExpression("[A-Z]+: "));
            for (int kind = 0; row[3] == "0" && kind < 6; ++kind) {
                Input input = {replies.toStdString(), "0123456789", kind < 3,
                               Input::Readability(kind % 3)};
                Client c(1, 64, std::make_shared<InputSocket>(input, true));
                const QString operations = row[1] + ",get f,replace,put f active,quit";
                QVERIFY2(c.perform(operations) == 0, qPrintable(row[1] + c.recorder.last()));
                const QStringList sent = c.recorder.log.filter(QRegularExpression("^> "));
                QCOMPARE("sends " + sent.join(',').remove("> "),
                         row[4] + ",TYPE I,SIZE f,PASV,RETR f,PORT 127,0,0,1,0,0,STOR f,QUIT");
            }
        }
        // What fails after whole replies is reported; the replies count.
        Input last = {"220 hi\r\n230 in\r\n250 ok\r\n\xff", "", true, Input::Always};
        Client c(1, 9, std::make_shared<InputSocket>(last, true));
        QVERIFY(c.perform("login h u p") == 0 && c.recorder.errors().size() == 1);
    }

    // Lines that fill the buffer before the end are told; a session ends with its connection.
    void endOfTheConnection()
    {
        const std::string whole = "220 " + std::string(57, 'x') + "\r\n";
        Input ended = {whole, "", false};
        Client full(1, 64, std::make_shared<InputSocket>(ended, true));
        QCOMPARE(full.perform("login h u p"), -1);
        QCOMPARE(full.recorder.log.filter("< 220").size(), 1);
        Input reset = {whole + "331 a\r\n230 b\r\n250 c\r\n\xfe", ""};
        Client cut(1, 64, std::make_shared<InputSocket>(reset, true));
        QCOMPARE(cut.perform("login h u p,connected"), 1);
        QCOMPARE(cut.perform("noop,connected"), 0);
    }

    void betweenServers() { compare(faultsOf(rowsOf("between.txt"), between)); }

    void commands()
    {
        Session session;
        const CFTPClient &c = session.client;
        const int recordSize = 80;
        QVERIFY(session.login());
        QCOMPARE(c.ChangeWorkingDirectory("a b") + c.ChangeToParentDirectory() +
                     c.PrintWorkingDirectory() + c.System() + c.Noop() + c.MakeDirectory("d") +
                     c.RemoveDirectory("d") + c.Delete("f") + c.SiteParameters("x y") + c.Help() +
                     c.Help("SITE") + c.Status("f") + c.StructureMount("m") +
                     c.FileStructure(CStructure::Record) + c.TransferMode(CTransferMode::Block) +
                     c.Allocate(100) + c.Allocate(100, &recordSize) + c.Move("a", "b") +
                     c.DataPort("192.168.0.5", 5001) + c.Abort() + c.Reinitialize(),
                 0);
        QCOMPARE(session.server.commands().mid(3).join(','),
                 "CWD a b,CDUP,PWD,SYST,NOOP,MKD d,RMD d,DELE f,SITE x y,HELP,HELP SITE,STAT f,"
                 "SMNT m,STRU R,MODE B,ALLO 100,ALLO 100 R 80,RNFR a,RNTO b,"
                 "PORT 192,168,0,5,19,137,ABOR,REIN");
    }

    void observers()
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
            CFTPClient(nsSocket::CreateDefaultBlockingSocketInstance()).AttachObserver(&leaves);
        }
        // Leaving from within a call is allowed, whichever is called first.
        leaves.when("got", [&] { one.client.DetachObserver(&leaves); });
        for (Session *session : {&one, &other})
            QVERIFY(session->login() && session->client.List("", session->lines, true));
        QCOMPARE(leaves.log.count("end 10"), 1);
        QVERIFY(one.recorder.log.contains("end 10"));
        QCOMPARE(one.client.GetObservers(), CFTPClient::TObserverSet({&one.recorder}));
        QCOMPARE(other.client.GetObservers(), CFTPClient::TObserverSet({&other.recorder, &leaves}));
    }

    void listings()
    {
        Session session("REST: 350 ok|forget", false, ~0U, 4,
                        "total 2\r\n-rw-r--r-- 1 a b 5 Jan  1 2000 one\r\n\r\n"
                        "drwxr-xr-x 1 a b 5 Jan  1 2000 two");
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
        COutputStream tooSmall("", 5);
        QVERIFY(!session.client.DownloadFile("f", tooSmall, CType::Image, true));
        QVERIFY(session.inStep());
        COutputStream begun("");
        begun.OnBytesReceived({'t', 'o', 't'}, 3);
        QVERIFY(!session.client.DownloadFile("f", begun, CType::Image, true));
        QCOMPARE(begun.GetText(), std::string("tot")); // not its beginning twice
        AskingStream asking(session.client);
        QVERIFY(session.client.DownloadFile("f", asking, CType::Image, true));
        QCOMPARE(asking.result, -1);
        COutputStream lines("");
        const std::vector<char> lineFeeds(COutputStream::MostLines, '\n');
        lines.OnBytesReceived(lineFeeds, COutputStream::MostLines);
        QVERIFY(lines.IsGood());
        QVERIFY(lines.SetLocalStreamOffset(1));
        lines.OnBytesReceived(lineFeeds, COutputStream::MostLines);
        QVERIFY(!lines.IsGood());
    }

    // Other names would mean the same file.
    void namesOfNoText()
    {
        Client one(1, 1);
        for (const std::string &name : {std::string("\xE9"), std::string("z\0tail", 6)}) {
            CFile file(one.folder.filePath("").toStdString() + "/" + name);
            QVERIFY(!file.Open(CFile::receive) && !file.Open(CFile::send));
            QVERIFY(file.GetErrorText().find("encoding") != std::string::npos);
        }
        QVERIFY(QDir(one.folder.path()).isEmpty());
    }

    void closedSessions()
    {
        const CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance());
        nsSocket::CBlockingSocket data;
        QVERIFY(!client.OpenActiveDataConnection(data, CCommand::LIST, "", 0));
        QVERIFY(!client.OpenPassiveDataConnection(data, CCommand::LIST, "", 0));
    }

    void troubledSockets()
    {
        // A list takes one socket in passive mode, two in active mode: the seventh list fails.
        Session session;
        Client c(10, 4096, std::make_shared<Troubled>(7));
        c.port = session.port;
        QVERIFY(c.perform("logon 0 1,list ") == 0);
        Troubled::limits.clear();
        QVERIFY(c.perform("list  active") == 0 && Troubled::limits.size() == 2);
        QVERIFY(c.perform("policy control,list ") == -1);
        QVERIFY(c.perform("onlypeer,list  active") == -1);
        QVERIFY(c.recorder.errors().filter("GetPeerName").size() == 2);
        QVERIFY(c.perform("list  active") == -1 && c.perform("list ") == -1);
        QVERIFY(c.recorder.errors().filter("CreateInstance").size() == 2 && c.inStep());
    }

    void programmingErrors()
    {
        CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance());
        COutputStream out("");
        std::vector<std::shared_ptr<CFTPFileStatus>> entries;
        const std::function<void()> faults[] = {
            [] { CFTPClient none(nullptr); },
            [&] { client.AttachObserver(nullptr); },
            [&] { client.ChangeWorkingDirectory(""); },
            [] { CFTPClient::SimpleErrorCheck({}); },
            [&] {
                client.ExecuteDatachannelCommand(CCommand::PWD, "", CType::ASCII, true, 0, out);
            },
            [&] { client.SetFileListParser(nullptr), client.List("", entries, true); },
            [] { nsSocket::CBlockingSocket().Listen(); },
            [] { nsSocket::CBlockingSocketException none(nullptr); },
            [] { CType(CType::TTypeEnum(4)).AsString(); },
            [] { CTypeFormat(CTypeFormat::None).AsString(); },
            [] { CCommand(CCommand::TCommandEnum(36)).AsString(); }};
        for (const std::function<void()> &fault : faults) {
            const pid_t child = ::fork();
            if (child == 0) {
                std::signal(SIGABRT, SIG_DFL);
                ::close(STDERR_FILENO);
                fault();
                ::_exit(0);
            }
            int status = 0;
            ::waitpid(child, &status, 0);
            QVERIFY2(WTERMSIG(status) == SIGABRT, QByteArray::number(int(&fault - faults)));
        }
    }
};

QTEST_GUILESS_MAIN(FtpClientTest)
#include "tst_ftpclient.moc"
