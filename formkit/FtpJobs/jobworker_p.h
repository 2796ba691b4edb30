// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/ftpsession_p.h"
#include "formkit/FtpJobs/jobqueue_p.h"

/// What a worker's thread does: it takes one job after the other from the queue, and keeps its
/// session between them.
class JobWorker
{
public:
    JobWorker(JobQueue &queue, JobQueue::Worker &worker) : m_queue(queue), m_worker(worker) {}

    /// Returns when the queue ends.
    void run();

private:
    void perform();
    FtpError attempt(QVector<FtpEntry> *entries);
    FtpError openSession();
    void endSession();

    JobQueue &m_queue;
    JobQueue::Worker &m_worker;
    std::shared_ptr<JobServer> m_server; // of the session
    std::unique_ptr<FtpSession> m_session;
};
