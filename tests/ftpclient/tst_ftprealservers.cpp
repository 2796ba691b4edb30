// SPDX-License-Identifier: BSD-3-Clause
#include "session.h"
#include "support/datafile.h"
#include "support/stricttest.h"

#include <QProcess>
#include <QRandomGenerator>

#include <csignal>

using namespace nsFTP;

namespace {

bool answers(quint16 port)
{
    try {
        nsSocket::CBlockingSocket socket;
        connectToLoopback(socket, port);
        return true;
    } catch (const nsSocket::CBlockingSocketException &) {
        return false;
    }
}

// A free port below those that the system gives by itself (from 32768 on): no test that runs beside
// this one gets it before the server does. Processes begin at ports of their own.
quint16 freePort()
{
    static qint64 next = QCoreApplication::applicationPid() * 16;
    for (int tries = 0; tries < 1000; ++tries) {
        const auto port = quint16(10000 + next++ % 20000);
        if (!answers(port))
            return port;
    }
    return 0;
}

// An FTP server of the unpacked packages, as an ordinary process on loopback with a folder of its
// own, which is killed with its children in the end.
class RealServer
{
public:
    // vsftpd, pure-ftpd, proftpd, pyftpdlib, or ftp-proxy in front of a pyftpdlib of its own.
    explicit RealServer(const QString &kind) : m_kind(kind), m_port(freePort())
    {
        if (kind == "ftp-proxy")
            m_behind = std::make_unique<RealServer>("pyftpdlib");
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        // In a session of its own, so that all its processes can be ended at once.
        m_process.start("setsid",
                        {"/bin/sh", DATA_FOLDER "/servers/" + kind, QString::number(m_port),
                         m_folder.path(), SERVERS_FOLDER, MULTIARCH},
                        QIODevice::ReadOnly);
        for (int i = 0; m_failure.isEmpty() && !answers(m_port); ++i) {
            if (i == 1000 || m_process.waitForFinished(20))
                m_failure = kind + ": " + m_process.errorString() + "\n" + m_process.readAll();
        }
    }
    ~RealServer() { kill(); }

    // Empty when the server answers, else what went wrong; "NOT TRIED" is in it when this user
    // cannot start such a server.
    QString failure() const { return m_failure; }
    CLogonInfo logon() const
    {
        if (!m_behind)
            return {"127.0.0.1", m_port, m_kind == "vsftpd" ? "anonymous" : "joe", "secret"};
        CLogonInfo logon = m_behind->logon();
        logon.SetFirewall("127.0.0.1", "", "", m_port, CFirewallType::UserWithNoLogon);
        return logon;
    }
    // Where a served file lies.
    QString path(const QString &file) const
    {
        return m_behind ? m_behind->path(file) : m_folder.filePath("files/" + file);
    }
    void put(const QString &file, const QByteArray &bytes) const { writeFile(path(file), bytes); }
    QByteArray get(const QString &file) const { return readFile(path(file)); }
    // As a machine that loses its power: the processes that serve connections too.
    void kill()
    {
        if (m_process.state() != QProcess::NotRunning)
            ::kill(pid_t(-m_process.processId()), SIGKILL);
        m_process.waitForFinished();
    }

private:
    QString m_kind;
    QTemporaryDir m_folder;
    quint16 m_port;
    std::unique_ptr<RealServer> m_behind;
    QProcess m_process;
    QString m_failure;
};

QByteArray bytes(int size)
{
    QByteArray result(size, 0);
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(result.data()), size / 4);
    return result;
}

// The client of a real server that is killed in the end.
struct RealSession : Client
{
    explicit RealSession(const QString &kind, const QByteArray &content, int seconds = 60)
        : Client(unsigned(seconds), 65536), server(kind)
    {
        server.put("f", content);
    }
    bool login() { return client.Login(server.logon()); }
    RealServer server;
};

// On failure the end of the client's log is told.
#define WORKS(session, expression) QVERIFY2((expression), qPrintable((session).recorder.last()))

} // namespace

