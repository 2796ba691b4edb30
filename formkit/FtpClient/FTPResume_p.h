// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"
#include "formkit/FtpClient/FTPStreams.h"

namespace nsFTP {

/// Whether sizes and offsets count the bytes that are moved. For text servers count differently.
bool isBinary(const CRepresentation &representation);

/// Passes a download on to its target and counts the bytes, to compare them with the remote size.
class CountedDownload : public ITransferNotification
{
public:
    /// The remote size is -1 when it is not known.
    CountedDownload(ITransferNotification &target, long long offset, long long remoteSize)
        : m_target(target), m_offset(offset), m_remoteSize(remoteSize)
    {
    }

    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    void OnPreBytesSend(char *buffer, unsigned long bufferSize,
                        unsigned long &bytesToSend) override;
    bool IsGood() const override { return m_target.IsGood(); }

    /// Whether the server ignored REST and sent the file from its beginning: more bytes came than
    /// follow the offset, and, when the data ended well, at least the whole file.
    bool beganAgain(bool good) const;
    /// The bytes that the target has, those before the offset included.
    long long present() const { return m_offset + m_received; }

private:
    ITransferNotification &m_target;
    const long long m_offset;
    const long long m_remoteSize;
    long long m_received = 0;
};

} // namespace nsFTP
