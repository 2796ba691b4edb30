// SPDX-License-Identifier: BSD-3-Clause
#include "loadjob_p.h"

#include "databaseloader_p.h"
#include "freememory_p.h"

#include <hostapi/exception.h>

LoadJob::LoadJob(const QString &file, ReferenceStore *store, const std::function<void()> &wake)
    : m_file(file), m_store(store), m_wake(wake)
{
    m_news.tables.resize(size_t(ReferenceSchema::tables().size()));
    m_thread = std::thread(&LoadJob::run, this);
}

LoadJob::~LoadJob()
{
    cancel();
    wait();
}

void LoadJob::wait()
{
    if (m_thread.joinable())
        m_thread.join();
}

LoadJob::News LoadJob::takeNews()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    News news = m_news;
    for (TableProgress &table : m_news.tables)
        table.isNew = false;
    m_isAwake = false;
    return news;
}

void LoadJob::run()
{
    const auto progress = [this](int table, int rows, int total) {
        change([=](News &news) { news.tables[size_t(table)] = {rows, total, true}; });
    };
    try {
        auto content = DatabaseLoader(m_file, m_store->layouts(), m_cancelled, progress).load();
        const Outcome outcome = content ? Loaded : Cancelled;
        const bool otherSessions = content && m_store->swap(*content);
        content.reset(); // frees the old rows before the load is reported as done
        giveBackFreeMemory();
        change([=](News &news) {
            news.outcome = outcome;
            news.otherSessions = otherSessions;
        });
    } catch (const std::exception &error) {
        const QString text = QString::fromUtf8(error.what());
        change([&](News &news) {
            news.outcome = Failed;
            news.error = text;
        });
    }
}

void LoadJob::change(const std::function<void(News &)> &change)
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        change(m_news);
        if (m_isAwake)
            return;
        m_isAwake = true;
    }
    m_wake();
}
