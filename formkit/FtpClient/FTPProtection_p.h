// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPControl_p.h"

namespace nsFTP {

/// Asks the server for the protection that the socket's CFTPSecurity describes, in four steps of a
/// logon. Without a CFTPSecurity the steps do nothing. When the server does not agree, a step
/// reports why, closes the session and gives false.
class Protection
{
public:
    Protection(ControlConnection &control, const Observers &observers);

    /// Begins TLS in the mode Implicit.
    bool beforeGreeting();
    /// Sends AUTH TLS and begins TLS, in the mode Explicit.
    bool afterGreeting();
    /// Sends PBSZ and PROT.
    bool afterLogon();
    /// Sends CCC and ends TLS on the control connection, if clearControl is set. The last step:
    /// from then on names cross the network in clear.
    bool atTheEnd();

private:
    bool ask(const char *command, const std::string &argument, const char *refusal);

    ControlConnection &m_control;
    const Observers &m_observers;
    const CFTPSecurity m_wanted;
};

} // namespace nsFTP
