// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"
#include "formkit/FtpClient/FTPStreams.h"

namespace nsFTP {

/// Whether sizes and offsets are those of the bytes that are moved. Of text they mean something
/// else on each server.
bool isBinary(const CRepresentation &representation);

/// Hands a download on, counts it, and compares the count with the size that the server told.
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

    /// Whether the server sent the file from its beginning although it was asked to go on at
    /// the offset: more came than can be left, and if the data ended well, the whole file.
    bool beganAgain(bool good) const;
    /// What is there, the part before the offset included.
    long long present() const { return m_offset + m_received; }

private:
    ITransferNotification &m_target;
    const long long m_offset;
    const long long m_remoteSize;
    long long m_received = 0;
};

} // namespace nsFTP
