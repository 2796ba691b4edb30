// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/InternetSocket.h"

#include "formkit/FtpClient/FTPAssert_p.h"

#include <QScopeGuard>

#include <cerrno>
#include <chrono>

namespace nsSocket {

namespace {

using Clock = std::chrono::steady_clock;
int familyOf(TAddressFamily family)
{
    if (family == TAddressFamily::Any)
        return AF_UNSPEC;
    return family == TAddressFamily::IPv4 ? AF_INET : AF_INET6;
}

int countOf(const addrinfo *address)
{
    return address ? 1 + countOf(address->ai_next) : 0;
}

} // namespace

IInternetSocket::~IInternetSocket() = default;

IBlockingSocket *CInternetSocket::CreateInstance() const
{
    return Equipped(new CInternetSocket(m_Family));
}

void CInternetSocket::ConnectToHost(const char *host, unsigned short port)
{
    FTP_ASSERT(host, "pchName != NULL");
    const int limit = WaitLimit();
    const auto restored = qScopeGuard([&] { SetWaitLimit(limit); });
    const auto addresses = LookUp(host, port, familyOf(m_Family));
    const Clock::time_point end = Clock::now() + std::chrono::seconds(std::max(limit, 0));
    for (const addrinfo *address = addresses.get(); address; address = address->ai_next) {
        // An address that does not answer leaves time for those after it.
        const auto left = std::chrono::ceil<std::chrono::seconds>(end - Clock::now()).count();
        if (limit > 0)
            SetWaitLimit(std::max(1, int(left) / countOf(address)));
        try {
            CreateFor(address->ai_family);
            Connect(address->ai_addr);
            return;
        } catch (const CBlockingSocketException &exception) {
            Cleanup();
            if (exception.GetErrorNumber() == ECANCELED || !address->ai_next)
                throw;
        }
    }
}

void CInternetSocket::CreateFor(int family, int type)
{
    Open(family, type);
}

void CInternetSocket::GetPeerAddress(sockaddr_storage *psa) const
{
    FTP_ASSERT(psa, "psa != NULL");
    socklen_t length = sizeof *psa;
    if (::getpeername(int(operator SOCKET()), reinterpret_cast<sockaddr *>(psa), &length) != 0)
        throw CBlockingSocketException("GetPeerName");
}

void CInternetSocket::GetSockAddress(sockaddr_storage *psa) const
{
    FTP_ASSERT(psa, "psa != NULL");
    socklen_t length = sizeof *psa;
    if (::getsockname(int(operator SOCKET()), reinterpret_cast<sockaddr *>(psa), &length) != 0)
        throw CBlockingSocketException("GetSockName");
}

std::shared_ptr<IBlockingSocket> CreateInternetSocketInstance(TAddressFamily family)
{
    return std::make_shared<CInternetSocket>(family);
}

} // namespace nsSocket
