// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <string>
#include <vector>

namespace nsFTP {

/// The user name of those who have no account.
constexpr char ANONYMOUS_USER[] = "anonymous";

/// How to log on through a firewall; docs/ftp.md has the commands of each kind.
class FORMKITFTP_EXPORT CFirewallType
{
public:
    /// The kinds, in the order of that page.
    enum TFirewallTypeEnum : int {
        NoFirewall = 0,
        SiteHostName = 1,
        UserAfterLogon = 2,
        ProxyOpen = 3,
        Transparent = 4,
        UserWithNoLogon = 5,
        UserFireIDatRemotehost = 6,
        UserRemoteIDatRemoteHostFireID = 7,
        UserRemoteIDatFireIDatRemoteHost = 8
    };
    /// Turns into its value and back by itself.
    CFirewallType(TFirewallTypeEnum type = NoFirewall) : m_enType(type) {}
    operator TFirewallTypeEnum() const { return m_enType; }
    /// The text for a user: "proxy OPEN".
    std::string AsDisplayString() const;
    /// The text for settings: "PROXY_OPEN".
    std::string AsStorageString() const;
    /// Replaces the vector's content by all nine kinds, in the order of their values.
    static void GetAllTypes(std::vector<CFirewallType> &types);

private:
    TFirewallTypeEnum m_enType;
};

/// Where and as whom to log on. Login() refuses CR, LF and NUL in any field.
class FORMKITFTP_EXPORT CLogonInfo
{
public:
    /// Port 21, user "anonymous", no firewall (its port 21), all else empty.
    CLogonInfo();
    CLogonInfo(const std::string &host, unsigned short port = 21,
               const std::string &user = ANONYMOUS_USER, const std::string &password = {},
               const std::string &account = {});
    CLogonInfo(const std::string &host, unsigned short port, const std::string &user,
               const std::string &password, const std::string &account,
               const std::string &firewallHost, const std::string &firewallUser,
               const std::string &firewallPassword, unsigned short firewallPort,
               const CFirewallType &firewallType);

    /// SetHost() replaces all fields of the host, SetFirewall() all those of the firewall.
    void SetHost(const std::string &host, unsigned short port = 21,
                 const std::string &user = ANONYMOUS_USER, const std::string &password = {},
                 const std::string &account = {});
    void SetFirewall(const std::string &host, const std::string &user, const std::string &password,
                     unsigned short port, const CFirewallType &type);

    /// The fields as they were given.
    const std::string &HostName() const { return m_strHostName; }
    unsigned short HostPort() const { return m_nHostPort; }
    const std::string &UserName() const { return m_strUserName; }
    const std::string &Password() const { return m_strPassword; }
    const std::string &Account() const { return m_strAccount; }
    const std::string &FirewallHost() const { return m_strFirewallHost; }
    const std::string &FirewallUser() const { return m_strFirewallUser; }
    const std::string &FirewallPassword() const { return m_strFirewallPassword; }
    unsigned short FirewallPort() const { return m_nFirewallPort; }
    const CFirewallType &FirewallType() const { return m_FirewallType; }

private:
    std::string m_strHostName;
    unsigned short m_nHostPort = 21;
    std::string m_strUserName = ANONYMOUS_USER;
    std::string m_strPassword;
    std::string m_strAccount;
    std::string m_strFirewallHost;
    std::string m_strFirewallUser;
    std::string m_strFirewallPassword;
    unsigned short m_nFirewallPort = 21;
    CFirewallType m_FirewallType;
};

} // namespace nsFTP
