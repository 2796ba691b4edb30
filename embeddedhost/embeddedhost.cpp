// SPDX-License-Identifier: BSD-3-Clause
#include "embeddedhost.h"

#include "databaseloader_p.h"
#include "loadjob_p.h"

EmbeddedHost::EmbeddedHost(QObject *parent)
    : QObject(parent), m_store(std::make_unique<ReferenceStore>()), m_plugins{&m_decoder}
{
}

EmbeddedHost::~EmbeddedHost()
{
    m_job.reset();
    if (ICore::instance() == this)
        ICore::install(nullptr);
}

void EmbeddedHost::load(const QString &file)
{
    m_file = file;
    if (m_job) {
        m_job->cancel();
        m_startAgain = true;
    } else {
        start();
    }
}

void EmbeddedHost::reload()
{
    load(m_file);
}

void EmbeddedHost::cancel()
{
    m_startAgain = false;
    if (m_job)
        m_job->cancel();
}

void EmbeddedHost::start()
{
    m_startAgain = false;
    // Without arguments, so that nothing is shared across the threads but the call itself.
    const auto wake = [this] { QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection); };
    m_job = std::make_unique<LoadJob>(m_file, m_store.get(), wake);
}

void EmbeddedHost::deliver()
{
    if (!m_job)
        return;
    const LoadJob::News news = m_job->takeNews();
    // Before any signal: a receiver may run an event loop, start a load or destroy the host.
    if (news.outcome != LoadJob::Running) {
        m_job.reset();
        if (m_startAgain)
            start();
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
        m_error.clear();
        Q_EMIT cancelled();
    } else {
        finish(news.outcome == LoadJob::Loaded, news.otherSessions, news.error);
    }
}

bool EmbeddedHost::loadNow(const QString &file)
{
    const QPointer<EmbeddedHost> self(this);
    cancel();
    if (m_job) {
        m_job->wait();
        deliver();
    }
    if (!self)
        return false;
    m_file = file;
    const std::atomic<bool> never{false};
    const auto ignore = [](int, int, int) {};
    bool otherSessions = false;
    QString error;
    try {
        const auto content = DatabaseLoader(file, m_store->layouts(), never, ignore).load();
        otherSessions = m_store->swap(*content);
    } catch (const std::exception &exception) {
        error = QString::fromUtf8(exception.what());
    }
    finish(error.isEmpty(), otherSessions, error);
    return error.isEmpty();
}

void EmbeddedHost::finish(bool success, bool otherSessions, const QString &error)
{
    m_error = error;
    if (!success) {
        Q_EMIT failed(error);
        return;
    }
    const QPointer<EmbeddedHost> self(this);
    if (otherSessions)
        Q_EMIT m_decoder.aNewSessions();
    if (self)
        Q_EMIT loaded();
}

qint64 EmbeddedHost::liveRows() const
{
    return m_store->liveRows();
}

void EmbeddedHost::setSessions(const QVector<SessionId> &sessions)
{
    m_store->setSessions(sessions);
    Q_EMIT m_decoder.aNewSessions();
}

void EmbeddedHost::addPlugin(QObject *plugin)
{
    m_plugins.append(plugin);
}

IDatabase *EmbeddedHost::database()
{
    return m_store.get();
}

const StockDirectory *EmbeddedHost::stockDirectory() const
{
    return m_store->stockDirectory();
}

const BoardDirectory *EmbeddedHost::boardDirectory() const
{
    return m_store->boardDirectory();
}

QVector<SessionId> EmbeddedHost::currentSessions() const
{
    return m_store->sessions();
}

QList<QObject *> EmbeddedHost::plugins() const
{
    QList<QObject *> plugins;
    for (const QPointer<QObject> &plugin : m_plugins)
        plugins << plugin.data();
    return plugins;
}
