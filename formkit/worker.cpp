// SPDX-License-Identifier: BSD-3-Clause
#include "worker_p.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace {

using Deed = std::function<void()>;

// Models that are destroyed after the thread still post.
std::atomic<bool> hasEnded{false};

class Thread
{
public:
    Thread() : m_thread(&Thread::run, this) {}
    ~Thread()
    {
        hasEnded = true;
        post(nullptr);
        m_thread.join();
    }

    void post(Deed deed)
    {
        {
            const std::lock_guard<std::mutex> guard(m_mutex);
            m_deeds.push_back(std::move(deed));
        }
        m_isPosted.notify_one();
    }

private:
    // What a deed holds is destroyed before the next one is taken.
    void run()
    {
        while (!hasEnded) {
            if (const Deed deed = take())
                deed();
        }
    }
    Deed take()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_isPosted.wait(lock, [this] { return !m_deeds.empty(); });
        Deed deed = std::move(m_deeds.front());
        m_deeds.pop_front();
        return deed;
    }

    std::mutex m_mutex;
    std::condition_variable m_isPosted;
    std::deque<Deed> m_deeds;
    std::thread m_thread;
};

} // namespace

void Worker::post(std::function<void()> deed)
{
    static Thread thread;
    if (!hasEnded)
        thread.post(std::move(deed));
}
