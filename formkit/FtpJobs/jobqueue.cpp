// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/jobqueue_p.h"

#include "formkit/FtpJobs/ftpjobs.h"
#include "formkit/FtpJobs/partfile_p.h"

#include <QRandomGenerator>

#include <algorithm>

namespace {

constexpr int LongestDelay = 60000;

// Milliseconds before the n-th further attempt. Somewhat random: those who lost a server together
// need not come back together.
int delayBefore(int attempt, const FtpServer &settings)
{
    const qint64 delay = qint64(qMax(0, settings.retryDelay)) << qBound(0, attempt - 1, 16);
    const int most = int(qMin<qint64>(delay, LongestDelay));
    return most - QRandomGenerator::global()->bounded(most / 4 + 1);
}

JobClock::time_point after(JobClock::time_point time, int milliseconds)
{
    return time + std::chrono::milliseconds(milliseconds);
}

} // namespace

JobQueue::JobQueue(std::function<void(JobQueue &, Worker &)> run, std::function<void()> wake)
    : m_run(std::move(run)), m_wake(std::move(wake))
{
    m_servers.push_back(std::make_shared<JobServer>(FtpServer()));
}

JobQueue::~JobQueue()
{
    Lock lock(m_mutex);
    m_isEnding = true;
    for (const auto &worker : m_workers) {
        if (worker->client)
            worker->client->GiveUp();
    }
    m_changed.notify_all();
    lock.unlock();
    for (const auto &worker : m_workers)
        worker->thread.join();
}

void JobQueue::setServer(const FtpServer &settings)
{
    const Lock lock(m_mutex);
    m_servers.back()->isCurrent = false;
    // Those of the past are kept as long as they have jobs or sessions.
    m_servers.erase(std::remove_if(m_servers.begin(), m_servers.end(),
                                   [](const auto &server) { return server.use_count() == 1; }),
                    m_servers.end());
    m_servers.push_back(std::make_shared<JobServer>(settings));
    m_changed.notify_all();
}

int JobQueue::add(const JobPointer &job)
{
    Lock lock(m_mutex);
    job->id = ++m_lastId;
    job->server = m_servers.back();
    m_jobs.emplace(job->id, job);
    job->ownsTarget = job->kind != Job::Download || m_targets.insert(job->local).second;
    if (job->ownsTarget)
        queueUp(job);
    else
        finish(lock, {job},
               {FtpError::LocalFile, FtpJobs::tr("%1: another job fetches it").arg(job->local)});
    return job->id;
}

void JobQueue::pause(int id)
{
    const Lock lock(m_mutex);
    const JobPointer job = find(id);
    if (!job)
        return;
    if (job->state == FtpJobs::Running) {
        interrupt(job, Job::Pause);
    } else if (job->state == FtpJobs::Waiting) {
        leaveLists(*job);
        job->state = FtpJobs::Paused;
    }
}

void JobQueue::resume(int id)
{
    const Lock lock(m_mutex);
    const JobPointer job = find(id);
    if (!job)
        return;
    if (job->state == FtpJobs::Paused)
        queueUp(job);
    else if (job->wish == Job::Pause)
        job->wish = Job::BeginAgain;
}

void JobQueue::cancel(int id)
{
    Lock lock(m_mutex);
    const JobPointer job = find(id);
    if (!job || job->state == FtpJobs::Unknown)
        return;
    if (job->state == FtpJobs::Running) {
        interrupt(job, Job::Cancel);
        return;
    }
    leaveLists(*job);
    finish(lock, {job}, {FtpError::Cancelled, FtpJobs::tr("Cancelled.")});
}

std::vector<int> JobQueue::ids() const
{
    const Lock lock(m_mutex);
    std::vector<int> ids;
    ids.reserve(m_jobs.size());
    for (const auto &[id, job] : m_jobs)
        ids.push_back(id);
    return ids;
}

std::vector<JobQueue::JobPointer> JobQueue::running() const
{
    const Lock lock(m_mutex);
    std::vector<JobPointer> jobs;
    for (const auto &worker : m_workers) {
        if (worker->job)
            jobs.push_back(worker->job);
    }
    return jobs;
}

FtpJobs::State JobQueue::state(int id) const
{
    const Lock lock(m_mutex);
    const JobPointer job = find(id);
    return job ? job->state : FtpJobs::Unknown;
}

int JobQueue::count() const
{
    const Lock lock(m_mutex);
    return int(m_jobs.size());
}

JobQueue::Event JobQueue::takeEvent()
{
    const Lock lock(m_mutex);
    if (m_events.empty())
        return {};
    const Event event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}

JobQueue::Order JobQueue::next(Worker &worker)
{
    Lock lock(m_mutex);
    for (;;) {
        if (m_isEnding)
            return End;
        const auto now = JobClock::now();
        promote(now);
        if (const auto server = serverFor(worker, now)) {
            begin(worker, server);
            return Perform;
        }
        if (worker.isLoggedOn) {
            const FtpServer &settings = worker.server->settings;
            const bool isTooOld = now >= worker.idleSince + std::chrono::seconds(settings.idleTime);
            if (isTooOld || !worker.server->isCurrent)
                return LogOut;
            if (settings.keepAlive > 0 && now >= worker.signOfLife) {
                worker.signOfLife = now + std::chrono::seconds(settings.keepAlive);
                return GiveSignOfLife;
            }
        }
        m_changed.wait_until(lock, nextTime(worker, now));
    }
}

