// SPDX-License-Identifier: BSD-3-Clause
#include "realserver.h"

#include <formkit/FtpClient/InternetSocket.h>

#include <QCoreApplication>

#include <csignal>

namespace {

bool answers(const QString &address, quint16 port)
{
    try {
        nsSocket::CInternetSocket().ConnectToHost(address.toLatin1(), port);
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
        if (!answers("127.0.0.1", port) && !answers("::1", port))
            return port;
    }
    return 0;
}

} // namespace

RealServer::RealServer(const QString &kind, const Access &access)
    : m_kind(kind), m_access(access), m_port(freePort())
{
    if (kind == "ftp-proxy")
        m_behind = std::make_unique<RealServer>("pyftpdlib");
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    // In a session of its own, so that all its processes can be ended at once.
    m_process.start("setsid",
                    {"/bin/sh", DATA_FOLDER "/servers/" + kind, QString::number(m_port),
                     m_folder.path(), SERVERS_FOLDER, MULTIARCH, access.address, access.tls,
                     access.certificate},
                    QIODevice::ReadOnly);
    for (int i = 0; m_failure.isEmpty() && !answers(access.address, m_port); ++i) {
        if (i == 1000 || m_process.waitForFinished(20))
            m_failure = kind + ": " + m_process.errorString() + "\n" + m_process.readAll();
    }
}

nsFTP::CLogonInfo RealServer::logon() const
{
    if (!m_behind)
        return {m_access.address.toStdString(), m_port, m_kind == "vsftpd" ? "anonymous" : "joe",
                "secret"};
    nsFTP::CLogonInfo logon = m_behind->logon();
    logon.SetFirewall("127.0.0.1", "", "", m_port, nsFTP::CFirewallType::UserWithNoLogon);
    return logon;
}

void RealServer::kill()
{
    if (m_process.state() != QProcess::NotRunning)
        ::kill(pid_t(-m_process.processId()), SIGKILL);
    m_process.waitForFinished();
}
