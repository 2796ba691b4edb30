// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QtGlobal>

#include <functional>
#include <memory>

class Table;

/// A walk of a table on another thread than that of the forms, for which the forms' thread never
/// waits: while a TableLock waits there, whatever its table, the walk lets its own table go at
/// the next row and starts over afterwards. ICore::install() gives up every walk and waits
/// until none is in its table.
class HOSTAPI_EXPORT WorkerWalk
{
public:
    /// To be made on the forms' thread, while the core of the table lives.
    explicit WorkerWalk(Table *table);
    /// On any thread, but not while run() runs.
    ~WorkerWalk();
    Q_DISABLE_COPY(WorkerWalk)

    /// On the worker: calls `walk` with the table locked, and again when it has returned false.
    /// False when the walk has been given up. What `walk` throws passes through, with the lock
    /// given back.
    bool run(const std::function<bool()> &walk);
    /// To be asked before every row: when true, `walk` must return false at once.
    bool mustStop() const;

    /// From any thread; does not wait.
    void giveUp();
    bool isGivenUp() const;
    /// On the forms' thread: waits until no walk that has been given up is in its table, which
    /// takes a row at most once the walk has the lock. Does not wait while this thread holds a
    /// TableLock.
    static void waitForGivenUp();
    /// Gives up every walk, and waits as above. To be called before a table is destroyed;
    /// ICore::install() does it for a host that is taken away.
    static void leaveAll();

private:
    friend class TableLock;
    static void lockFirst(Table *table);
    static void unlock(Table *table);

    struct Private;
    std::unique_ptr<Private> d;
};
