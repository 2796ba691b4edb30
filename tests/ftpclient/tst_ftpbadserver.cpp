#include "recorder.h"
#include "scriptedserver.h"
#include "support/stricttest.h"

#include <QTemporaryDir>

using namespace nsFTP;

// Servers that break the protocol in every way. Whatever they do, the operation ends with the
// result stated, nothing is written but what is stated, and the command after it either reads
// its own reply or finds the session closed.
class FtpBadServerTest : public StrictTest
{
    Q_OBJECT

private slots:
    void misbehaves_data();
    void misbehaves();
};

// Scripts that say "slow" keep the client waiting, so that it has a time-out of one second.
void FtpBadServerTest::misbehaves_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<bool>("good");
    QTest::addColumn<QByteArray>("local");
    QTest::addColumn<bool>("byteByByte");
    struct Row
    {
        const char *name, *operation, *script;
        bool good;
        const char *local;
    };
    const Row rows[] = {
        // Greetings and logons
        {"no greeting, slow", "login", "greeting: nothing", false, ""},
        {"greeting 421", "login", "greeting: 421 full", false, ""},
        {"greeting 120, then 220", "login", "greeting: 120 soon|220 now", false, ""},
        {"closes at once", "login", "greeting: close", false, ""},
        {"another protocol", "login", "greeting: SSH-2.0-x", false, ""},
        {"telnet options", "login", "greeting: raw \u00ff\u00fd\u0018|220 hi", false, ""},
        {"empty greeting", "login", "greeting: raw \r\n|220 hi", false, ""},
        {"greeting without end", "login", "greeting: raw 220 hi|close", false, ""},
        {"lines without end", "login", "greeting: 220-a|220-b|close", false, ""},
        {"bare line feeds", "login", "greeting: raw 220-a\n220 b\n", true, ""},
        {"NULs", "login", "greeting: 220 ␀␀|raw ␀", false, ""},
        {"two characters", "login", "greeting: 22", false, ""},
        {"letters for a code", "login", "greeting: 2xx hi", false, ""},
        {"code of class 6", "login", "greeting: 620 hi", false, ""},
        {"number too long", "login", "greeting: 2200 hi", true, ""},
        {"long line", "login", "greeting: 220 %1", true, ""},
        {"line without end", "login", "greeting: spam 220 x", false, ""},
        {"reply without end", "login", "greeting: 220-a|spam b\r\n", false, ""},
        {"line feeds without end", "login", "greeting: 220-a|spam \n", false, ""},
        {"dripping lines, slow", "login", "greeting: 220-a|drip b\r\n", false, ""},
        {"dripping line, slow", "login", "greeting: drip 2", false, ""},
        {"gone after USER", "login", "USER: close", false, ""},
        {"gone within a reply", "login", "USER: raw 33|close", false, ""},
        {"gone after PASS", "login", "PASS: close", false, ""},
        {"USER 150", "login", "USER: 150 wait|331 go on", false, ""},
        {"reply to PASS before PASS, at once", "login", "USER: 331 a\r\n230 b", true, ""},
        {"PASS late, slow", "login", "PASS: wait 1300|230 late", false, ""},
        {"ACCT for ever", "login", "PASS: 332 a; ACCT: 332 a", false, ""},
        {"CWD refused", "login", "CWD: 550 no", false, ""},
        {"CWD not answered, slow", "login", "CWD: nothing", false, ""},
        // Simple commands
        {"no reply, slow", "noop", "NOOP: nothing", false, ""},
        {"late reply, slow", "noop", "NOOP: wait 1300|200 late", false, ""},
        {"late lines, slow", "noop", "NOOP: 200-a|wait 1300|200 late", false, ""},
        {"late half, slow", "noop", "NOOP: raw 20|wait 1300|raw 0 late\r\n", false, ""},
        {"two replies", "noop", "NOOP: 200 one\r\n200 two", true, ""},
        {"a reply and a half", "noop", "NOOP: raw 200 one\r\n20|wait 100|raw 0 two\r\n", true, ""},
        {"a hundred replies", "noop", "NOOP: 200 one|spam 200 more\r\n", true, ""},
        {"preliminary first", "noop", "NOOP: 150 soon|200 now", false, ""},
        {"preliminary only, slow", "noop", "NOOP: 150 soon", false, ""},
        {"preliminary for ever", "noop", "NOOP: spam 150 soon\r\n", false, ""},
        {"blank lines first", "noop", "NOOP: raw \r\n\r\n|200 ok", false, ""},
        {"prose first", "noop", "NOOP: let me see|200 ok", false, ""},
        {"unknown class", "noop", "NOOP: 999 what", false, ""},
        {"gone", "noop", "NOOP: close", false, ""},
        {"gone behind the reply", "noop", "NOOP: 200 ok|close", true, ""},
        {"says 421 and goes", "noop", "NOOP: 200 ok\r\n421 bye|close", true, ""},
        // Passive addresses
        {"PASV without numbers", "get", "PASV: 227 ok", false, "none"},
        {"PASV with 256", "get", "PASV: 227 (256,0,0,1,{port})", false, "none"},
        {"PASV with five numbers", "get", "PASV: 227 (127,0,0,{port})", false, "none"},
        {"PASV with seven numbers", "get", "PASV: 227 ({pasv},1)", false, "none"},
        {"PASV with huge numbers", "get", "PASV: 227 (99999999999,0,0,1,{port})", false, "none"},
        {"PASV with port 0", "get", "PASV: 227 (127,0,0,1,0,0)", false, "none"},
        {"PASV to nowhere", "get", "PASV: 227 (0,0,0,0,{port})", false, "none"},
        {"PASV to everybody", "get", "PASV: 227 (255,255,255,255,{port})", false, "none"},
        {"PASV to a group", "get", "PASV: 227 (224,0,0,1,{port})", false, "none"},
        {"PASV to a closed port", "get", "PASV: 227 (127,0,0,1,0,1)", false, "none"},
        {"PASV 150", "get", "PASV: 150 wait|227 ({pasv})", false, "none"},
        {"PASV 500", "get", "PASV: 500 no", false, "none"},
        {"PASV gone", "get", "PASV: close", false, "none"},
        {"PASV spread over lines", "get", "PASV: 227-see\r\n {spaced}\r\n227 end", true,
         "0123456789"},
        // Downloads
        {"TYPE refused", "get", "TYPE: 504 no", false, "none"},
        {"TYPE gone", "get", "TYPE: close", false, "none"},
        {"SIZE too big", "get", "SIZE: 213 99", true, "0123456789"},
        {"SIZE too small", "resume", "SIZE: 213 2", false, "abc"},
        {"SIZE beyond all numbers", "resume", "SIZE: 213 99999999999999999999", true, "abc3456789"},
        {"SIZE gone", "get", "SIZE: close", false, "none"},
        {"REST gone", "resume", "REST: close", false, "abc"},
        {"REST not answered, slow", "resume", "REST: nothing", false, "abc"},
        {"REST ignored", "resume", "RETR: 150 go|whole|226 done", false, "abc"},
        {"RETR refused", "get", "RETR: 550 no", false, "none"},
        {"RETR refused late, slow", "get", "RETR: wait 1300|550 no", false, "none"},
        {"RETR done at once", "get", "RETR: 226 done", false, "none"},
        {"RETR 350", "get", "RETR: 350 more", false, "none"},
        {"RETR gone", "get", "RETR: close", false, "none"},
        {"gone behind 150", "get", "RETR: 150 go|close", false, "none"},
        {"data not sent, slow", "get", "RETR: 150 go|part 0|wait 1300|426 slow", false, "none"},
        {"data stop, slow", "get", "RETR: 150 go|part 4|wait 1300|426 slow", false, "0123"},
        {"data reset", "get", "RETR: 150 go|part 4|wait 100|cut|426 broken", false, "0123"},
        {"data ended early", "get", "RETR: 150 go|part 4|end|426 broken", false, "0123"},
        {"data whole, yet 426", "get", "RETR: 150 go|data|426 broken", false, "0123456789"},
        {"data whole, then gone", "get", "RETR: 150 go|data|close", false, "0123456789"},
        {"no final reply, slow", "get", "RETR: 150 go|data", false, "0123456789"},
        {"late final reply, slow", "get", "RETR: 150 go|data|wait 1300|226 done", false,
         "0123456789"},
        {"150 twice", "get", "RETR: 150 go|data|150 go|226 done", false, "0123456789"},
        {"226 twice", "get", "RETR: 150 go|data|226 done\r\n226 done", true, "0123456789"},
        {"226 before the data", "get", "RETR: 150 go\r\n226 done|data", true, "0123456789"},
        {"lines before the data", "get", "RETR: 150-a\r\n150 b|data|226-c\r\n226 d", true,
         "0123456789"},
        {"data without end", "list", "LIST: 150 go|flood|426 enough", false, ""},
        // Active mode
        {"PORT refused", "active", "PORT: 500 no", false, "none"},
        {"no connection, slow", "active", "RETR: 150 go|wait 1300|425 cannot", false, "none"},
        {"425 for a connection", "active", "RETR: 425 cannot", false, "none"},
        {"gone instead of a connection, slow", "active", "RETR: 150 go|close", false, "none"},
        // Uploads
        {"STOR refused", "put", "STOR: 553 no", false, "abc"},
        {"STOR gone", "put", "STOR: close", false, "abc"},
        {"STOR full", "put", "STOR: 150 go|part 1|end|452 full", false, "abc"},
        {"STOR full at the end", "put", "STOR: 150 go|data|452 full", false, "abc"},
        {"nobody reads, slow", "putmuch", "STOR: 150 go|part 1|wait 1300|end|426 slow", false, ""},
        {"upload reset", "putmuch", "STOR: 150 go|part 1|cut|426 no", false, ""},
        {"APPE refused", "append", "APPE: 550 no", false, "0123456789ab"},
        // Aborts
        {"426 and 226", "abort", "RETR: 150 go|data|426 aborted", false, "0123"},
        {"426 and 225", "abort", "RETR: 150 go|data|426 aborted; ABOR: 225 aborted", false, "0123"},
        {"226 and 226", "abort", "", false, "0123"},
        {"226 and 500", "abort", "ABOR: 500 what", false, "0123"},
        {"226 only", "abort", "RETR: 150 go|data; ABOR: 226 aborted", false, "0123"},
        {"225 only", "abort", "RETR: 150 go|data; ABOR: 225 aborted", false, "0123"},
        {"426 only, slow", "abort", "RETR: 150 go|data|426 aborted; ABOR: nothing", false, "0123"},
        {"226, then a late 225", "abort", "ABOR: wait 1300|225 late", false, "0123"},
        {"426, then a late 226", "abort", "RETR: 150 go|data|426 a; ABOR: wait 300|226 late", false,
         "0123"},
        {"silence, slow", "abort", "RETR: 150 go|data; ABOR: nothing", false, "0123"},
        {"gone at ABOR", "abort", "RETR: 150 go|data; ABOR: close", false, "0123"},
    };
    for (const Row &row : rows) {
        // What comes unasked is known as such only when it is there before the next command.
        const bool both = !QString(row.name).endsWith("at once");
        for (const bool byteByByte :
             both ? std::vector<bool>{false, true} : std::vector<bool>{false})
            QTest::addRow("%s%s", row.name, byteByByte ? ", byte by byte" : "")
                << QString(row.script).replace("%1", QString(20000, 'x')) << row.operation
                << row.good << QByteArray(row.local) << byteByByte;
    }
}