// FORMKIT_FTP_SERVER names the server; FORMKIT_FTP_MEGABYTES sets the size of the files that are
// moved (4 unless set).
class FtpRealServersTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QProcess unpack;
        unpack.start(UNPACK_SCRIPT, {SERVERS_FOLDER});
        QVERIFY2(unpack.waitForFinished(200000), "fetching the servers takes too long");
        if (unpack.exitCode() == 77)
            QSKIP("NOT TRIED: " + unpack.readAll());
        QVERIFY2(unpack.exitCode() == 0, unpack.readAllStandardError());
        const RealServer server(m_kind);
        if (server.failure().contains("NOT TRIED"))
            QSKIP(qPrintable(server.failure()));
        QVERIFY2(server.failure().isEmpty(), qPrintable(server.failure()));
    }

    void commands()
    {
        RealSession session(m_kind, "12345");
        WORKS(session, session.login());
        QVERIFY(qAbs(QDateTime::currentSecsSinceEpoch() - session.perform("mdtm")) < 600);
        std::vector<std::shared_ptr<CFTPFileStatus>> entries;
        QVERIFY(session.client.List("", entries, false));
        QCOMPARE(entries.size(), size_t(1));
        QCOMPARE(entries[0]->name + std::to_string(entries[0]->size), std::string("f5"));
        for (const DataRow &row : rowsOf("realcommands.txt")) {
            const long long result = session.perform(row[0]);
            WORKS(session, row[1] == "--" ? result >= 0 : result == row[1].toLongLong());
        }
        QVERIFY(std::count(session.lines.begin(), session.lines.end(), "f") == 1);
        QCOMPARE(session.client.Logout(), 0);
        QCOMPARE(session.recorder.errors(), QStringList());
    }

    // Down and up in three buffer sizes, whole and resumed from the beginning, the middle and the
    // end.
    void transfers()
    {
        const int megabytes = qMax(1, qEnvironmentVariable("FORMKIT_FTP_MEGABYTES", "4").toInt());
        const QByteArray content = bytes(megabytes * 1024 * 1024);
        const std::vector<std::pair<unsigned int, int>> steps = {
            {65535, 0}, {65536, 1}, {65536, content.size() / 2}, {1048576, content.size()}};
        const RealServer server(m_kind);
        server.put("f", content);
        for (const auto &[bufferSize, there] : steps) {
            Client client(60, bufferSize);
            WORKS(client, client.client.Login(server.logon()));
            for (const QString mode : {"passive", "active"}) {
                QFile::remove(client.local.c_str());
                WORKS(client, client.perform("get f " + mode) == 0 && client.read() == content);
                WORKS(client, client.perform("put up " + mode) == 0 && server.get("up") == content);
                client.write(content.left(there));
                WORKS(client, client.perform("get f " + mode) == 0 && client.read() == content);
                server.put("up", content.left(there));
                WORKS(client, client.perform("put up " + mode) == 0 && server.get("up") == content);
                QCOMPARE(client.client.Delete("up"), 0);
            }
            QCOMPARE(client.recorder.errors(), QStringList());
        }
    }

    // By the user, and by the death of the server.
    void interruptions()
    {
        // The proxy answers no plain ABOR: the session then says that it is closed.
        const bool answersAbort = m_kind != "ftp-proxy";
        const QByteArray content = bytes(20000000);
        RealSession session(m_kind, content, answersAbort ? 60 : 2);
        WORKS(session, session.login());
        for (const QString mode : {"passive", "active"}) {
            int blocks = 0;
            session.recorder.hook = [&](const QString &entry) {
                if (entry.contains(QRegularExpression("^got|^sent")) && ++blocks % 20 == 0)
                    session.client.Abort();
            };
            session.write(content);
            WORKS(session, session.perform("put up-" + mode + " " + mode) == -1);
            WORKS(session, session.inStep() || (!answersAbort && session.login()));
            // What the aborted transfer left is completed.
            session.recorder.hook = nullptr;
            WORKS(session, session.perform("put up-" + mode + " " + mode) == 0 &&
                               session.server.get("up-" + mode) == content);
        }
        session.write("");
        session.recorder.when("got", [&] { session.server.kill(); });
        QCOMPARE(session.perform("get f"), -1);
        QVERIFY(session.read().size() < 20000000);
        QVERIFY(session.client.Noop() == -1 && !session.client.IsConnected());
    }

    // To pyftpdlib and back. A proxy stands in the way of such transfers.
    void betweenServers()
    {
        const QByteArray content = bytes(3000000);
        RealSession here(m_kind == "ftp-proxy" ? "pyftpdlib" : m_kind, content);
        RealSession there("pyftpdlib", content);
        WORKS(here, here.login());
        WORKS(there, there.login());
        for (const bool passive : {true, false}) {
            for (const auto &[from, to] : {std::pair(&here, &there), std::pair(&there, &here)}) {
                const std::string name = passive ? "p" : "a";
                WORKS(*from, CFTPClient::TransferFile(from->client, "f", to->client, name,
                                                      CType::Image, passive));
                QVERIFY(to->server.get(name.c_str()) == content);
            }
        }
        QVERIFY(here.inStep() && there.inStep());
    }

private:
    const QString m_kind = qEnvironmentVariable("FORMKIT_FTP_SERVER", "vsftpd");
};

QTEST_GUILESS_MAIN(FtpRealServersTest)
#include "tst_ftprealservers.moc"
