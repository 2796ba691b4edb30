// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/BlockingSocket.h"

#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/HostLookup_p.h"
#include "formkit/FtpClient/SocketWait_p.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <netinet/tcp.h>
#include <unistd.h>

namespace nsSocket {

namespace {

constexpr socklen_t AddressLength = 16;
static_assert(sizeof(sockaddr_in) == AddressLength, "IPv4 addresses have sixteen bytes");

#ifdef MSG_NOSIGNAL
constexpr int SendFlags = MSG_NOSIGNAL;
#else
constexpr int SendFlags = 0; // SO_NOSIGPIPE is set on the handle instead
#endif

socklen_t lengthOf(const sockaddr *psa)
{
    return psa->sa_family == AF_INET6 ? sizeof(sockaddr_in6) : AddressLength;
}

bool wouldBlock(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK;
}

// Runs a transfer call on a non-blocking handle, waiting when it asks for that. A wait that
// fails is not treated specially: the call that follows reports.
template <typename Call>
int transfer(const SocketWait &wait, int seconds, const char *timeout, const char *operation,
             Call call)
{
    bool waited = false;
    for (;;) {
        const ssize_t count = call();
        if (count >= 0)
            return int(count);
        if (errno == EINTR)
            continue;
        if (!wouldBlock(errno) || waited)
            throw CBlockingSocketException(operation);
        const SocketWait::Outcome outcome = wait.last(std::max(seconds, 0));
        if (outcome == SocketWait::TimeOver)
            fail(timeout, 0);
        if (outcome == SocketWait::Interrupted)
            fail(operation, ECANCELED);
        waited = outcome == SocketWait::Failed;
    }
}

// What every handle is set to: waits are ours to bound, children do not inherit it, and a
// closed peer raises no signal.
void prepare(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
#ifdef SO_NOSIGPIPE
    const int on = 1;
    ::setsockopt(descriptor, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
    // Routers forget connections that are silent for some minutes, as a control connection is
    // during a long transfer.
    const int seconds = 45;
    ::setsockopt(descriptor, SOL_SOCKET, SO_KEEPALIVE, &seconds, sizeof seconds);
#ifdef TCP_KEEPIDLE
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_KEEPIDLE, &seconds, sizeof seconds);
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_KEEPINTVL, &seconds, sizeof seconds);
#else
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_KEEPALIVE, &seconds, sizeof seconds);
#endif
}

} // namespace

CBlockingSocketException::CBlockingSocketException(const char *message) : m_nError(errno)
{
    FTP_ASSERT(message, "pchMessage != NULL");
    m_strMessage = message;
}

CBlockingSocketException::~CBlockingSocketException() = default;

bool CBlockingSocketException::GetErrorMessage(char *buffer, unsigned int size,
                                               unsigned int * /*helpContext*/) const
{
    const size_t needed = m_strMessage.size() + (m_nError != 0 ? 18 : 7);
    if (size < needed)
        return false;
    if (m_nError != 0)
        std::snprintf(buffer, size, "%s error 0x%08x", m_strMessage.c_str(), unsigned(m_nError));
    else
        std::snprintf(buffer, size, "%s error", m_strMessage.c_str());
    return true;
}

std::string CBlockingSocketException::GetErrorMessage(unsigned int *helpContext) const
{
    std::array<char, 512> text = {};
    GetErrorMessage(text.data(), unsigned(text.size()), helpContext);
    return text.data();
}

IBlockingSocket::~IBlockingSocket() = default;

void IBlockingSocket::SetWaitLimit(int /*seconds*/) {}

void IBlockingSocket::SetInterruption(const std::shared_ptr<const CInterruption> & /*interruption*/)
{
}

CBlockingSocket::~CBlockingSocket()
{
    CBlockingSocket::Cleanup();
}

int CBlockingSocket::descriptor() const
{
    FTP_ASSERT(m_hSocket != INVALID_SOCKET, "m_hSocket!=INVALID_SOCKET");
    return int(m_hSocket);
}

IBlockingSocket *CBlockingSocket::CreateInstance() const
{
    return Equipped(new CBlockingSocket);
}

