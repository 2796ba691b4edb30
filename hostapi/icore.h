// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/directories.h>
#include <hostapi/stepsource.h>
#include <hostapi/table.h>

#include <QObject>
#include <QVector>

/// One trading session of one exchange.
struct SessionId
{
    qint32 stock_id = 0;
    qint32 sess_id = 0;

    friend bool operator==(SessionId a, SessionId b)
    {
        return a.stock_id == b.stock_id && a.sess_id == b.sess_id;
    }
    friend bool operator<(SessionId a, SessionId b)
    {
        return a.stock_id != b.stock_id ? a.stock_id < b.stock_id : a.sess_id < b.sess_id;
    }
};
Q_DECLARE_TYPEINFO(SessionId, Q_PRIMITIVE_TYPE);

/// The tables of a host.
class HOSTAPI_EXPORT IDatabase
{
public:
    virtual ~IDatabase();
    /// The table of a name, or null. It lives as long as the core.
    virtual Table *table(const QString &name) = 0;
};

/// The host's core: the one object through which forms reach the reference data. A terminal
/// implements it and installs it once, before the first form. Forms keep pointers to what it gives,
/// so it must outlive them all.
class HOSTAPI_EXPORT ICore
{
public:
    virtual ~ICore();

    /// The installed core. While none is installed, a core without tables, boards, sessions and
    /// plug-ins, so that forms can be shown all the same (in a form designer, for example).
    static ICore *instance();
    /// Null uninstalls the core: a host does that before its tables go. After this call no worker
    /// is in a table. On the forms' thread only.
    static void install(ICore *core);

    /// The table of a name, never null: a table that the host does not have reads as empty. A
    /// warning names it, or says that no core is installed, once until another core is installed.
    Table *table(const QString &name);

    /// Each always returns the same object; never null.
    virtual IDatabase *database() = 0;
    virtual const StockDirectory *stockDirectory() const = 0;
    virtual const BoardDirectory *boardDirectory() const = 0;
    /// The same, too. This one knows no steps: a host that does overrides it.
    virtual const StepSource *stepSource() const;
    /// The sessions that are open to trading now, in any order. May be called from any thread.
    virtual QVector<SessionId> currentSessions() const = 0;
    /// The loaded plug-ins, in the order of loading; entries may be null.
    virtual QList<QObject *> plugins() const = 0;
};
