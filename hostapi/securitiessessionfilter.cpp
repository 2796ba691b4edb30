// SPDX-License-Identifier: BSD-3-Clause
#include "securitiessessionfilter.h"

#include "emptylists_p.h"

#include <algorithm>

SecuritiesSessionFilter::SecuritiesSessionFilter(const Table *, int sessionColumn,
                                                 const QList<int> &keyColumns, int session,
                                                 const ValueFilter *parent)
    : m_sessionColumn(sessionColumn)
    , m_stockColumn(keyColumns.value(0, -1))
    , m_parent(parent ? parent->clone() : nullptr)
{
    const QVector<SessionId> sessions = ICore::instance()->currentSessions();
    for (const SessionId &open : sessions) {
        if (session == -1 || open.sess_id == session)
            m_sessions.append(open);
    }
    std::sort(m_sessions.begin(), m_sessions.end());
}

SecuritiesSessionFilter::SecuritiesSessionFilter(const SecuritiesSessionFilter &other)
    : ValueFilter(other)
    , m_sessionColumn(other.m_sessionColumn)
    , m_stockColumn(other.m_stockColumn)
    , m_sessions(other.m_sessions)
    , m_parent(other.m_parent ? other.m_parent->clone() : nullptr)
{
}

SecuritiesSessionFilter::~SecuritiesSessionFilter() = default;

bool SecuritiesSessionFilter::filter(const Record &record) const
{
    if (record.isNull())
        return false;
    if (m_sessions.isEmpty()) {
        if (!m_warned.exchange(true))
            EmptyLists::warn(QStringLiteral(
                "SecuritiesSessionFilter: no session is open: no security is listed"));
        return false;
    }
    const SessionId session{record.field(m_stockColumn).toInteger(),
                            record.field(m_sessionColumn).toInteger()};
    return std::binary_search(m_sessions.begin(), m_sessions.end(), session) &&
           (!m_parent || m_parent->filter(record));
}

std::unique_ptr<ValueFilter> SecuritiesSessionFilter::clone() const
{
    return std::make_unique<SecuritiesSessionFilter>(*this);
}