IBlockingSocket *CBlockingSocket::Equipped(CBlockingSocket *instance) const
{
    instance->SetWaitLimit(m_nWaitLimit);
    instance->SetInterruption(m_pInterruption);
    return instance;
}

void CBlockingSocket::SetInterruption(const std::shared_ptr<const CInterruption> &interruption)
{
    m_pInterruption = interruption;
}

void CBlockingSocket::Create(int type)
{
    Open(AF_INET, type);
}

void CBlockingSocket::Open(int family, int type)
{
    FTP_ASSERT(m_hSocket == INVALID_SOCKET, "m_hSocket==INVALID_SOCKET");
    const int made = ::socket(family, type, 0);
    if (made < 0)
        throw CBlockingSocketException("Create");
    prepare(made);
    m_hSocket = SOCKET(made);
}

void CBlockingSocket::Bind(const sockaddr *psa) const
{
    const int handle = descriptor();
    FTP_ASSERT(psa, "psa != NULL");
    if (::bind(handle, psa, lengthOf(psa)) != 0)
        throw CBlockingSocketException("Bind");
}

void CBlockingSocket::Listen() const
{
    if (::listen(descriptor(), 5) != 0)
        throw CBlockingSocketException("Listen");
}

bool CBlockingSocket::Accept(IBlockingSocket &connected, sockaddr *psa) const
{
    const int handle = descriptor();
    FTP_ASSERT(psa, "psa != NULL");
    FTP_ASSERT(connected.operator SOCKET() == INVALID_SOCKET,
               "sConnect.operator SOCKET() == INVALID_SOCKET");
    auto *target = dynamic_cast<CBlockingSocket *>(&connected);
    FTP_ASSERT(target, "pConnect != NULL");
    const SocketWait wait(handle, POLLIN, m_pInterruption.get());
    for (;;) {
        socklen_t length = AddressLength;
        const int made = ::accept(handle, psa, &length);
        if (made >= 0) {
            prepare(made);
            target->m_hSocket = SOCKET(made);
            return true;
        }
        if (errno == EINTR)
            return false;
        if (!wouldBlock(errno))
            throw CBlockingSocketException("Accept");
        const SocketWait::Outcome outcome = wait.untilSignal(m_nWaitLimit);
        if (outcome == SocketWait::Signal)
            return false;
        failUnlessReady(outcome, "Accept");
    }
}

void CBlockingSocket::Connect(const sockaddr *psa) const
{
    const int handle = descriptor();
    FTP_ASSERT(psa, "psa != NULL");
    if (::connect(handle, psa, lengthOf(psa)) == 0)
        return;
    if (errno != EINPROGRESS && errno != EINTR)
        throw CBlockingSocketException("Connect");
    const SocketWait wait(handle, POLLOUT, m_pInterruption.get());
    failUnlessReady(wait.last(m_nWaitLimit), "Connect");
    int error = 0;
    socklen_t length = sizeof error;
    if (::getsockopt(handle, SOL_SOCKET, SO_ERROR, &error, &length) != 0 || error != 0)
        fail("Connect", error != 0 ? error : errno);
}

void CBlockingSocket::Close()
{
    if (m_hSocket == INVALID_SOCKET)
        return;
    // An interrupted close has let go of the handle: closing again could hit another's.
    if (::close(int(m_hSocket)) != 0 && errno != EINTR)
        throw CBlockingSocketException("Close");
    m_hSocket = INVALID_SOCKET;
}

void CBlockingSocket::Cleanup()
{
    if (m_hSocket != INVALID_SOCKET)
        ::close(int(m_hSocket));
    m_hSocket = INVALID_SOCKET;
}

int CBlockingSocket::Write(const char *data, int size, int seconds) const
{
    int sent = 0;
    while (sent < size)
        sent += Send(data + sent, size - sent, seconds);
    return sent;
}

int CBlockingSocket::Send(const char *data, int size, int seconds) const
{
    const int handle = descriptor();
    FTP_ASSERT(data, "pch != NULL");
    return transfer({handle, POLLOUT, m_pInterruption.get()}, seconds, "Send timeout", "Send",
                    [=] { return ::send(handle, data, size_t(std::max(size, 0)), SendFlags); });
}

