// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/index.h>

/// A reference table. The host implements it, forms read it.
///
/// The master index and the rows that it gives are used between lock() and unlock() only (or while
/// a TableLock lives). While nobody holds the lock the content may be replaced at any moment. Rows
/// that Records hold always stay valid.
///
/// The forms' thread reads the table, and so does a worker that walks large tables (see
/// WorkerWalk). The worker calls lock() and unlock(), and between them masterIndex(), what that
/// offers, and dataPtr(). freeRow() may come from any thread, everything else from the forms'
/// thread only.
class HOSTAPI_EXPORT Table
{
public:
    virtual ~Table();

    /// The name under which IDatabase::table() finds it.
    virtual QString name() const = 0;
    /// The index of a named column, or -1. It never changes.
    virtual int columnIndex(const QString &column) const = 0;

    /// Gives exclusive access. The thread that holds the lock may take it again: models report
    /// changes while they hold it, and a receiver may walk the table too. Each lock() needs its
    /// unlock().
    virtual void lock() = 0;
    virtual void unlock() = 0;

    /// The primary index: valid while the table is locked.
    virtual const MasterIndex *masterIndex() const = 0;

    /// The cell of a row that a Record or the locked table holds.
    virtual Field dataPtr(RowData *row, int column) const = 0;
    /// A new row with every cell null, in no index and without a reference, for Record's use.
    virtual RowData *newRow() const = 0;
    /// Takes back a row whose last reference was dropped. Any thread may call this, with or
    /// without the lock.
    virtual void freeRow(RowData *row) const = 0;
};

/// Holds a table's lock for a scope. On the forms' thread it does not wait for a WorkerWalk, which
/// gives way.
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
