// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/ftpjobs.h"

#include "formkit/FtpJobs/jobworker_p.h"
#include "formkit/FtpJobs/transferrate_p.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>

namespace {

constexpr int ProgressMSecs = 100;

void work(JobQueue &queue, JobQueue::Worker &worker)
{
    JobWorker(queue, worker).run();
}

std::shared_ptr<Job> makeJob(Job::Kind kind, const QByteArray &remote, const QString &local = {},
                             FtpJobs::Options options = {})
{
    // The program may change its folder before the job begins.
    const QString path = local.isEmpty() ? local : QFileInfo(local).absoluteFilePath();
    return std::make_shared<Job>(kind, remote, path, options);
}

FtpProgress progressOf(const Job &job, qint64 bytesPerSecond)
{
    FtpProgress progress = {job.done, job.total, bytesPerSecond, -1};
    if (progress.total >= 0 && bytesPerSecond > 0)
        progress.secondsLeft = qMax<qint64>(0, progress.total - progress.done) / bytesPerSecond;
    return progress;
}

} // namespace

struct FtpJobs::Private
{
    explicit Private(FtpJobs *jobs)
        : timer(jobs)
        , queue(work, [jobs] { QMetaObject::invokeMethod(jobs, "deliver", Qt::QueuedConnection); })
    {
        clock.start();
    }

    QTimer timer;
    QElapsedTimer clock;
    std::map<int, TransferRate> rates; // of the running jobs
    JobQueue queue;
};

FtpJobs::FtpJobs(QObject *parent) : QObject(parent), d(std::make_unique<Private>(this))
{
    qRegisterMetaType<FtpError>();
    qRegisterMetaType<FtpProgress>();
    qRegisterMetaType<QVector<FtpEntry>>();
    d->timer.setInterval(ProgressMSecs);
    connect(&d->timer, &QTimer::timeout, this, &FtpJobs::showProgress);
}

FtpJobs::~FtpJobs() = default;

void FtpJobs::setServer(const FtpServer &server)
{
    d->queue.setServer(server);
}

int FtpJobs::download(const QByteArray &remote, const QString &local, Options options)
{
    return d->queue.add(makeJob(Job::Download, remote, local, options));
}

int FtpJobs::upload(const QString &local, const QByteArray &remote, Options options)
{
    return d->queue.add(makeJob(Job::Upload, remote, local, options));
}

int FtpJobs::list(const QByteArray &folder, Options options)
{
    return d->queue.add(makeJob(Job::List, folder, {}, options));
}

int FtpJobs::remove(const QByteArray &remote)
{
    return d->queue.add(makeJob(Job::Remove, remote));
}

FtpJobs::State FtpJobs::state(int id) const
{
    return d->queue.state(id);
}

int FtpJobs::count() const
{
    return d->queue.count();
}

void FtpJobs::pause(int id)
{
    d->queue.pause(id);
}

void FtpJobs::resume(int id)
{
    d->queue.resume(id);
}

void FtpJobs::cancel(int id)
{
    d->queue.cancel(id);
}

void FtpJobs::pauseAll()
{
    for (const int id : d->queue.ids())
        d->queue.pause(id);
}

void FtpJobs::resumeAll()
{
    for (const int id : d->queue.ids())
        d->queue.resume(id);
}

void FtpJobs::cancelAll()
{
    for (const int id : d->queue.ids())
        d->queue.cancel(id);
}

// Tells one thing: the slot that hears it may destroy this object, or run an event loop.
void FtpJobs::deliver()
{
    const JobQueue::Event event = d->queue.takeEvent();
    if (!d->timer.isActive())
        d->timer.start();
    if (event)
        event(*this);
}

void FtpJobs::showProgress()
{
    const QPointer<FtpJobs> alive(this);
    const auto jobs = d->queue.running();
    std::map<int, TransferRate> rates;
    for (const auto &job : jobs) {
        rates[job->id] = std::move(d->rates[job->id]);
        rates[job->id].add(d->clock.elapsed(), job->moved);
    }
    d->rates = rates;
    if (jobs.empty())
        d->timer.stop();
    for (const auto &job : jobs) {
        const bool moves = job->kind == Job::Download || job->kind == Job::Upload;
        // It may have ended since: nothing comes after the end.
        if (moves && alive && d->queue.state(job->id) == Running)
            Q_EMIT progress(job->id, progressOf(*job, rates[job->id].bytesPerSecond()));
    }
}
