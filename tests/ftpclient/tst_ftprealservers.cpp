// SPDX-License-Identifier: BSD-3-Clause
#include "realserver.h"
#include "session.h"
#include "support/datafile.h"
#include "support/stricttest.h"

#include <formkit/FtpTls/TlsSocket.h>

#include <QRandomGenerator>

using namespace nsFTP;

namespace {

QByteArray bytes(int size)
{
    QByteArray result(size, 0);
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(result.data()), size / 4);
    return result;
}

// How the servers are reached, and by which sockets.
struct Way : Access
{
    Client::Socket socket() const
    {
        return name == "plain" ? nsSocket::CreateDefaultBlockingSocketInstance()
                               : nsSocket::CreateTlsSocketInstance(security);
    }

    QString name = "plain";
    CFTPSecurity security;
};

// The client of a real server that is killed in the end.
struct RealSession : Client
{
    explicit RealSession(const QString &kind, const QByteArray &content, const Way &way = {},
                         int seconds = 60)
        : Client(unsigned(seconds), 65536, way.socket()), server(kind, way)
    {
        server.put("f", content);
    }
    bool login() { return client.Login(server.logon()); }
    RealServer server;
};

// On failure the end of the client's log is told.
#define WORKS(session, expression) QVERIFY2((expression), qPrintable((session).recorder.last()))

} // namespace

// FORMKIT_FTP_SERVER names the server; FORMKIT_FTP_WAY how it is reached: "plain", "tls" (with the
// session resumed on data connections where a server can demand it), "implicit" (TLS before the
// greeting, over IPv6), "ipv6" (in clear). FORMKIT_FTP_MEGABYTES sets the size of the files that
// are moved (4 unless set).
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
        chooseWay();
        const RealServer server(m_kind, m_way);
        if (server.failure().contains("NOT TRIED"))
            QSKIP(qPrintable(server.failure()));
        QVERIFY2(server.failure().isEmpty(), qPrintable(server.failure()));
    }

    void commands()
    {
        RealSession session(m_kind, "12345", m_way);
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
        session.server.put("f", "12345");
        session.client.SetMachineListings(true);
        session.client.SetExtendedAddresses(true);
        for (const bool passive : {true, false}) {
            CFTPFileStatus status;
            QVERIFY(session.client.List("", entries, passive) && entries.size() == 1);
            CFTPFeatures features;
            const bool knows = session.client.Features(features) == 0 && features.Has("MLST");
            QCOMPARE(entries[0]->mtimeType == CFTPFileStatus::timeExact, knows);
            QCOMPARE(session.client.MachineStatus("f", status) == 0, knows);
            QVERIFY(!knows || (status.size == 5 && status.mtime == entries[0]->mtime));
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
        const std::vector<std::pair<unsigned int, int>> steps = {{65535, 0},
                                                                 {65536, 1},
                                                                 {65536, int(content.size()) / 2},
                                                                 {1048576, int(content.size())}};
        const RealServer server(m_kind, m_way);
        server.put("f", content);
        for (const auto &[bufferSize, there] : steps) {
            Client client(60, bufferSize, m_way.socket());
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
        RealSession session(m_kind, content, m_way, answersAbort ? 60 : 2);
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

    // To pyftpdlib and back. A proxy stands in the way of such transfers, and so do TLS and IPv6.
    void betweenServers()
    {
        if (m_way.name != "plain") {
            RealSession one(m_kind, "", m_way);
            RealSession other(m_kind, "", m_way);
            QVERIFY(one.login() && other.login());
            QVERIFY(
                !CFTPClient::TransferFile(one.client, "f", other.client, "g", CType::Image, true));
            QVERIFY(one.recorder.last().contains("Server to server is for IPv4 without protected"));
            return;
        }
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
    void chooseWay()
    {
        m_way.name = qEnvironmentVariable("FORMKIT_FTP_WAY", "plain");
        const bool inClear = m_way.name == "plain" || m_way.name == "ipv6";
        m_way.address = m_way.name == "plain" || m_way.name == "tls" ? "127.0.0.1" : "::1";
        m_way.security.mode = inClear ? CFTPSecurity::None : CFTPSecurity::Explicit;
        if (inClear)
            return;
        QCOMPARE(QProcess::execute("sh", {DATA_FOLDER "/certificates", m_folder.path()}), 0);
        m_way.certificate = m_folder.filePath("good.pem");
        m_way.security.caFile = m_folder.filePath("ca.pem").toStdString();
        m_way.tls = m_way.name == "tls" ? "explicit" : "implicit";
        if (m_way.name == "implicit")
            m_way.security.mode = CFTPSecurity::Implicit;
    }

    const QTemporaryDir m_folder;
    Way m_way;
    const QString m_kind = qEnvironmentVariable("FORMKIT_FTP_SERVER", "vsftpd");
};

QTEST_GUILESS_MAIN(FtpRealServersTest)
#include "tst_ftprealservers.moc"
