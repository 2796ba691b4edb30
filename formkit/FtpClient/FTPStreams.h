// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace nsFTP {

/// The caller's end of a transfer: takes the bytes of a download, gives those of an upload. The
/// client calls it on the thread that runs the transfer. From within a call Abort() of the client
/// may be called; the client's commands are refused.
class FORMKITFTP_EXPORT ITransferNotification
{
public:
    virtual ~ITransferNotification();
    /// The first count bytes of buffer arrived.
    virtual void OnBytesReceived(const std::vector<char> &buffer, long count) = 0;
    /// Fills at most bufferSize bytes and says how many; 0 ends the upload.
    virtual void OnPreBytesSend(char *buffer, unsigned long bufferSize,
                                unsigned long &bytesToSend) = 0;

    /// A name for observers.
    virtual std::string GetLocalStreamName() const { return {}; }
    /// For a download the bytes that are there already, after which it resumes; for an upload the
    /// bytes to send. -1 when that is not known.
    virtual long long GetLocalStreamSize() const { return -1; }
    /// Where the next bytes are written to or read from. The client calls it before a transfer,
    /// and again to undo a resumed download that went wrong. A receiver drops the bytes after the
    /// offset only when the next bytes arrive, since the server may still refuse. False when the
    /// stream cannot go there: the transfer then fails before a byte is moved.
    virtual bool SetLocalStreamOffset(long long offset) { return offset == 0; }
    /// False once bytes could not be written or read: the client then aborts the transfer.
    virtual bool IsGood() const { return true; }
};

/// A text in memory that collects a listing and gives it back line by line. A listing of more bytes
/// than the limit, or of more than MostLines lines, makes the transfer fail: data without end must
/// not fill the memory.
class FORMKITFTP_EXPORT COutputStream : public ITransferNotification
{
public:
    /// 64 MiB.
    static constexpr size_t DefaultLimit = size_t(64) << 20;
    /// Callers make an entry of each line, and an entry is larger than a short line.
    static constexpr long MostLines = 1000000;

    /// Empty at first. The name is for observers, the limit is in bytes.
    explicit COutputStream(const std::string &name, size_t limit = DefaultLimit);
    ~COutputStream() override;

    /// The next line without its LF or CR LF; the last line needs none. False after the last.
    bool GetNextLine(std::string &line);
    const std::string &GetText() const;

    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    /// Gives nothing: this stream only receives.
    void OnPreBytesSend(char *buffer, unsigned long bufferSize,
                        unsigned long &bytesToSend) override;
    std::string GetLocalStreamName() const override;
    long long GetLocalStreamSize() const override;
    /// Cuts the text to the offset; false when the text is shorter.
    bool SetLocalStreamOffset(long long offset) override;
    bool IsGood() const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

/// A local file.
/// - While receiving, the file's content stays until the first byte arrives. What arrived stays
///   when the transfer fails, so that it can be resumed. A file that was created for a download of
///   which nothing arrived is removed.
/// - A file that becomes shorter while it is sent makes the upload fail.
class FORMKITFTP_EXPORT CFile : public ITransferNotification
{
public:
    /// What the file is opened for.
    enum TDirection { receive, send };

    /// The name in the bytes of the file system. A name that is no text in the system's encoding,
    /// or that has a NUL, cannot be opened, since several such names would mean one file.
    explicit CFile(const std::string &name);
    ~CFile() override;

    /// False when the file cannot be opened.
    bool Open(TDirection direction);
    /// Ends the transfer. A good download of no bytes leaves a file that ends at the offset. False
    /// when bytes could not be written or read.
    bool Close(bool transferIsGood);
    /// Why the file could not be opened, or else the first failure after that.
    std::string GetErrorText() const;

    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    void OnPreBytesSend(char *buffer, unsigned long bufferSize,
                        unsigned long &bytesToSend) override;
    std::string GetLocalStreamName() const override;
    /// -1 for what has no size, such as a pipe.
    long long GetLocalStreamSize() const override;
    bool SetLocalStreamOffset(long long offset) override;
    bool IsGood() const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

/// A file name in the bytes of the file system.
FORMKITFTP_EXPORT std::string _tstring(const QString &name);

} // namespace nsFTP
