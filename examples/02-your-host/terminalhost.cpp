// SPDX-License-Identifier: BSD-3-Clause
#include "terminalhost.h"

namespace {

// Where a member of a struct is, for a column.
template <auto Member, typename T> void *cell(T &row)
{
    return &(row.*Member);
}

const FieldType Id32(FieldType::Integer);
const FieldType Id64(FieldType::Integer64);
const FieldType Text(FieldType::String, 80);

} // namespace

TerminalHost::TerminalHost(const std::vector<Exchange> &exchanges,
                           const std::vector<TradingBoard> &boards)
    : m_exchanges("stocks",
                  {{"stock_id", Id32, cell<&Exchange::id>},
                   {"stock_code", Text, cell<&Exchange::code>},
                   {"name", Text, cell<&Exchange::name>}},
                  {0})
    , m_boards("boards",
               {{"stock_id", Id32, cell<&TradingBoard::exchange>},
                {"board_id", Id32, cell<&TradingBoard::id>},
                {"board_code", Text, cell<&TradingBoard::code>},
                {"name", Text, cell<&TradingBoard::name>}},
               {0, 1})
    , m_securities("securities",
                   {{"stock_id", Id32, cell<&Security::exchange>},
                    {"board_id", Id32, cell<&Security::board>},
                    {"sec_id", Id64, cell<&Security::id>},
                    {"sec_code", Text, cell<&Security::code>},
                    {"sec_name", Text, cell<&Security::name>},
                    {"sess_id", Id32, cell<&Security::session>}},
                   {0, 1, 2})
    , m_partners("gx.diler",
                 {{"mox_code", Text, cell<&Partner::code>},
                  {"client_code", Text, cell<&Partner::client>},
                  {"name", Text, cell<&Partner::name>}},
                 {0})
{
    for (const Exchange &exchange : exchanges)
        m_codes.insert(exchange.id, exchange.code);
    for (const TradingBoard &board : boards) {
        m_boardCodes.insert({board.exchange, board.id}, board.code);
        m_boardIds.insert({m_codes.value(board.exchange), board.code}, board.id);
    }
    m_exchanges.setRows(exchanges);
    m_boards.setRows(boards);
}

void TerminalHost::setSessions(const QVector<SessionId> &sessions)
{
    {
        const std::lock_guard<std::mutex> guard(m_sessionLock);
        m_sessions = sessions;
    }
    Q_EMIT m_news.aNewSessions();
}

QVector<SessionId> TerminalHost::currentSessions() const
{
    const std::lock_guard<std::mutex> guard(m_sessionLock);
    return m_sessions;
}

Table *TerminalHost::table(const QString &name)
{
    const std::initializer_list<Table *> tables{&m_exchanges, &m_boards, &m_securities,
                                                &m_partners};
    for (Table *known : tables) {
        if (known->name() == name)
            return known;
    }
    return nullptr;
}
