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
/// implements it and installs it once, before the first form; forms keep pointers into it, so
/// it outlives them all.
class HOSTAPI_EXPORT ICore
{
public:
    virtual ~ICore();

    /// The installed core. Before any is installed, one that has no tables, boards, sessions
    /// or plug-ins, so that forms can be shown all the same (in a form designer, for example).
    static ICore *instance();
    /// Null takes the core away again. Not thread-safe.
    static void install(ICore *core);

    /// The table of a name, never null: one that the host lacks reads as empty. A warning names
    /// it, or says that no core is installed: once for the core that is installed.
    Table *table(const QString &name);

    /// The same objects for as long as the core lives; never null.
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
