// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPAddress_p.h"

#include "formkit/FtpClient/InternetSocket.h"

#include <cerrno>
#include <cstring>

#include <arpa/inet.h>

using nsSocket::IBlockingSocket;
using nsSocket::IInternetSocket;

namespace nsFTP {

namespace {

sockaddr_storage storageOf(const sockaddr_in &address)
{
    sockaddr_storage storage = {};
    std::memcpy(&storage, &address, sizeof address);
    return storage;
}

} // namespace

Address::Address(unsigned int ipAddress, unsigned short port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(ipAddress);
    m_storage = storageOf(address);
}

Address Address::any(int family)
{
    Address address;
    address.m_storage.ss_family = sa_family_t(family);
    return address;
}

Address Address::peerOf(const IBlockingSocket &socket)
{
    Address address;
    if (const auto *internet = dynamic_cast<const IInternetSocket *>(&socket)) {
        internet->GetPeerAddress(&address.m_storage);
    } else {
        sockaddr_in peer = {};
        socket.GetPeerAddr(reinterpret_cast<sockaddr *>(&peer));
        address.m_storage = storageOf(peer);
    }
    return address;
}

Address Address::ownOf(const IBlockingSocket &socket)
{
    Address address;
    if (const auto *internet = dynamic_cast<const IInternetSocket *>(&socket)) {
        internet->GetSockAddress(&address.m_storage);
    } else {
        sockaddr_in own = {};
        socket.GetSockAddr(reinterpret_cast<sockaddr *>(&own));
        address.m_storage = storageOf(own);
    }
    return address;
}

unsigned short Address::port() const
{
    // In both families the port follows the family.
    return ntohs(reinterpret_cast<const sockaddr_in &>(m_storage).sin_port);
}

void Address::setPort(unsigned short port)
{
    reinterpret_cast<sockaddr_in &>(m_storage).sin_port = htons(port);
}

std::string Address::host() const
{
    char text[INET6_ADDRSTRLEN] = {};
    if (family() == AF_INET6)
        ::inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6 &>(m_storage).sin6_addr, text,
                    sizeof text);
    else
        ::inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in &>(m_storage).sin_addr, text,
                    sizeof text);
    return text;
}

bool Address::isThisNetwork() const
{
    const auto &ipv4 = reinterpret_cast<const sockaddr_in &>(m_storage);
    return family() == AF_INET && ntohl(ipv4.sin_addr.s_addr) >> 24 == 0;
}

void createFor(IBlockingSocket &socket, int family)
{
    auto *internet = dynamic_cast<IInternetSocket *>(&socket);
    if (family != AF_INET6) {
        socket.Create(SOCK_STREAM);
    } else if (internet) {
        internet->CreateFor(family);
    } else {
        errno = EAFNOSUPPORT;
        throw nsSocket::CBlockingSocketException("Create");
    }
}

} // namespace nsFTP
