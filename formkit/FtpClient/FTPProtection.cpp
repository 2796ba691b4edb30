// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPProtection_p.h"

namespace nsFTP {

namespace {

constexpr size_t LongestQuote = 200;

CFTPSecurity wantedOf(const ControlConnection &control)
{
    if (const nsSocket::ISecureSocket *socket = control.secure())
        return socket->Security();
    CFTPSecurity none;
    none.mode = CFTPSecurity::None;
    return none;
}

} // namespace

Protection::Protection(ControlConnection &control, const Observers &observers)
    : m_control(control), m_observers(observers), m_wanted(wantedOf(control))
{
}

bool Protection::ask(const char *command, const std::string &argument, const char *refusal)
{
    CReply reply;
    if (!m_control.exchange(command, {argument}, reply))
        return false;
    if (reply.Code().IsPositiveCompletionReply())
        return true;
    m_observers.report(refusal + reply.Value().substr(0, LongestQuote), ReportAt::Security);
    m_control.close();
    return false;
}

bool Protection::beforeGreeting()
{
    return m_wanted.mode != CFTPSecurity::Implicit || m_control.startTls();
}

bool Protection::afterGreeting()
{
    return m_wanted.mode != CFTPSecurity::Explicit ||
           (ask("AUTH", "TLS", "The server has no TLS, and nothing is sent in clear: ") &&
            m_control.startTls());
}

bool Protection::afterLogon()
{
    if (m_wanted.mode == CFTPSecurity::None)
        return true;
    const char *const refusal = m_wanted.clearData
                                    ? "The server does not take data in clear: "
                                    : "The server does not protect data, and none are sent in "
                                      "clear: ";
    // Servers want PBSZ 0 before PROT. What they reply to it does not matter: PROT decides.
    CReply reply;
    if (!m_control.exchange("PBSZ", {"0"}, reply) ||
        !ask("PROT", m_wanted.clearData ? "C" : "P", refusal))
        return false;
    m_control.session.protectsData = !m_wanted.clearData;
    return true;
}

bool Protection::atTheEnd()
{
    return m_wanted.mode == CFTPSecurity::None || !m_wanted.clearControl ||
           (ask("CCC", "", "The server goes on with TLS after the logon: ") && m_control.endTls());
}

} // namespace nsFTP
