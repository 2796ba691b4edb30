// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPControl_p.h"

namespace nsFTP {

/// Asks a server for what the socket's CFTPSecurity says, step by step; nothing when the socket has
/// none. A step gives false, reports why, and closes the session when the server does not agree.
class Protection
{
public:
    Protection(ControlConnection &control, const Observers &observers);

    bool beforeGreeting();
    bool afterGreeting();
    bool afterLogon();
    /// When no more secrets are sent.
    bool atTheEnd();

private:
    bool ask(const char *command, const std::string &argument, const char *refusal);

    ControlConnection &m_control;
    const Observers &m_observers;
    const CFTPSecurity m_wanted;
};

} // namespace nsFTP
