// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "referencestore_p.h"

#include <QString>

#include <atomic>
#include <functional>
#include <thread>

/// One load on a thread of its own, which ends by swapping the content into the store.
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
    /// What happened since it was asked for last.
    struct News
    {
        Outcome outcome = Running;
        QString error;
        bool otherSessions = false;
        /// In the order of ReferenceSchema::tables().
        std::vector<TableProgress> tables;
    };

    /// `wake` is called, on the job's thread, when there is news after takeNews() has taken
    /// all there was.
    LoadJob(const QString &file, ReferenceStore *store, const std::function<void()> &wake);
    /// Cancels, and waits for the thread.
    ~LoadJob();
    Q_DISABLE_COPY(LoadJob)

    QString file() const { return m_file; }
    /// No effect on a load that has already swapped its content in.
    void cancel() { m_cancelled = true; }
    /// Returns when there is an outcome.
    void wait();
    News takeNews();

private:
    void run();
    void change(const std::function<void(News &)> &change);

    const QString m_file;
    ReferenceStore *m_store;
    const std::function<void()> m_wake;
    std::atomic<bool> m_cancelled{false};
    std::mutex m_mutex; ///< guards the two below
    News m_news;
    bool m_isAwake = false;
    std::thread m_thread;
};
