// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/index.h>

/// One reference table of the host. A host implements it; a form reads it.
///
/// Everything that touches rows by way of the master index happens between lock() and
/// unlock() (or in the life of a TableLock). The content may be replaced at any moment when
/// nobody holds the lock. Rows held by Records stay valid throughout.
///
/// The forms' thread does so, and a worker of the library, which walks large tables (see
/// WorkerWalk): it calls lock() and unlock(), and between them masterIndex(), what that offers, and
/// dataPtr(). freeRow() may come from any thread, everything else from the forms' alone.
class HOSTAPI_EXPORT Table
{
public:
    virtual ~Table();

    /// The name under which IDatabase::table() finds it.
    virtual QString name() const = 0;
    /// The index of a named column, or -1. Constant for the life of the table.
    virtual int columnIndex(const QString &column) const = 0;

    /// Exclusive access for the length of a walk. The thread that holds the lock may take it
    /// again (models report changes while they hold it, and a receiver may walk in its turn);
    /// each lock() needs its unlock().
    virtual void lock() = 0;
    virtual void unlock() = 0;

    /// The primary index: valid while the table is locked.
    virtual const MasterIndex *masterIndex() const = 0;

    /// The cell of a row that a Record or the locked table holds.
    virtual Field dataPtr(RowData *row, int column) const = 0;
    /// A new row with every cell null, outside any index, for Record's use; no reference is
    /// counted yet.
    virtual RowData *newRow() const = 0;
    /// Takes back a row whose last reference was dropped. Any thread may call this, with or
    /// without the lock.
    virtual void freeRow(RowData *row) const = 0;
};

/// Holds a table's lock for a scope, whichever way the scope is left. On the forms' thread it does
/// not wait for a WorkerWalk, which gives way.
class HOSTAPI_EXPORT TableLock
{
public:
    /// Locks the table, which must not be null.
    explicit TableLock(Table *table);
    ~TableLock();
    Q_DISABLE_COPY(TableLock)

private:
    Table *m_table;
};
