// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/job_p.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

/// What FtpJobs and its workers share: the state of each job, what each worker does, and the
/// signals to come. One lock guards all of it; nobody holds it while waiting for a server or a
/// disk.
class JobQueue
{
public:
    using Event = std::function<void(FtpJobs &)>;
    using JobPointer = std::shared_ptr<Job>;

    /// A thread and its session. Guarded by the queue's lock.
    struct Worker
    {
        std::thread thread;
        /// The server of the session that is open or being opened; null without one.
        std::shared_ptr<JobServer> server;
        std::shared_ptr<nsFTP::CFTPClient> client;
        bool isLoggedOn = false;
        JobPointer job;
        /// Without a job: since when it is idle, and when the next NOOP is due.
        JobClock::time_point idleSince;
        JobClock::time_point signOfLife;
    };
    /// What a worker does next.
    enum Order { Perform, GiveSignOfLife, LogOut, End };

    /// `run` is what each thread does. `wake` is called on any thread, under the lock, when there
    /// is another event to take.
    JobQueue(std::function<void(JobQueue &, Worker &)> run, std::function<void()> wake);
    JobQueue(const JobQueue &) = delete;
    JobQueue &operator=(const JobQueue &) = delete;
    /// Interrupts what the threads do, and waits until they have ended.
    ~JobQueue();

    // For FtpJobs.
    void setServer(const FtpServer &settings);
    int add(const JobPointer &job);
    void pause(int id);
    void resume(int id);
    void cancel(int id);
    std::vector<int> ids() const;
    std::vector<JobPointer> running() const;
    FtpJobs::State state(int id) const;
    int count() const;
    /// The oldest event that was not taken yet; empty if there is none.
    Event takeEvent();

    // For a worker, about itself.
    Order next(Worker &worker);
    /// Takes note of the worker's new client. False if the job is no longer wanted: it was paused
    /// or cancelled, or the queue ends.
    bool adopt(Worker &worker, const std::shared_ptr<nsFTP::CFTPClient> &client);
    void loggedOn(Worker &worker);
    /// Ends an attempt. False if the client was told to give up and cannot be used again.
    bool settle(Worker &worker, const FtpError &error, const QVector<FtpEntry> &entries);
    void sessionEnded(Worker &worker);

private:
    using Lock = std::unique_lock<std::mutex>;

    JobPointer find(int id) const;
    void tell(const Event &event);
    void interrupt(const JobPointer &job, Job::Wish wish);
    void startWorkers();
    std::shared_ptr<JobServer> serverFor(const Worker &worker, JobClock::time_point now) const;
    JobClock::time_point nextTime(const Worker &worker, JobClock::time_point now) const;
    void begin(Worker &worker, const std::shared_ptr<JobServer> &server);
    void leave(Worker &worker);
    void queueUp(const JobPointer &job);
    void leaveLists(const Job &job);
    void promote(JobClock::time_point now);
    void logonFailed(Lock &lock, Worker &worker, const JobPointer &job, const FtpError &error);
    void attemptFailed(Lock &lock, const JobPointer &job, const FtpError &error);
    void finish(Lock &lock, const std::vector<JobPointer> &over, const FtpError &error,
                const QVector<FtpEntry> &entries = {});
    void tellEnd(const JobPointer &job, const FtpError &error, const QVector<FtpEntry> &entries);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    const std::function<void(JobQueue &, Worker &)> m_run;
    const std::function<void()> m_wake;
    bool m_isEnding = false;
    int m_lastId = 0;
    std::map<int, JobPointer> m_jobs;
    std::set<QString> m_targets;                       // of downloads
    std::vector<std::shared_ptr<JobServer>> m_servers; // the current one last
    std::vector<std::unique_ptr<Worker>> m_workers;
    std::deque<Event> m_events;
};