bool JobQueue::adopt(Worker &worker, const std::shared_ptr<nsFTP::CFTPClient> &client)
{
    const Lock lock(m_mutex);
    worker.client = client;
    return !m_isEnding && worker.job->wish == Job::GoOn;
}

void JobQueue::loggedOn(Worker &worker)
{
    const Lock lock(m_mutex);
    worker.isLoggedOn = true;
    worker.server->failures = 0;
    worker.server->nextLogon = JobClock::time_point::min();
    m_changed.notify_all();
}

bool JobQueue::settle(Worker &worker, const FtpError &error, const QVector<FtpEntry> &entries)
{
    Lock lock(m_mutex);
    const JobPointer job = std::exchange(worker.job, nullptr);
    const Job::Wish wish = std::exchange(job->wish, Job::GoOn);
    worker.idleSince = JobClock::now();
    worker.signOfLife = worker.idleSince + std::chrono::seconds(worker.server->settings.keepAlive);
    if (!error || wish == Job::Cancel) {
        const FtpError cancelled = {FtpError::Cancelled, FtpJobs::tr("Cancelled.")};
        finish(lock, {job}, error ? cancelled : error, entries);
    } else if (wish == Job::Pause) {
        job->state = FtpJobs::Paused;
    } else if (wish == Job::BeginAgain) {
        queueUp(job);
    } else if (!worker.isLoggedOn) {
        logonFailed(lock, worker, job, error);
    } else {
        attemptFailed(lock, job, error);
    }
    return wish == Job::GoOn;
}

void JobQueue::sessionEnded(Worker &worker)
{
    const Lock lock(m_mutex);
    if (worker.job) {
        // It goes on with another session at the same server.
        worker.client.reset();
        worker.isLoggedOn = false;
        return;
    }
    leave(worker);
}

JobQueue::JobPointer JobQueue::find(int id) const
{
    const auto found = m_jobs.find(id);
    return found == m_jobs.end() ? nullptr : found->second;
}

void JobQueue::tell(const Event &event)
{
    m_events.push_back(event);
    m_wake();
}

// A job that is to be cancelled stays so.
void JobQueue::interrupt(const JobPointer &job, Job::Wish wish)
{
    if (job->wish != Job::Cancel)
        job->wish = wish;
    for (const auto &worker : m_workers) {
        if (worker->job == job && worker->client)
            worker->client->GiveUp();
    }
}

// So many as there is work for.
void JobQueue::startWorkers()
{
    size_t wanted = 0;
    size_t most = 0;
    for (const auto &server : m_servers) {
        wanted += server->waiting.size();
        most += size_t(server->mostSessions);
    }
    size_t idle = 0;
    for (const auto &worker : m_workers)
        idle += worker->job ? 0 : 1;
    for (; idle < wanted && m_workers.size() < most; ++idle) {
        m_workers.push_back(std::make_unique<Worker>());
        Worker &worker = *m_workers.back();
        worker.thread = std::thread([this, &worker] { m_run(*this, worker); });
    }
}

// Where a worker has a job to do: at its own session's server, if there is one.
std::shared_ptr<JobServer> JobQueue::serverFor(const Worker &worker, JobClock::time_point now) const
{
    if (worker.isLoggedOn && !worker.server->waiting.empty())
        return worker.server;
    for (const auto &server : m_servers) {
        const bool hasRoom = server->sessions < server->mostSessions && now >= server->nextLogon;
        if (hasRoom && !server->waiting.empty())
            return server;
    }
    return nullptr;
}

// When a worker has something to do, as far as is known.
JobClock::time_point JobQueue::nextTime(const Worker &worker, JobClock::time_point now) const
{
    auto time = now + std::chrono::hours(1);
    for (const auto &server : m_servers) {
        if (!server->delayed.empty())
            time = std::min(time, server->delayed.begin()->first);
        if (!server->waiting.empty() && server->nextLogon > now)
            time = std::min(time, server->nextLogon);
    }
    if (!worker.isLoggedOn)
        return time;
    const FtpServer &settings = worker.server->settings;
    if (settings.keepAlive > 0)
        time = std::min(time, worker.signOfLife);
    return std::min(time, worker.idleSince + std::chrono::seconds(settings.idleTime));
}

void JobQueue::begin(Worker &worker, const std::shared_ptr<JobServer> &server)
{
    if (worker.server != server) {
        leave(worker);
        worker.server = server;
        ++server->sessions;
    }
    const int id = *server->waiting.begin();
    server->waiting.erase(server->waiting.begin());
    worker.job = m_jobs.at(id);
    worker.job->state = FtpJobs::Running;
    worker.job->startedAt = JobClock::now();
    tell([id](FtpJobs &jobs) { Q_EMIT jobs.started(id); });
}

