// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPClient.h"

#include <atomic>

namespace nsFTP {

/// What observers get as the `line` of OnInternalError(). Fixed numbers, no lines of the source.
enum class ReportAt {
    OpenControl = 410,
    CloseControl = 432,
    Security = 440,
    Logon = 532,
    Send = 601,
    Argument = 612,
    Receive = 655,
    ReplyLimit = 668,
    OutOfStep = 676,
    Passive = 921,
    Active = 968,
    ForeignPeer = 972,
    Transfer = 1089,
    CreateData = 1120,
    CloseData = 1131,
    LocalFile = 1204,
    Offset = 1230,
    Between = 1260
};

/// The observers of a client.
class Observers
{
public:
    using CNotification = CFTPClient::CNotification;

    /// Calls each observer in the order of their addresses. Observers may be attached, detached and
    /// destroyed meanwhile.
    template <typename Call> void tell(Call call) const;
    /// True within a call of an observer.
    bool areTold() const { return m_depth > 0; }
    void report(const std::string &message, ReportAt place) const;
    void report(const nsSocket::CBlockingSocketException &exception, ReportAt place) const;

    CFTPClient::TObserverSet set;

private:
    /// A number, since an observer's call can lead to another's.
    mutable std::atomic<int> m_depth{0};
};

template <typename Call> void Observers::tell(Call call) const
{
    struct Scope
    {
        explicit Scope(std::atomic<int> &depth) : m_depth(depth) { ++m_depth; }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;
        ~Scope() { --m_depth; }

        std::atomic<int> &m_depth;
    } const scope(m_depth);
    for (auto it = set.begin(); it != set.end();) {
        CNotification *const observer = *it;
        call(*observer);
        it = set.upper_bound(observer);
    }
}

} // namespace nsFTP