int CBlockingSocket::Receive(char *buffer, int size, int seconds) const
{
    const int handle = descriptor();
    FTP_ASSERT(buffer, "pch != NULL");
    if (size <= 0)
        return 0;
    return transfer({handle, POLLIN, m_pInterruption.get()}, seconds, "Receive timeout", "Receive",
                    [=] { return ::recv(handle, buffer, size_t(size), 0); });
}

int CBlockingSocket::ReceiveDatagram(char *buffer, int size, sockaddr *psa, int seconds) const
{
    const int handle = descriptor();
    FTP_ASSERT(buffer, "pch != NULL");
    FTP_ASSERT(psa, "psa != NULL");
    return transfer({handle, POLLIN, m_pInterruption.get()}, seconds, "Receive timeout",
                    "ReceiveDatagram", [=] {
                        socklen_t length = AddressLength;
                        return ::recvfrom(handle, buffer, size_t(std::max(size, 0)), 0, psa,
                                          &length);
                    });
}

int CBlockingSocket::SendDatagram(const char *data, int size, const sockaddr *psa,
                                  int seconds) const
{
    const int handle = descriptor();
    FTP_ASSERT(data, "pch != NULL");
    FTP_ASSERT(psa, "psa != NULL");
    return transfer(
        {handle, POLLOUT, m_pInterruption.get()}, seconds, "Send timeout", "SendDatagram", [=] {
            return ::sendto(handle, data, size_t(std::max(size, 0)), SendFlags, psa, AddressLength);
        });
}

void CBlockingSocket::GetPeerAddr(sockaddr *psa) const
{
    const int handle = descriptor();
    FTP_ASSERT(psa, "psa != NULL");
    socklen_t length = AddressLength;
    if (::getpeername(handle, psa, &length) != 0)
        throw CBlockingSocketException("GetPeerName");
}

void CBlockingSocket::GetSockAddr(sockaddr *psa) const
{
    const int handle = descriptor();
    FTP_ASSERT(psa, "psa != NULL");
    socklen_t length = AddressLength;
    if (::getsockname(handle, psa, &length) != 0)
        throw CBlockingSocketException("GetSockName");
}

bool CBlockingSocket::CheckReadability() const
{
    const SocketWait::Outcome outcome = SocketWait(descriptor(), POLLIN).last(0);
    if (outcome == SocketWait::Failed)
        throw CBlockingSocketException("Socket Error");
    return outcome == SocketWait::Ready;
}

std::shared_ptr<const addrinfo> CBlockingSocket::LookUp(const char *name, unsigned short port,
                                                        int family) const
{
    addrinfo wanted = {};
    wanted.ai_family = family;
    wanted.ai_socktype = SOCK_STREAM;
    return lookUpHost(name, port, wanted, m_pInterruption, m_nWaitLimit);
}

sockaddr_in CBlockingSocket::GetHostByName(const char *name, unsigned short port)
{
    FTP_ASSERT(name, "pchName != NULL");
    const auto found = LookUp(name, port, AF_INET);
    sockaddr_in first = {};
    std::memcpy(&first, found->ai_addr, sizeof first);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr = first.sin_addr;
    return address;
}

const char *CBlockingSocket::GetHostByAddr(const sockaddr *psa)
{
    FTP_ASSERT(psa, "psa != NULL");
    static thread_local std::array<char, NI_MAXHOST> name;
    sockaddr_in given = {};
    std::memcpy(&given, psa, sizeof given);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr = given.sin_addr;
    errno = 0;
    const int error = ::getnameinfo(reinterpret_cast<const sockaddr *>(&address), AddressLength,
                                    name.data(), name.size(), nullptr, 0, NI_NAMEREQD);
    if (error != 0)
        fail("GetHostByAddr", error == EAI_SYSTEM ? errno : 0);
    return name.data();
}

std::shared_ptr<IBlockingSocket> CreateDefaultBlockingSocketInstance()
{
    return std::make_shared<CBlockingSocket>();
}

} // namespace nsSocket
