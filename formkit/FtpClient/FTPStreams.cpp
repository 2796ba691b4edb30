#include "formkit/FtpClient/FTPStreams.h"

#include <algorithm>
#include <new>

namespace nsFTP {

ITransferNotification::~ITransferNotification() = default;

COutputStream::COutputStream(const std::string &name, size_t limit)
    : m_strName(name), m_nLimit(limit)
{
}

bool COutputStream::GetNextLine(std::string &line)
{
    if (m_nRead >= m_strText.size())
        return false;
    const size_t end = std::min(m_strText.find('\n', m_nRead), m_strText.size());
    line.assign(m_strText, m_nRead, end - m_nRead);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    m_nRead = end + 1;
    return true;
}

void COutputStream::OnBytesReceived(const std::vector<char> &buffer, long count)
{
    m_nLines += long(std::count(buffer.begin(), buffer.begin() + count, '\n'));
    m_bGood = m_bGood && size_t(count) <= m_nLimit - m_strText.size() && m_nLines <= MostLines;
    if (m_bGood)
        m_strText.append(buffer.data(), size_t(count));
}

void COutputStream::OnPreBytesSend(char * /*buffer*/, unsigned long /*bufferSize*/,
                                   unsigned long &bytesToSend)
{
    bytesToSend = 0;
}

long long COutputStream::GetLocalStreamSize() const
{
    return static_cast<long long>(m_strText.size());
}

bool COutputStream::SetLocalStreamOffset(long long offset)
{
    if (offset < 0 || size_t(offset) > m_strText.size())
        return false;
    m_strText.resize(size_t(offset));
    m_nLines = long(std::count(m_strText.begin(), m_strText.end(), '\n'));
    return true;
}

CFile::CFile(const std::string &name) : m_File(QFile::decodeName(QByteArray::fromStdString(name)))
{
    if (name.find('\0') == std::string::npos &&
        !m_File.fileName().contains(QChar::ReplacementCharacter))
        return;
    m_bGood = false;
    m_strError = "The name is no text in the system's encoding.";
}

CFile::~CFile()
{
    if (!m_File.isOpen())
        return;
    try {
        Close(false);
    } catch (const std::bad_alloc &) {
        // What could not be put away stays.
    }
}

bool CFile::Open(TDirection direction)
{
    if (!m_bGood)
        return false;
    m_enDirection = direction;
    m_bMade = direction == receive && !m_File.exists();
    const QIODevice::OpenMode mode = direction == send ? QIODevice::ReadOnly : QIODevice::ReadWrite;
    const bool opened = m_File.open(mode | QIODevice::Unbuffered);
    m_nSizeToSend = opened && direction == send ? GetLocalStreamSize() : -1;
    return opened;
}

bool CFile::Close(bool transferIsGood)
{
    // Bytes that a receiver asked to be forgotten go too.
    if (m_enDirection == receive && m_bOffsetPending && (transferIsGood || m_bTouched))
        goToOffset();
    m_File.close();
    if (m_bMade && !m_bTouched && !transferIsGood)
        m_File.remove();
    return m_bGood;
}

std::string CFile::GetErrorText() const
{
    return m_bGood ? m_File.errorString().toStdString() : m_strError;
}

// The first failure tells why: closing the file would forget it.
void CFile::keepInMind(bool good)
{
    if (good || !m_bGood)
        return;
    m_bGood = false;
    m_strError = m_File.errorString().toStdString();
}

void CFile::goToOffset()
{
    m_bOffsetPending = false;
    m_bTouched = true;
    if (!m_File.isSequential())
        keepInMind(m_File.resize(m_nOffset) && m_File.seek(m_nOffset));
}

void CFile::OnBytesReceived(const std::vector<char> &buffer, long count)
{
    if (m_bOffsetPending)
        goToOffset();
    // A disk that has room for a part takes that, and says why only when asked for the rest.
    for (qint64 done = 0, part = 0; m_bGood && done < count; done += part) {
        part = m_File.write(buffer.data() + done, count - done);
        keepInMind(part > 0);
    }
}

void CFile::OnPreBytesSend(char *buffer, unsigned long bufferSize, unsigned long &bytesToSend)
{
    const qint64 count = m_File.read(buffer, qint64(bufferSize));
    keepInMind(count >= 0);
    // What is left of a file that has become shorter is not taken for the whole of it.
    if (m_bGood && count == 0 && bufferSize > 0 && m_File.pos() < m_nSizeToSend) {
        m_bGood = false;
        m_strError = "The file has become shorter.";
    }
    bytesToSend = static_cast<unsigned long>(std::max<qint64>(count, 0));
}

std::string CFile::GetLocalStreamName() const
{
    return _tstring(m_File.fileName());
}

long long CFile::GetLocalStreamSize() const
{
    return m_File.isSequential() ? -1 : m_File.size();
}

bool CFile::SetLocalStreamOffset(long long offset)
{
    if (offset < 0 || (m_File.isSequential() && offset != 0))
        return false;
    m_nOffset = offset;
    m_bOffsetPending = m_enDirection == receive;
    return m_bOffsetPending || m_File.isSequential() || m_File.seek(offset);
}

std::string _tstring(const QString &name)
{
    return QFile::encodeName(name).toStdString();
}

} // namespace nsFTP
