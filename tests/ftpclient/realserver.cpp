#include "realserver.h"

#include <csignal>

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

} // namespace

RealServer::RealServer(const QString &kind) : m_kind(kind)
{
    {
        nsSocket::CBlockingSocket socket;
        m_port = listenOnLoopback(socket); // and free again
    }
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

nsFTP::CLogonInfo RealServer::logon() const
{
    if (!m_behind)
        return {"127.0.0.1", m_port, m_kind == "vsftpd" ? "anonymous" : "joe", "secret"};
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
