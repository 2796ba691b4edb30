// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPStreams.h"

#include <QFile>

#include <algorithm>
#include <new>

namespace nsFTP {

ITransferNotification::~ITransferNotification() = default;

struct COutputStream::Private
{
    std::string name;
    size_t limit = 0;
    std::string text;
    size_t read = 0;
    long lines = 0;
    bool good = true;
};

COutputStream::COutputStream(const std::string &name, size_t limit) : d(std::make_unique<Private>())
{
    d->name = name;
    d->limit = limit;
}

COutputStream::~COutputStream() = default;

bool COutputStream::GetNextLine(std::string &line)
{
    if (d->read >= d->text.size())
        return false;
    const size_t end = std::min(d->text.find('\n', d->read), d->text.size());
    line.assign(d->text, d->read, end - d->read);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    d->read = end + 1;
    return true;
}

const std::string &COutputStream::GetText() const
{
    return d->text;
}

void COutputStream::OnBytesReceived(const std::vector<char> &buffer, long count)
{
    d->lines += long(std::count(buffer.begin(), buffer.begin() + count, '\n'));
    d->good = d->good && size_t(count) <= d->limit - d->text.size() && d->lines <= MostLines;
    if (d->good)
        d->text.append(buffer.data(), size_t(count));
}

void COutputStream::OnPreBytesSend(char * /*buffer*/, unsigned long /*bufferSize*/,
                                   unsigned long &bytesToSend)
{
    bytesToSend = 0;
}

std::string COutputStream::GetLocalStreamName() const
{
    return d->name;
}

long long COutputStream::GetLocalStreamSize() const
{
    return static_cast<long long>(d->text.size());
}

bool COutputStream::SetLocalStreamOffset(long long offset)
{
    if (offset < 0 || size_t(offset) > d->text.size())
        return false;
    d->text.resize(size_t(offset));
    d->lines = long(std::count(d->text.begin(), d->text.end(), '\n'));
    return true;
}

bool COutputStream::IsGood() const
{
    return d->good;
}

struct CFile::Private
{
    explicit Private(const std::string &name)
        : file(QFile::decodeName(QByteArray::fromStdString(name)))
    {
    }

    void goToOffset();
    void keepInMind(bool succeeded);

    QFile file;
    TDirection direction = receive;
    long long offset = 0;
    long long sizeToSend = -1;
    bool offsetPending = false; // the bytes after the offset are to go
    bool made = false;          // by this transfer
    bool touched = false;
    bool good = true;
    std::string error;
};

CFile::CFile(const std::string &name) : d(std::make_unique<Private>(name))
{
    if (name.find('\0') == std::string::npos &&
        !d->file.fileName().contains(QChar::ReplacementCharacter))
        return;
    d->good = false;
    d->error = "The name is no text in the system's encoding.";
}

CFile::~CFile()
{
    if (!d->file.isOpen())
        return;
    try {
        Close(false);
    } catch (const std::bad_alloc &) {
        // Not even a file that should be removed is worth an exception here.
    }
}

bool CFile::Open(TDirection direction)
{
    if (!d->good)
        return false;
    d->direction = direction;
    d->made = direction == receive && !d->file.exists();
    const QIODevice::OpenMode mode = direction == send ? QIODevice::ReadOnly : QIODevice::ReadWrite;
    const bool opened = d->file.open(mode | QIODevice::Unbuffered);
    d->sizeToSend = opened && direction == send ? GetLocalStreamSize() : -1;
    return opened;
}

bool CFile::Close(bool transferIsGood)
{
    // After SetLocalStreamOffset() bytes that came before are to go too.
    if (d->direction == receive && d->offsetPending && (transferIsGood || d->touched))
        d->goToOffset();
    d->file.close();
    if (d->made && !d->touched && !transferIsGood)
        d->file.remove();
    return d->good;
}

std::string CFile::GetErrorText() const
{
    return d->good ? d->file.errorString().toStdString() : d->error;
}

// Keeps the text of the first failure: closing the file would clear it.
void CFile::Private::keepInMind(bool succeeded)
{
    if (succeeded || !good)
        return;
    good = false;
    error = file.errorString().toStdString();
}

void CFile::Private::goToOffset()
{
    offsetPending = false;
    touched = true;
    if (!file.isSequential())
        keepInMind(file.resize(offset) && file.seek(offset));
}

void CFile::OnBytesReceived(const std::vector<char> &buffer, long count)
{
    if (d->offsetPending)
        d->goToOffset();
    // A disk that is nearly full takes a part, and reports an error only for the next write.
    for (qint64 done = 0, part = 0; d->good && done < count; done += part) {
        part = d->file.write(buffer.data() + done, count - done);
        d->keepInMind(part > 0);
    }
}

void CFile::OnPreBytesSend(char *buffer, unsigned long bufferSize, unsigned long &bytesToSend)
{
    const qint64 count = d->file.read(buffer, qint64(bufferSize));
    d->keepInMind(count >= 0);
    // The rest of a file that has become shorter must not pass for the whole of it.
    if (d->good && count == 0 && bufferSize > 0 && d->file.pos() < d->sizeToSend) {
        d->good = false;
        d->error = "The file has become shorter.";
    }
    bytesToSend = static_cast<unsigned long>(std::max<qint64>(count, 0));
}

std::string CFile::GetLocalStreamName() const
{
    return _tstring(d->file.fileName());
}

long long CFile::GetLocalStreamSize() const
{
    return d->file.isSequential() ? -1 : d->file.size();
}

bool CFile::SetLocalStreamOffset(long long offset)
{
    if (offset < 0 || (d->file.isSequential() && offset != 0))
        return false;
    d->offset = offset;
    d->offsetPending = d->direction == receive;
    return d->offsetPending || d->file.isSequential() || d->file.seek(offset);
}

bool CFile::IsGood() const
{
    return d->good;
}

std::string _tstring(const QString &name)
{
    return QFile::encodeName(name).toStdString();
}

} // namespace nsFTP