void FtpBadServerTest::misbehaves()
{
    QFETCH(QString, script);
    QFETCH(QString, operation);
    QFETCH(bool, good);
    QFETCH(QByteArray, local);
    QFETCH(bool, byteByByte);
    const bool slow = QString(QTest::currentDataTag()).contains("slow");
    const QTemporaryDir folder;
    QFile file(folder.filePath("file"));
    const std::string name = file.fileName().toStdString();
    const std::map<QString, QByteArray> contents = {{"resume", "abc"},
                                                    {"put", "abc"},
                                                    {"append", "0123456789ab"},
                                                    {"putmuch", QByteArray(20000000, 'x')}};
    const auto content = contents.find(operation);
    if (content != contents.end()) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content->second);
        file.close();
    }

    ScriptedServer server(script, byteByByte);
    Recorder recorder;
    CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance(), slow ? 1 : 10, 4096);
    client.AttachObserver(&recorder);
    bool result = client.Login({"127.0.0.1", server.port(), "joe", "secret"});
    if (operation == "noop")
        result = client.Noop() == 0;
    std::vector<std::string> lines = {"kept"};
    if (operation == "list")
        result = client.List("", lines, true);
    if (operation == "abort") {
        client.SetResumeMode(false);
        server.content = QByteArray("0123").repeated(1000000);
        recorder.afterBlock = [&] { client.Abort(); };
    }
    if (operation == "get" || operation == "resume" || operation == "active" ||
        operation == "abort")
        result = client.DownloadFile("f", name, CType::Image, operation != "active");
    if (operation.startsWith("put"))
        client.SetResumeMode(false);
    if (operation.startsWith("put") || operation == "append")
        result = client.UploadFile(name, "f", false, CType::Image, true);

    QCOMPARE(result, good);
    QCOMPARE(lines.size(), size_t(1));
    if (!local.isEmpty()) {
        const QByteArray there = file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
        // An abort keeps the block in hand, whatever its size.
        QCOMPARE(operation == "abort" ? there.left(4) : there, local);
        QVERIFY(operation != "abort" || there.size() <= 4096);
    }
    QVERIFY(!client.IsTransferringData());
    recorder.afterBlock = [] {};
    if (!slow)
        server.settle();
    for (int i = 0; i < 3; ++i) {
        CReply reply;
        const bool answered = client.SendCommand(CCommand::PWD, {}, reply);
        QVERIFY2(answered ? reply.Value() == "257 in step" : !client.IsConnected(),
                 reply.Value().c_str());
    }
}

QTEST_GUILESS_MAIN(FtpBadServerTest)
#include "tst_ftpbadserver.moc"
