// SPDX-License-Identifier: BSD-3-Clause
#include "embeddedhost.h"

#include "databaseloader_p.h"
#include "loadjob_p.h"

#include <QPointer>

struct EmbeddedHost::Private
{
    explicit Private(EmbeddedHost *host) : q(host) {}

    void start();
    void finish(bool success, bool otherSessions, const QString &text);

    EmbeddedHost *const q;
    ReferenceStore store;
    EmbeddedDecoder decoder;
    QList<QPointer<QObject>> plugins{&decoder};
    QString file;
    QString error;
    bool startAgain = false;
    std::unique_ptr<LoadJob> job;
};

EmbeddedHost::EmbeddedHost(QObject *parent) : QObject(parent), d(std::make_unique<Private>(this)) {}

EmbeddedHost::~EmbeddedHost()
{
    d->job.reset();
    if (ICore::instance() == this)
        ICore::install(nullptr);
}

void EmbeddedHost::load(const QString &file)
{
    d->file = file;
    if (d->job) {
        d->job->cancel();
        d->startAgain = true;
    } else {
        d->start();
    }
}

void EmbeddedHost::reload()
{
    load(d->file);
}

void EmbeddedHost::cancel()
{
    d->startAgain = false;
    if (d->job)
        d->job->cancel();
}

bool EmbeddedHost::isLoading() const
{
    return bool(d->job);
}

void EmbeddedHost::Private::start()
{
    startAgain = false;
    // Without arguments, so that nothing is shared across the threads but the call itself.
    const auto wake = [host = q] {
        QMetaObject::invokeMethod(host, "deliver", Qt::QueuedConnection);
    };
    job = std::make_unique<LoadJob>(file, &store, wake);
}

void EmbeddedHost::deliver()
{
    if (!d->job)
        return;
    const LoadJob::News news = d->job->takeNews();
    // Before any signal: a receiver may run an event loop, start a load or destroy the host.
    if (news.outcome != LoadJob::Running) {
        d->job.reset();
        if (d->startAgain)
            d->start();
    }
    const QPointer<EmbeddedHost> self(this);
    for (int i = 0; self && i < int(news.tables.size()); ++i) {
        const LoadJob::TableProgress &table = news.tables[size_t(i)];
        if (table.isNew)
            Q_EMIT progress(ReferenceSchema::tables().at(i).name, table.rows, table.total);
    }
    if (!self || news.outcome == LoadJob::Running)
        return;
    if (news.outcome == LoadJob::Cancelled) {
        d->error.clear();
        Q_EMIT cancelled();
    } else {
        d->finish(news.outcome == LoadJob::Loaded, news.otherSessions, news.error);
    }
}

bool EmbeddedHost::loadNow(const QString &file)
{
    const QPointer<EmbeddedHost> self(this);
    cancel();
    if (d->job) {
        d->job->wait();
        deliver();
    }
    if (!self)
        return false;
    d->file = file;
    const std::atomic<bool> never{false};
    const auto ignore = [](int, int, int) {};
    bool otherSessions = false;
    QString error;
    try {
        const auto content = DatabaseLoader(file, d->store.layouts(), never, ignore).load();
        otherSessions = d->store.swap(*content);
    } catch (const std::exception &exception) {
        error = QString::fromUtf8(exception.what());
    }
    d->finish(error.isEmpty(), otherSessions, error);
    return error.isEmpty();
}

void EmbeddedHost::Private::finish(bool success, bool otherSessions, const QString &text)
{
    error = text;
    if (!success) {
        Q_EMIT q->failed(text);
        return;
    }
    const QPointer<EmbeddedHost> self(q);
    if (otherSessions)
        Q_EMIT decoder.aNewSessions();
    if (self)
        Q_EMIT q->loaded();
}

QString EmbeddedHost::file() const
{
    return d->file;
}

QString EmbeddedHost::errorText() const
{
    return d->error;
}

qint64 EmbeddedHost::liveRows() const
{
    return d->store.liveRows();
}

void EmbeddedHost::setSessions(const QVector<SessionId> &sessions)
{
    d->store.setSessions(sessions);
    Q_EMIT d->decoder.aNewSessions();
}

EmbeddedDecoder *EmbeddedHost::decoder()
{
    return &d->decoder;
}

void EmbeddedHost::addPlugin(QObject *plugin)
{
    d->plugins.append(plugin);
}

IDatabase *EmbeddedHost::database()
{
    return &d->store;
}

const StockDirectory *EmbeddedHost::stockDirectory() const
{
    return d->store.stockDirectory();
}

const BoardDirectory *EmbeddedHost::boardDirectory() const
{
    return d->store.boardDirectory();
}

const StepSource *EmbeddedHost::stepSource() const
{
    return d->store.stepSource();
}

QVector<SessionId> EmbeddedHost::currentSessions() const
{
    return d->store.sessions();
}

QList<QObject *> EmbeddedHost::plugins() const
{
    QList<QObject *> plugins;
    for (const QPointer<QObject> &plugin : d->plugins)
        plugins << plugin.data();
    return plugins;
}
