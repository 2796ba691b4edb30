// SPDX-License-Identifier: BSD-3-Clause
#include "progress.h"

#include <QLocale>

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int LongestBar = 40;

QString bytes(qint64 count)
{
    return QLocale().formattedDataSize(count, 1);
}

int widthOfTerminal()
{
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

QString barOf(double part, int width)
{
    const int full = int(part * width);
    return "[" + QString(full, '#') + QString(width - full, '.') + "] ";
}

QString textOf(const FtpProgress &progress)
{
    QString text = bytes(progress.done);
    if (progress.total > 0)
        text = QString("%1 % of %2")
                   .arg(progress.done * 100 / progress.total)
                   .arg(bytes(progress.total));
    text += QString(", %1/s").arg(bytes(progress.bytesPerSecond));
    if (progress.secondsLeft > 0)
        text += QString(", %1:%2 left")
                    .arg(progress.secondsLeft / 60)
                    .arg(progress.secondsLeft % 60, 2, 10, QChar('0'));
    return text;
}

} // namespace

Progress::Progress(FtpJobs &jobs) : m_terminal(::isatty(STDERR_FILENO) == 1)
{
    connect(&jobs, &FtpJobs::progress, this, [this](int, const FtpProgress &p) { show(p); });
    connect(&jobs, &FtpJobs::retrying, this, [this](int, const FtpError &error, int delay) {
        say(QString("%1 Trying again in %2 s.").arg(error.text).arg(delay / 1000.0, 0, 'f', 1));
    });
    connect(&jobs, &FtpJobs::finished, this, [this](int, const FtpError &error) {
        if (m_shown)
            std::fputc('\n', stderr);
        m_shown = false;
        if (error)
            say(error.text);
    });
}

void Progress::say(const QString &text)
{
    clear();
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

void Progress::show(const FtpProgress &progress)
{
    if (!m_terminal)
        return;
    const QString text = textOf(progress);
    const int room = qMin(LongestBar, widthOfTerminal() - text.size() - 4);
    QString line = text;
    if (progress.total > 0 && room > 5)
        line = barOf(qMin(1.0, double(progress.done) / double(progress.total)), room) + text;
    std::fprintf(stderr, "\r%s\033[K", line.toLocal8Bit().constData());
    m_shown = true;
}

void Progress::clear()
{
    if (m_shown)
        std::fputs("\r\033[K", stderr);
    m_shown = false;
}

void Conversation::OnSendCommand(const nsFTP::CCommand &command, const nsFTP::CArg &arguments)
{
    const std::string text = command.AsMaskedString(arguments);
    std::fprintf(stderr, "> %s\n", harmless(QByteArray::fromStdString(text)).constData());
}

void Conversation::OnSendExtension(const std::string &command, const nsFTP::CArg &arguments)
{
    QByteArray text = QByteArray::fromStdString(command);
    for (const std::string &argument : arguments)
        text += ' ' + QByteArray::fromStdString(argument);
    text = text.trimmed();
    std::fprintf(stderr, "> %s\n", harmless(text).constData());
}

void Conversation::OnResponse(const nsFTP::CReply &reply)
{
    std::fprintf(stderr, "< %s\n", harmless(QByteArray::fromStdString(reply.Value())).constData());
}

QByteArray harmless(QByteArray text)
{
    for (char &c : text) {
        const bool commands = (c >= 0 && c < ' ' && c != '\n') || c == 0x7f;
        c = commands ? ' ' : c;
    }
    return text;
}
