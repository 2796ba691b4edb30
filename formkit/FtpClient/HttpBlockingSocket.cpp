// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/BlockingSocket.h"
#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/SocketWait_p.h"

#include <algorithm>
#include <cstring>

namespace nsSocket {

namespace {

constexpr int ReadAhead = 1000;

} // namespace

CHttpBlockingSocket::CHttpBlockingSocket() : m_pReadBuf(new char[ReadAhead]()) {}

CHttpBlockingSocket::~CHttpBlockingSocket() = default;

int CHttpBlockingSocket::ReadHttpHeaderLine(char *line, int size, int seconds)
{
    FTP_ASSERT(line, "pch != NULL");
    if (size < 1)
        return 0;
    char *const begin = m_pReadBuf.get();
    char *lineFeed = std::find(begin, begin + m_nBytes, '\n');
    while (lineFeed == begin + m_nBytes) {
        const int count = Receive(begin + m_nBytes, ReadAhead - m_nBytes, seconds);
        if (count < 1)
            fail("ReadHeaderLine", 0);
        m_nBytes += count;
        lineFeed = std::find(lineFeed, begin + m_nBytes, '\n');
    }
    if (lineFeed == begin || lineFeed[-1] != '\r')
        fail("ReadHeaderLine", 0);
    const int length = int(lineFeed - begin) + 1;
    const int copied = std::min(length, size - 1);
    std::memcpy(line, begin, size_t(copied));
    line[copied] = '\0';
    std::memmove(begin, begin + length, size_t(m_nBytes - length));
    // By what was copied, also when the line was cut: callers rely on the count.
    m_nBytes -= copied;
    return copied;
}

int CHttpBlockingSocket::ReadHttpResponse(char *buffer, int size, int seconds)
{
    FTP_ASSERT(buffer, "pch != NULL");
    int total = std::clamp(size, 0, m_nBytes);
    std::memcpy(buffer, m_pReadBuf.get(), size_t(total));
    m_nBytes -= total;
    std::memmove(m_pReadBuf.get(), m_pReadBuf.get() + total, size_t(m_nBytes));
    int count = 0;
    do {
        count = Receive(buffer + total, std::min(ReadAhead, size - total), seconds);
        total += std::max(count, 0);
    } while (count > 0);
    return total;
}

} // namespace nsSocket
