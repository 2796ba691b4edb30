// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/FtpClient/BlockingSocket.h>

#include <algorithm>
#include <cerrno>

#include <arpa/inet.h>

inline constexpr char Timeout = '\xff';
inline constexpr char Nothing = '\xfe';

/// What the sockets of a client receive, and what they say of that before.
struct Input
{
    enum Readability { Always, Never, Truthful };

    std::string control;
    std::string data;
    bool byLine = true;
    Readability readability = Always;
};

/// Receives what an input holds: 0xff is a time-out, 0xfe a moment with nothing to read, and each
/// receive ends after a line feed, if it is to go by lines, or with its buffer.
class InputSocket : public nsSocket::IBlockingSocket
{
public:
    InputSocket(Input &input, bool control)
        : m_input(input), m_bytes(control ? input.control : input.data)
    {
    }

    nsSocket::IBlockingSocket *CreateInstance() const override
    {
        return new InputSocket(m_input, false);
    }
    void Create(int /*type*/) override { m_handle = 1; }
    void Connect(const sockaddr * /*psa*/) const override {}
    void Bind(const sockaddr * /*psa*/) const override {}
    void Listen() const override {}
    void Cleanup() override { m_handle = nsSocket::INVALID_SOCKET; }
    bool Accept(nsSocket::IBlockingSocket &connected, sockaddr *psa) const override
    {
        connected.Create();
        GetPeerAddr(psa);
        const bool interrupted = !m_bytes.empty() && m_bytes.front() == Nothing;
        m_bytes.erase(0, interrupted);
        return !interrupted;
    }
    void Close() override { Cleanup(); }
    int Write(const char * /*data*/, int size, int /*seconds*/) const override { return size; }
    int Receive(char *buffer, int size, int /*seconds*/) const override
    {
        if (m_bytes.empty() || size <= 0)
            return 0;
        if (m_bytes.front() == Timeout || m_bytes.front() == Nothing) {
            const bool timeout = m_bytes.front() == Timeout;
            m_bytes.erase(0, 1);
            errno = timeout ? 0 : ECONNRESET;
            throw nsSocket::CBlockingSocketException(timeout ? "Receive timeout" : "Receive");
        }
        const size_t stop = std::min(m_bytes.find_first_of("\xff\xfe"), m_bytes.size());
        const size_t feed = m_input.byLine ? m_bytes.find('\n') : m_bytes.size();
        const size_t line = std::min(feed, m_bytes.size() - 1) + 1;
        const size_t count = std::min({stop, line, size_t(size)});
        m_bytes.copy(buffer, count);
        m_bytes.erase(0, count);
        return int(count);
    }
    void GetPeerAddr(sockaddr *psa) const override
    {
        auto *address = reinterpret_cast<sockaddr_in *>(psa);
        *address = {};
        address->sin_family = AF_INET;
        address->sin_addr.s_addr = htonl(0x7f000001);
    }
    void GetSockAddr(sockaddr *psa) const override { GetPeerAddr(psa); }
    operator nsSocket::SOCKET() const override { return m_handle; }
    bool CheckReadability() const override
    {
        if (m_bytes.empty() || m_bytes.front() != Nothing)
            return m_input.readability == Input::Always ||
                   (m_input.readability == Input::Truthful && !m_bytes.empty());
        m_bytes.erase(0, 1);
        return false;
    }
    sockaddr_in GetHostByName(const char * /*name*/, unsigned short /*port*/) override
    {
        return {};
    }
    const char *GetHostByAddr(const sockaddr * /*psa*/) override { return ""; }

private:
    Input &m_input;
    std::string &m_bytes;
    nsSocket::SOCKET m_handle = nsSocket::INVALID_SOCKET;
};
