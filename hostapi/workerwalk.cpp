// SPDX-License-Identifier: BSD-3-Clause
#include "workerwalk.h"

#include "table.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <thread>

namespace {

// How many TableLocks wait on the forms' thread: one at a time, but a host's lock() may ask for
// another one.
std::atomic<int> formsWaiting{0};
std::atomic<std::thread::id> formsThread{};

// TableLocks of the thread. While there is one, a walk may be waiting for it.
thread_local int locksHeld = 0;

// Never destroyed: a walk may end after the objects of this file.
struct Registry
{
    std::mutex mutex;
    std::set<WorkerWalk *> walks;
};

Registry &registry()
{
    static auto *const registry = new Registry;
    return *registry;
}

} // namespace

struct WorkerWalk::Private
{
    explicit Private(Table *walked) : table(walked) {}

    Table *const table;
    std::atomic<bool> isGivenUp{false};
    // Held while the table may be touched.
    std::mutex inTable;
};

WorkerWalk::WorkerWalk(Table *table) : d(std::make_unique<Private>(table))
{
    formsThread = std::this_thread::get_id();
    const std::lock_guard<std::mutex> guard(registry().mutex);
    registry().walks.insert(this);
}

WorkerWalk::~WorkerWalk()
{
    const std::lock_guard<std::mutex> guard(registry().mutex);
    registry().walks.erase(this);
}

void WorkerWalk::giveUp()
{
    d->isGivenUp = true;
}

bool WorkerWalk::isGivenUp() const
{
    return d->isGivenUp;
}

bool WorkerWalk::mustStop() const
{
    return d->isGivenUp.load(std::memory_order_relaxed) ||
           formsWaiting.load(std::memory_order_relaxed) > 0;
}

bool WorkerWalk::run(const std::function<bool()> &walk)
{
    while (!d->isGivenUp) {
        // Otherwise the walk would have the lock again before the forms' thread has woken up.
        if (formsWaiting > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            continue;
        }
        const std::lock_guard<std::mutex> inTable(d->inTable);
        if (d->isGivenUp)
            break;
        const TableLock lock(d->table);
        if (walk())
            return true;
    }
    return false;
}

void WorkerWalk::waitForGivenUp()
{
    if (locksHeld > 0)
        return;
    const std::lock_guard<std::mutex> guard(registry().mutex);
    for (WorkerWalk *const walk : registry().walks) {
        if (walk->isGivenUp())
            const std::lock_guard<std::mutex> hasLeft(walk->d->inTable);
    }
}

void WorkerWalk::leaveAll()
{
    {
        const std::lock_guard<std::mutex> guard(registry().mutex);
        for (WorkerWalk *const walk : registry().walks)
            walk->giveUp();
    }
    waitForGivenUp();
}

void WorkerWalk::lockFirst(Table *table)
{
    const bool isForms = formsThread.load() == std::this_thread::get_id();
    formsWaiting += isForms;
    try {
        table->lock();
    } catch (...) {
        formsWaiting -= isForms;
        throw;
    }
    formsWaiting -= isForms;
    ++locksHeld;
}

void WorkerWalk::unlock(Table *table)
{
    --locksHeld;
    table->unlock();
}
