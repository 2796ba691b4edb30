// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/Interruption.h"

#include <fcntl.h>
#include <unistd.h>

namespace nsSocket {

CInterruption::CInterruption()
{
    if (::pipe(m_Ends) != 0)
        return;
    for (const int end : m_Ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, ::fcntl(end, F_GETFL) | O_NONBLOCK);
    }
}

CInterruption::~CInterruption()
{
    for (const int end : m_Ends) {
        if (end >= 0)
            ::close(end);
    }
}

void CInterruption::Raise()
{
    // An empty pipe always has room for one byte.
    if (!m_bRaised.exchange(true) && m_Ends[1] >= 0)
        m_bRaised = ::write(m_Ends[1], "x", 1) == 1;
}

void CInterruption::Clear()
{
    char byte = 0;
    if (m_bRaised && ::read(m_Ends[0], &byte, 1) <= 1)
        m_bRaised = false;
}

} // namespace nsSocket
