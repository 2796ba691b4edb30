// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>

#include <netdb.h>

namespace nsSocket {

class CInterruption;

/// What getaddrinfo() gave.
using HostAddresses = std::shared_ptr<const addrinfo>;

/// The addresses of a name or dotted text. A name is looked up on a thread of its own, so that the
/// wait lasts no longer than so many seconds (without limit when negative) and can be interrupted.
/// The thread then ends when the system's resolver does, and nobody waits for it. Throws
/// "GetHostByName" with errno as CBlockingSocket::GetHostByName() does.
HostAddresses lookUpHost(const char *name, unsigned short port, const addrinfo &wanted,
                         const std::shared_ptr<const CInterruption> &interruption, int seconds);

} // namespace nsSocket