// Makes room for another worker's session.
void JobQueue::leave(Worker &worker)
{
    if (worker.server)
        --worker.server->sessions;
    worker.server.reset();
    worker.client.reset();
    worker.isLoggedOn = false;
    m_changed.notify_all();
}

void JobQueue::queueUp(const JobPointer &job)
{
    job->state = FtpJobs::Waiting;
    job->server->waiting.insert(job->id);
    startWorkers();
    m_changed.notify_all();
}

void JobQueue::leaveLists(const Job &job)
{
    JobServer &server = *job.server;
    server.waiting.erase(job.id);
    const auto found = std::find_if(server.delayed.begin(), server.delayed.end(),
                                    [&](const auto &entry) { return entry.second == job.id; });
    if (found != server.delayed.end())
        server.delayed.erase(found);
}

// Jobs whose time has come wait no longer.
void JobQueue::promote(JobClock::time_point now)
{
    for (const auto &server : m_servers) {
        auto &delayed = server->delayed;
        for (; !delayed.empty() && delayed.begin()->first <= now; delayed.erase(delayed.begin()))
            server->waiting.insert(delayed.begin()->second);
    }
    startWorkers();
}

// Another session that the server refuses is done without. Otherwise the next logon waits, and in
// the end none is tried for any job.
void JobQueue::logonFailed(Lock &lock, Worker &worker, const JobPointer &job, const FtpError &error)
{
    JobServer &server = *worker.server;
    const auto others = std::count_if(m_workers.begin(), m_workers.end(), [&](const auto &other) {
        return other->isLoggedOn && other->server == worker.server;
    });
    const bool isAnswer = error.code == FtpError::Busy || error.code == FtpError::NotLoggedOn;
    if (others > 0 && isAnswer) {
        server.mostSessions = int(others);
        queueUp(job);
        return;
    }
    const auto now = JobClock::now();
    ++server.failures;
    if (error.mayPass() && server.failures <= server.settings.retries) {
        const int delay = delayBefore(server.failures, server.settings);
        server.nextLogon = after(now, delay);
        queueUp(job);
        tell([=](FtpJobs &jobs) { Q_EMIT jobs.retrying(job->id, error, delay); });
        return;
    }
    std::vector<JobPointer> over = {job};
    for (const int id : server.waiting)
        over.push_back(m_jobs.at(id));
    for (const auto &entry : server.delayed)
        over.push_back(m_jobs.at(entry.second));
    server.waiting.clear();
    server.delayed.clear();
    server.failures = 0;
    finish(lock, over, error);
}

void JobQueue::attemptFailed(Lock &lock, const JobPointer &job, const FtpError &error)
{
    const FtpServer &settings = job->server->settings;
    if (job->done > job->furthest) {
        job->furthest = job->done;
        job->failures = 0;
    }
    ++job->failures;
    if (!error.mayPass() || job->failures > settings.retries) {
        finish(lock, {job}, error);
        return;
    }
    const int delay = delayBefore(job->failures, settings);
    job->state = FtpJobs::Waiting;
    job->server->delayed.emplace(after(JobClock::now(), delay), job->id);
    m_changed.notify_all();
    tell([=](FtpJobs &jobs) { Q_EMIT jobs.retrying(job->id, error, delay); });
}

// Removes what failed downloads leave before it tells of their end, and without the lock.
void JobQueue::finish(Lock &lock, const std::vector<JobPointer> &over, const FtpError &error,
                      const QVector<FtpEntry> &entries)
{
    for (const JobPointer &job : over)
        job->state = FtpJobs::Unknown;
    lock.unlock();
    for (const JobPointer &job : over) {
        const bool keepsPart = job->has(FtpJobs::Resume) || job->has(FtpJobs::KeepPart);
        if (error && job->kind == Job::Download && job->hasPart && !keepsPart)
            PartFile(job->local).discard();
    }
    lock.lock();
    for (const JobPointer &job : over) {
        m_jobs.erase(job->id);
        if (job->kind == Job::Download && job->ownsTarget)
            m_targets.erase(job->local);
        tellEnd(job, error, entries);
    }
    if (m_jobs.empty())
        tell([](FtpJobs &jobs) { Q_EMIT jobs.allFinished(); });
}

void JobQueue::tellEnd(const JobPointer &job, const FtpError &error,
                       const QVector<FtpEntry> &entries)
{
    const int id = job->id;
    if (!error && job->kind == Job::List) {
        tell([=](FtpJobs &jobs) { Q_EMIT jobs.listed(id, entries); });
    } else if (!error && job->kind != Job::Remove) {
        const std::chrono::duration<double> time = JobClock::now() - job->startedAt;
        const FtpProgress whole = {job->done, job->done,
                                   qint64(double(job->moved) / qMax(time.count(), 0.001)), 0};
        tell([=](FtpJobs &jobs) { Q_EMIT jobs.progress(id, whole); });
    }
    tell([=](FtpJobs &jobs) { Q_EMIT jobs.finished(id, error); });
}
