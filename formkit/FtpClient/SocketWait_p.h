// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <poll.h>

namespace nsSocket {

class CInterruption;

/// A wait for one handle of the system.
class SocketWait
{
public:
    enum Outcome {
        Ready,
        TimeOver,
        Interrupted, ///< by the interruption, and not ready
        Signal,      ///< by a signal
        Failed       ///< errno tells why
    };

    /// The events are poll()'s.
    SocketWait(int descriptor, short events, const CInterruption *interruption = nullptr);

    /// Waits so many seconds, for ever when they are negative. A signal neither ends the wait nor
    /// lengthens it.
    Outcome last(int seconds) const { return wait(seconds, false); }
    /// The same, but a signal ends it.
    Outcome untilSignal(int seconds) const { return wait(seconds, true); }

private:
    Outcome wait(int seconds, bool untilSignal) const;
    Outcome once(int milliseconds) const;

    const int m_descriptor;
    const short m_events;
    const int m_interruption;
};

/// Throws the operation's name with an error number.
[[noreturn]] void fail(const char *operation, int error);
/// Does so with the number that belongs to a wait's outcome, unless that is Ready.
void failUnlessReady(SocketWait::Outcome outcome, const char *operation);

} // namespace nsSocket
