// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/icore.h>
#include <hostapi/valuefilter.h>

#include <QList>

#include <atomic>

/// Accepts the securities of the trading sessions that were open when the filter was made
/// (ICore::currentSessions()). It does not follow the host: make a new one when the sessions
/// change.
class HOSTAPI_EXPORT SecuritiesSessionFilter : public ValueFilter
{
public:
    /// `sessionColumn` is the column of the session, `keyColumns` are those of the key, with the
    /// exchange first. A `session` other than -1 accepts that session id alone. With a `parent` a
    /// row must meet the parent's condition too; the filter keeps a copy of it.
    SecuritiesSessionFilter(const Table *table, int sessionColumn, const QList<int> &keyColumns,
                            int session, const ValueFilter *parent);
    SecuritiesSessionFilter(const SecuritiesSessionFilter &other);
    SecuritiesSessionFilter &operator=(const SecuritiesSessionFilter &) = delete;
    ~SecuritiesSessionFilter() override;

    /// False for a null record. When no session is open at all, a warning says so, once until
    /// another core is installed.
    bool filter(const Record &record) const override;
    std::unique_ptr<ValueFilter> clone() const override;

private:
    int m_sessionColumn;
    int m_stockColumn;
    /// Sorted.
    QVector<SessionId> m_sessions;
    std::unique_ptr<ValueFilter> m_parent;
    /// Set after the warning, so that the check is not made for each row.
    mutable std::atomic<bool> m_warned{false};
};
