// SPDX-License-Identifier: BSD-3-Clause
#include "statementsworker.h"

#include <QFile>
#include <QTimeZone>

using namespace nsFTP;

namespace {

constexpr unsigned int TimeOutSeconds = 15;
constexpr qint64 ReportEveryMSecs = 100;

std::string bytes(const QString &text)
{
    return text.toStdString();
}

} // namespace

StatementsWorker::StatementsWorker()
    : m_client(nsSocket::CreateDefaultBlockingSocketInstance(), TimeOutSeconds)
{
    // A server is not to send us to a third host, nor a third host to us.
    m_client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress::UseControlHost);
    m_client.SetAcceptOnlyControlPeer(true);
    m_client.AttachObserver(this);
}

StatementsWorker::~StatementsWorker()
{
    if (m_client.IsConnected())
        m_client.Logout();
}

void StatementsWorker::cancel()
{
    if (m_downloading)
        m_client.Abort();
}

void StatementsWorker::open(const StatementsServer &server)
{
    m_server = server;
    m_lastWord.clear();
    m_client.SetResumeMode(server.resume);
    QVector<Statement> statements;
    const CLogonInfo logon(bytes(server.host), server.port, bytes(server.user),
                           bytes(server.password));
    if (m_client.Login(logon) && list(&statements))
        Q_EMIT opened(statements);
    else
        fail();
}

bool StatementsWorker::list(QVector<Statement> *statements)
{
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    if (!m_client.List(bytes(m_server.folder), entries, m_server.passive))
        return false;
    for (const auto &entry : entries) {
        if (!entry->tryRetrieve)
            continue;
        Statement statement;
        statement.name = QByteArray::fromStdString(entry->name);
        statement.size = entry->size;
        if (entry->mtimeType != CFTPFileStatus::timeUnknown)
            statement.modified = QDateTime::fromSecsSinceEpoch(entry->mtime, QTimeZone::utc());
        statement.knowsTime = entry->mtimeType != CFTPFileStatus::timeDay;
        statements->append(statement);
    }
    return true;
}

void StatementsWorker::download(const Statement &statement, const QString &localFile)
{
    m_lastWord.clear();
    m_received = 0;
    m_reportedAt = 0;
    m_total = statement.size;
    m_clock.start();
    std::string remote = statement.name.toStdString();
    if (!m_server.folder.isEmpty())
        remote = bytes(m_server.folder) + '/' + remote;
    m_downloading = true;
    const bool good = m_client.DownloadFile(remote, _tstring(localFile),
                                            CRepresentation(CType::Image), m_server.passive);
    m_downloading = false;
    if (!good) {
        fail();
        return;
    }
    Q_EMIT progress(m_received, m_received, m_clock.elapsed());
    Q_EMIT downloaded(localFile);
}

void StatementsWorker::fail()
{
    Q_EMIT failed(m_lastWord.isEmpty() ? tr("No answer") : m_lastWord);
}

void StatementsWorker::OnInternalError(const std::string &message, const std::string &, int)
{
    m_lastWord = QString::fromStdString(message);
}

void StatementsWorker::OnResponse(const CReply &reply)
{
    if (reply.Code().IsNegativeReply())
        m_lastWord = QString::fromStdString(reply.Value()).trimmed();
}

void StatementsWorker::OnBytesReceived(const std::vector<char> &, long count)
{
    m_received += count;
    if (!m_downloading || m_clock.elapsed() - m_reportedAt < ReportEveryMSecs)
        return;
    m_reportedAt = m_clock.elapsed();
    Q_EMIT progress(m_received, m_total, m_reportedAt);
}
