// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"

namespace nsFTP {

/// The commands of one logon. The reply to each command decides which one is next.
class Logon
{
public:
    struct Command
    {
        CCommand command;
        std::string argument;
    };

    /// The firewall type must be one of the enumeration; see isKnown().
    explicit Logon(const CLogonInfo &data);

    static bool isKnown(const CFirewallType &type);
    /// Where to connect.
    const std::string &host() const;
    unsigned short port() const;
    /// All commands that may be sent.
    std::vector<Command> commands() const;

    bool isOver() const { return m_step < 0; }
    bool isLoggedOn() const;
    /// The next command.
    Command command() const { return command(m_step); }
    /// Goes to the next command, given the reply to this one, which must be 2xx or 3xx.
    void take(const CReply &reply);

private:
    Command command(int step) const;
    bool hasFirewall() const { return m_data.FirewallType() != CFirewallType::NoFirewall; }

    const CLogonInfo m_data;
    std::string m_remoteHost;
    const int *const m_table;
    int m_step = 0;
};

} // namespace nsFTP
