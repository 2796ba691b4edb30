// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPLogonInfo.h"

#include "formkit/FtpClient/FTPTextOf_p.h"

namespace nsFTP {

namespace {

constexpr int FirewallTypes = 9;

} // namespace

std::string CFirewallType::AsDisplayString() const
{
    return textOf<FirewallTypes>({"no firewall", "SITE hostname", "USER after logon", "proxy OPEN",
                                  "Transparent", "USER with no logon", "USER fireID@remotehost",
                                  "USER remoteID@remotehost fireID",
                                  "USER remoteID@fireID@remotehost"},
                                 m_enType);
}

std::string CFirewallType::AsStorageString() const
{
    return textOf<FirewallTypes>({"NO_FIREWALL", "SITE_HOSTNAME", "USER_AFTER_LOGON", "PROXY_OPEN",
                                  "TRANSPARENT", "USER_WITH_NO_LOGON", "USER_FIREID@REMOTEHOST",
                                  "USER_REMOTEID@REMOTEHOST_FIREID",
                                  "USER_REMOTEID@FIREID@REMOTEHOST"},
                                 m_enType);
}

void CFirewallType::GetAllTypes(std::vector<CFirewallType> &types)
{
    types.clear();
    for (int value = 0; value < FirewallTypes; ++value)
        types.emplace_back(TFirewallTypeEnum(value));
}

CLogonInfo::CLogonInfo() = default;

CLogonInfo::CLogonInfo(const std::string &host, unsigned short port, const std::string &user,
                       const std::string &password, const std::string &account)
{
    SetHost(host, port, user, password, account);
}

CLogonInfo::CLogonInfo(const std::string &host, unsigned short port, const std::string &user,
                       const std::string &password, const std::string &account,
                       const std::string &firewallHost, const std::string &firewallUser,
                       const std::string &firewallPassword, unsigned short firewallPort,
                       const CFirewallType &firewallType)
{
    SetHost(host, port, user, password, account);
    SetFirewall(firewallHost, firewallUser, firewallPassword, firewallPort, firewallType);
}

void CLogonInfo::SetHost(const std::string &host, unsigned short port, const std::string &user,
                         const std::string &password, const std::string &account)
{
    m_strHostName = host;
    m_nHostPort = port;
    m_strUserName = user;
    m_strPassword = password;
    m_strAccount = account;
}

void CLogonInfo::SetFirewall(const std::string &host, const std::string &user,
                             const std::string &password, unsigned short port,
                             const CFirewallType &type)
{
    m_strFirewallHost = host;
    m_strFirewallUser = user;
    m_strFirewallPassword = password;
    m_nFirewallPort = port;
    m_FirewallType = type;
}

} // namespace nsFTP
