// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/BlockingSocket.h"

namespace nsFTP {

/// An address of IPv4 or IPv6 and a port, in host byte order.
class Address
{
public:
    Address() = default;
    Address(unsigned int ipAddress, unsigned short port);
    /// Any address of the machine, and any port.
    static Address any(int family);
    /// Those of a connected socket; of IPv4 unless the socket is an IInternetSocket. Throw as
    /// GetPeerAddr() and GetSockAddr() do.
    static Address peerOf(const nsSocket::IBlockingSocket &socket);
    static Address ownOf(const nsSocket::IBlockingSocket &socket);

    int family() const { return m_storage.ss_family; }
    unsigned short port() const;
    void setPort(unsigned short port);
    /// "192.168.0.5", "fe80::1".
    std::string host() const;
    /// 0.x.x.x, which is no address of a host: the system would take it for the machine itself.
    bool isThisNetwork() const;
    bool isSameHost(const Address &other) const { return host() == other.host(); }
    const sockaddr *generic() const { return reinterpret_cast<const sockaddr *>(&m_storage); }

private:
    sockaddr_storage m_storage = {};
};

/// Makes a stream socket for a family; throws as Create() does, and when the socket does not know
/// the family.
void createFor(nsSocket::IBlockingSocket &socket, int family);

} // namespace nsFTP
