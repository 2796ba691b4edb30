// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/BlockingSocket.h"

namespace nsSocket {

/// Which addresses of a host are tried.
enum class TAddressFamily { Any, IPv4, IPv6 };

/// What a socket that knows IPv6, too, offers beside IBlockingSocket. CFTPClient asks its socket
/// for this interface with dynamic_cast.
class FORMKITFTP_EXPORT IInternetSocket
{
public:
    virtual ~IInternetSocket();
    /// Makes a stream socket and connects it to the first of a host's addresses that answers. All
    /// attempts together take no longer than IBlockingSocket::SetWaitLimit() says. The object must
    /// not hold a socket. If no address answers, throws as GetHostByName(), Create() and Connect()
    /// do, for the last address.
    virtual void ConnectToHost(const char *host, unsigned short port) = 0;
    /// As Create(), for AF_INET or AF_INET6. Connect() and Bind() then take addresses of that
    /// family.
    virtual void CreateFor(int family, int type = SOCK_STREAM) = 0;
    /// As GetPeerAddr() and GetSockAddr(), for both families.
    virtual void GetPeerAddress(sockaddr_storage *psa) const = 0;
    virtual void GetSockAddress(sockaddr_storage *psa) const = 0;
};

/// A socket of the system for IPv4 and IPv6. Its sockaddr_in operations are for IPv4.
class FORMKITFTP_EXPORT CInternetSocket : public CBlockingSocket, public IInternetSocket
{
public:
    /// The family is that of hosts in ConnectToHost().
    explicit CInternetSocket(TAddressFamily family = TAddressFamily::Any) : m_Family(family) {}

    IBlockingSocket *CreateInstance() const override;
    void ConnectToHost(const char *host, unsigned short port) override;
    void CreateFor(int family, int type = SOCK_STREAM) override;
    /// Throws "GetPeerName".
    void GetPeerAddress(sockaddr_storage *psa) const override;
    /// Throws "GetSockName".
    void GetSockAddress(sockaddr_storage *psa) const override;

private:
    const TAddressFamily m_Family;
};

/// A new CInternetSocket without a handle, for CFTPClient's constructor.
FORMKITFTP_EXPORT std::shared_ptr<IBlockingSocket>
CreateInternetSocketInstance(TAddressFamily family = TAddressFamily::Any);

} // namespace nsSocket
