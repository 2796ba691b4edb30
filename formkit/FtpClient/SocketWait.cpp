// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/SocketWait_p.h"

#include "formkit/FtpClient/BlockingSocket.h"
#include "formkit/FtpClient/Interruption.h"

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace nsSocket {

SocketWait::SocketWait(int descriptor, short events, const CInterruption *interruption)
    : m_descriptor(descriptor)
    , m_events(events)
    , m_interruption(interruption ? interruption->Descriptor() : -1)
{
}

SocketWait::Outcome SocketWait::once(int milliseconds) const
{
    // A negative handle is passed over.
    pollfd entries[] = {{m_descriptor, m_events, 0}, {m_interruption, POLLIN, 0}};
    const int count = ::poll(entries, 2, milliseconds);
    if (count < 0)
        return errno == EINTR ? Signal : Failed;
    if (entries[0].revents & POLLNVAL) {
        errno = EBADF;
        return Failed;
    }
    if (entries[0].revents != 0)
        return Ready;
    return count > 0 ? Interrupted : TimeOver;
}

SocketWait::Outcome SocketWait::wait(int seconds, bool untilSignal) const
{
    using Clock = std::chrono::steady_clock;
    constexpr long long LongestPoll = 1000000000;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(std::max(seconds, 0));
    for (;;) {
        long long left = LongestPoll + 1;
        if (seconds >= 0)
            left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        const Outcome outcome = once(int(std::clamp(left, 0LL, LongestPoll)));
        const bool goesOn =
            outcome == Signal ? !untilSignal : outcome == TimeOver && left > LongestPoll;
        if (!goesOn)
            return outcome;
    }
}

void fail(const char *operation, int error)
{
    errno = error;
    throw CBlockingSocketException(operation);
}

void failUnlessReady(SocketWait::Outcome outcome, const char *operation)
{
    if (outcome == SocketWait::TimeOver)
        fail(operation, ETIMEDOUT);
    if (outcome == SocketWait::Interrupted)
        fail(operation, ECANCELED);
    if (outcome != SocketWait::Ready)
        throw CBlockingSocketException(operation);
}

} // namespace nsSocket
