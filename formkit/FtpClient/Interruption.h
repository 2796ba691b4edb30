// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <atomic>

namespace nsSocket {

/// Ends the waits of sockets from another thread: once it is raised, each wait of a socket that
/// was given it ends at once, also one that begins later, until it is cleared.
class FORMKITFTP_EXPORT CInterruption
{
public:
    /// Takes two handles of the system. When there are none left it ends no wait.
    CInterruption();
    CInterruption(const CInterruption &) = delete;
    CInterruption &operator=(const CInterruption &) = delete;
    ~CInterruption();

    /// From any thread, as often as wished; but not beside Clear().
    void Raise();
    /// Waits are as before.
    void Clear();
    bool IsRaised() const { return m_bRaised; }
    /// Readable while it is raised, for poll() and select(); -1 when it ends no wait.
    int Descriptor() const { return m_Ends[0]; }

private:
    std::atomic<bool> m_bRaised{false};
    int m_Ends[2] = {-1, -1};
};

} // namespace nsSocket
