// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <atomic>

namespace nsSocket {

/// Ends the waits of sockets from another thread. From Raise() to Clear() every wait of a socket
/// that was given this object ends at once, also one that begins in that time.
class FORMKITFTP_EXPORT CInterruption
{
public:
    /// Takes two handles of the system. When the system has none left, no wait can be ended.
    CInterruption();
    CInterruption(const CInterruption &) = delete;
    CInterruption &operator=(const CInterruption &) = delete;
    ~CInterruption();

    /// May be called from any thread, and repeatedly, but not at the same time as Clear().
    void Raise();
    /// Waits last again as long as they should.
    void Clear();
    bool IsRaised() const { return m_bRaised; }
    /// A handle for poll() and select(): readable while raised; -1 when no wait can be ended.
    int Descriptor() const { return m_Ends[0]; }

private:
    std::atomic<bool> m_bRaised{false};
    int m_Ends[2] = {-1, -1};
};

} // namespace nsSocket
