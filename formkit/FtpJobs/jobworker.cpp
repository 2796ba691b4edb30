// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/jobworker_p.h"

#include "formkit/FtpJobs/ftpjobs.h"

#include "formkit/FtpClient/InternetSocket.h"

#include <exception>

using nsFTP::CFTPClient;

namespace {

constexpr unsigned int BufferSize = 256 * 1024;

std::unique_ptr<CFTPClient> makeClient(const FtpServer &settings)
{
    if (settings.makeClient)
        return settings.makeClient();
    auto client = std::make_unique<CFTPClient>(nsSocket::CreateInternetSocketInstance(),
                                               qMax(1U, settings.timeout), BufferSize);
    client->SetMachineListings(true);
    client->SetUtf8(true);
    return client;
}

FtpError internalError(const char *text)
{
    return {
        FtpError::Failed,
        FtpJobs::tr("Something went wrong in the program: %1").arg(QString::fromLocal8Bit(text))};
}

} // namespace

void JobWorker::run()
{
    for (;;) {
        switch (m_queue.next(m_worker)) {
        case JobQueue::Perform:
            perform();
            break;
        case JobQueue::GiveSignOfLife:
            if (!m_session->giveSignOfLife())
                endSession();
            break;
        case JobQueue::LogOut:
            endSession();
            break;
        case JobQueue::End:
            return;
        }
    }
}

void JobWorker::perform()
{
    if (m_server != m_worker.server)
        m_session.reset();
    m_server = m_worker.server;
    QVector<FtpEntry> entries;
    FtpError error;
    try {
        error = attempt(&entries);
    } catch (const std::exception &exception) {
        error = internalError(exception.what());
    } catch (...) {
        error = internalError("?");
    }
    const bool isUsable =
        m_session && m_session->isOpen() && (!error || error.code == FtpError::Refused);
    if (!m_queue.settle(m_worker, error, entries) || !isUsable)
        endSession();
}

// A session that was asleep may have been closed meanwhile: the job then gets another one.
FtpError JobWorker::attempt(QVector<FtpEntry> *entries)
{
    Job &job = *m_worker.job;
    const qint64 moved = job.moved;
    if (m_session) {
        const FtpError error = m_session->perform(job, entries);
        const bool wasClosed = error.mayPass() && job.moved == moved &&
                               (error.code == FtpError::TimedOut || !m_session->isOpen() ||
                                error.code == FtpError::ConnectionLost);
        if (!wasClosed)
            return error;
        endSession();
    }
    const FtpError error = openSession();
    return error ? error : m_session->perform(job, entries);
}

FtpError JobWorker::openSession()
{
    const FtpServer &settings = m_server->settings;
    const std::shared_ptr<CFTPClient> client = makeClient(settings);
    if (!client)
        return internalError("no client");
    if (!m_queue.adopt(m_worker, client))
        return {FtpError::Cancelled, {}};
    m_session = std::make_unique<FtpSession>(client, settings);
    const FtpError error = m_session->logOn();
    if (!error)
        m_queue.loggedOn(m_worker);
    return error;
}

void JobWorker::endSession()
{
    m_session.reset();
    m_queue.sessionEnded(m_worker);
}
