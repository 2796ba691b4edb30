// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "referencestore_p.h"

#include <QString>

#include <atomic>
#include <functional>
#include <thread>

/// A load on a thread of its own. At its end the store has the new content.
class LoadJob
{
public:
    enum Outcome { Running, Loaded, Failed, Cancelled };

    struct TableProgress
    {
        int rows = 0;
        int total = 0;
        bool isNew = false;
    };
    /// What has happened since the last takeNews().
    struct News
    {
        Outcome outcome = Running;
        QString error;
        bool otherSessions = false;
        /// In the order of ReferenceSchema::tables().
        std::vector<TableProgress> tables;
    };

    /// Calls `wake` on the job's thread: once when news arrive, and not again before takeNews().
    LoadJob(const QString &file, ReferenceStore *store, const std::function<void()> &wake);
    /// Cancels and waits for the thread.
    ~LoadJob();
    Q_DISABLE_COPY(LoadJob)

    QString file() const { return m_file; }
    /// Has no effect once the store has the new content.
    void cancel() { m_cancelled = true; }
    /// Waits until there is an outcome.
    void wait();
    News takeNews();

private:
    void run();
    void change(const std::function<void(News &)> &change);

    const QString m_file;
    ReferenceStore *m_store;
    const std::function<void()> m_wake;
    std::atomic<bool> m_cancelled{false};
    std::mutex m_mutex; ///< guards the two members below
    News m_news;
    bool m_isAwake = false;
    std::thread m_thread;
};
