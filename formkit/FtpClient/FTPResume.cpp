// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPResume_p.h"

namespace nsFTP {

bool isBinary(const CRepresentation &representation)
{
    return representation.Type() == CType::Image || representation.Type() == CType::LocalByte;
}

void CountedDownload::OnBytesReceived(const std::vector<char> &buffer, long count)
{
    m_received += count;
    m_target.OnBytesReceived(buffer, count);
}

void CountedDownload::OnPreBytesSend(char * /*buffer*/, unsigned long /*bufferSize*/,
                                     unsigned long &bytesToSend)
{
    bytesToSend = 0;
}

bool CountedDownload::beganAgain(bool good) const
{
    if (m_offset == 0 || m_remoteSize < 0)
        return false;
    // A file that grows meanwhile sends more than its rest, too, but hardly all its bytes again.
    return good ? m_received >= m_remoteSize : m_received > m_remoteSize - m_offset;
}

} // namespace nsFTP
