#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <QFile>
#include <QString>

#include <string>
#include <vector>

namespace nsFTP {

// The caller's end of a transfer: takes the bytes of a download, gives those of an upload. All
// calls come on the thread that runs the transfer, where commands of the client are refused; they
// may call CFTPClient::Abort().
class FORMKITFTP_EXPORT ITransferNotification
{
public:
    virtual ~ITransferNotification();
    // The first count bytes of buffer arrived.
    virtual void OnBytesReceived(const std::vector<char> &buffer, long count) = 0;
    // Fills at most bufferSize bytes and says how many; 0 ends the upload.
    virtual void OnPreBytesSend(char *buffer, unsigned long bufferSize,
                                unsigned long &bytesToSend) = 0;

    // A name for observers.
    virtual std::string GetLocalStreamName() const { return {}; }
    // How many bytes are there already (a download resumes after them) or are to be sent; -1
    // when that is not known.
    virtual long long GetLocalStreamSize() const { return -1; }
    // Where the next bytes belong or come from, called before a transfer. A receiver keeps what
    // lies after that until the first byte arrives: the transfer may be refused. False when the
    // stream cannot go there, which ends the call before anything is transferred.
    virtual bool SetLocalStreamOffset(long long offset) { return offset == 0; }
    // False once bytes could not be kept or read: the transfer is then aborted and fails.
    virtual bool IsGood() const { return true; }
};

// A text in memory that collects a listing and hands it back line by line. A listing longer
// than the limit (in bytes) or of more than MostLines lines makes the transfer fail, so that data
// without end cannot fill the memory.
class FORMKITFTP_EXPORT COutputStream : public ITransferNotification
{
public:
    // 64 MiB.
    static constexpr size_t DefaultLimit = size_t(64) << 20;
    // Of each a caller makes an entry, which is larger than a short line.
    static constexpr long MostLines = 1000000;

    // Empty; the name is what observers read.
    explicit COutputStream(const std::string &name, size_t limit = DefaultLimit);

    // The next line without its LF or CR LF; a last line needs none. False after the last.
    bool GetNextLine(std::string &line);
    const std::string &GetText() const { return m_strText; }

    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    // Nothing is sent from here.
    void OnPreBytesSend(char *buffer, unsigned long bufferSize,
                        unsigned long &bytesToSend) override;
    std::string GetLocalStreamName() const override { return m_strName; }
    long long GetLocalStreamSize() const override;
    // Cuts the text to the offset; false beyond its end.
    bool SetLocalStreamOffset(long long offset) override;
    bool IsGood() const override { return m_bGood; }

private:
    std::string m_strName;
    std::string m_strText;
    size_t m_nLimit;
    size_t m_nRead = 0;
    long m_nLines = 0;
    bool m_bGood = true;
};

// A local file. A file that is received keeps its content until the first byte arrives, and a
// file that was made for a download of which nothing arrived goes again; what did arrive stays,
// to be resumed. A file that is sent must not become shorter meanwhile.
class FORMKITFTP_EXPORT CFile : public ITransferNotification
{
public:
    // What the file is opened for.
    enum TDirection { receive, send };

    // The name as bytes, as the system has it. One that is no text in the system's encoding, or
    // holds a NUL, cannot be opened: other names would mean the same file.
    explicit CFile(const std::string &name);
    ~CFile() override;

    // False when the file cannot be opened.
    bool Open(TDirection direction);
    // Ends the transfer: a download that is good although no byte came leaves a file of the
    // offset's length. False when the file could not be kept.
    bool Close(bool transferIsGood);
    // Why the file could not be opened, or the first failure since then.
    std::string GetErrorText() const;

    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    void OnPreBytesSend(char *buffer, unsigned long bufferSize,
                        unsigned long &bytesToSend) override;
    std::string GetLocalStreamName() const override;
    // -1 for what has no size, such as a pipe.
    long long GetLocalStreamSize() const override;
    bool SetLocalStreamOffset(long long offset) override;
    bool IsGood() const override { return m_bGood; }

private:
    void goToOffset();
    void keepInMind(bool good);

    QFile m_File;
    TDirection m_enDirection = receive;
    long long m_nOffset = 0;
    long long m_nSizeToSend = -1;
    bool m_bOffsetPending = false;
    bool m_bMade = false;
    bool m_bTouched = false;
    bool m_bGood = true;
    std::string m_strError;
};

// A file name as the bytes that the system has for it.
FORMKITFTP_EXPORT std::string _tstring(const QString &name);

} // namespace nsFTP
