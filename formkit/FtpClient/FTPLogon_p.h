// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"

namespace nsFTP {

/// The way through a logon: the commands of a firewall type, each chosen by the reply to the one
/// before.
class Logon
{
public:
    struct Command
    {
        CCommand command;
        std::string argument;
    };

    /// The data's firewall type must be one of the enumeration.
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
    /// Takes its reply, which is positive: 2xx or 3xx.
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
