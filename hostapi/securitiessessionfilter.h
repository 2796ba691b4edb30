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
    /// `sessionColumn` of the table holds a row's session and `keyColumns` the parts of its
    /// key, exchange first. A `session` other than -1 narrows the filter to that session id.
    /// With a `parent`, a row must meet the parent's condition as well; a copy of it is kept.
    SecuritiesSessionFilter(const Table *table, int sessionColumn, const QList<int> &keyColumns,
                            int session, const ValueFilter *parent);
    SecuritiesSessionFilter(const SecuritiesSessionFilter &other);
    SecuritiesSessionFilter &operator=(const SecuritiesSessionFilter &) = delete;
    ~SecuritiesSessionFilter() override;

    /// False for a null record. The first row that is refused because no session is open at all
    /// is warned of, once for the core that is installed.
    bool filter(const Record &record) const override;
    std::unique_ptr<ValueFilter> clone() const override;

private:
    int m_sessionColumn;
    int m_stockColumn;
    /// Sorted.
    QVector<SessionId> m_sessions;
    std::unique_ptr<ValueFilter> m_parent;
    /// Spares all rows but the first the search for the warning.
    mutable std::atomic<bool> m_warned{false};
};
