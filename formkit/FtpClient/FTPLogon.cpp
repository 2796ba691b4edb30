// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPLogon_p.h"

#include <iterator>

namespace nsFTP {

namespace {

// A row for each firewall type. A step is three numbers: the command to send (see command()), and
// the indices of the next step after a 2xx and after a 3xx reply.
constexpr int LoggedOn = -2;
constexpr int Refused = -1;
constexpr int LongestLogon = 18;
constexpr int LogonTable[9][LongestLogon] = {
    {0, LoggedOn, 3, 1, LoggedOn, 6, 2, LoggedOn, Refused},
    {3, 6, 3, 4, 6, Refused, 5, Refused, 9, 0, LoggedOn, 12, 1, LoggedOn, 15, 2, LoggedOn, Refused},
    {3, 6, 3, 4, 6, Refused, 6, LoggedOn, 9, 1, LoggedOn, 12, 2, LoggedOn, Refused},
    {7, 3, 3, 0, LoggedOn, 6, 1, LoggedOn, 9, 2, LoggedOn, Refused},
    {3, 6, 3, 4, 6, Refused, 0, LoggedOn, 9, 1, LoggedOn, 12, 2, LoggedOn, Refused},
    {6, LoggedOn, 3, 1, LoggedOn, 6, 2, LoggedOn, Refused},
    {8, 6, 3, 4, 6, Refused, 0, LoggedOn, 9, 1, LoggedOn, 12, 2, LoggedOn, Refused},
    {9, Refused, 3, 1, LoggedOn, 6, 2, LoggedOn, Refused},
    {10, LoggedOn, 3, 11, LoggedOn, 6, 2, LoggedOn, Refused},
};

} // namespace

Logon::Logon(const CLogonInfo &data)
    : m_data(data), m_remoteHost(data.HostName()), m_table(LogonTable[data.FirewallType()])
{
    if (data.HostPort() != 21)
        m_remoteHost += ":" + std::to_string(data.HostPort());
}

bool Logon::isKnown(const CFirewallType &type)
{
    return size_t(type) < std::size(LogonTable);
}

const std::string &Logon::host() const
{
    return hasFirewall() ? m_data.FirewallHost() : m_data.HostName();
}

unsigned short Logon::port() const
{
    return hasFirewall() ? m_data.FirewallPort() : m_data.HostPort();
}

std::vector<Logon::Command> Logon::commands() const
{
    // The zeros that fill shorter rows read as USER, which does no harm.
    std::vector<Command> all;
    for (int step = 0; step < LongestLogon; step += 3)
        all.push_back(command(step));
    return all;
}

bool Logon::isLoggedOn() const
{
    return m_step == LoggedOn;
}

void Logon::take(const CReply &reply)
{
    m_step = m_table[m_step + (reply.Code().Value()[0] - '0') - 1];
}

Logon::Command Logon::command(int step) const
{
    const std::string &user = m_data.UserName();
    switch (m_table[step]) {
    case 0:
        return {CCommand::USER, user};
    case 1:
        return {CCommand::PASS, m_data.Password()};
    case 2:
        return {CCommand::ACCT, m_data.Account()};
    case 3:
        return {CCommand::USER, m_data.FirewallUser()};
    case 4:
        return {CCommand::PASS, m_data.FirewallPassword()};
    case 5:
        return {CCommand::SITE, m_remoteHost};
    case 6:
        return {CCommand::USER, user + "@" + m_remoteHost};
    case 7:
        return {CCommand::OPEN, m_remoteHost};
    case 8:
        return {CCommand::USER, m_data.FirewallUser() + "@" + m_remoteHost};
    case 9:
        return {CCommand::USER, user + "@" + m_remoteHost + " " + m_data.FirewallUser()};
    case 10:
        return {CCommand::USER, user + "@" + m_data.FirewallUser() + "@" + m_remoteHost};
    default:
        return {CCommand::PASS, m_data.Password() + "@" + m_data.FirewallPassword()};
    }
}

} // namespace nsFTP
