// SPDX-License-Identifier: BSD-3-Clause
#include "progress.h"

#include <QLocale>

#include <csignal>
#include <cstdio>

#include <unistd.h>

namespace {

volatile std::sig_atomic_t interruptAsked = 0;

QString bytes(long long count)
{
    return QLocale().formattedDataSize(count, 1);
}

} // namespace

Progress::Progress(nsFTP::CFTPClient &client, bool verbose)
    : m_client(client), m_verbose(verbose), m_terminal(::isatty(STDERR_FILENO) == 1)
{
    std::signal(SIGINT, [](int) { interruptAsked = 1; });
    client.AttachObserver(this);
}

void Progress::expect(long long total, long long done)
{
    m_total = total;
    m_done = done;
    m_moved = 0;
    m_lastShown = 0;
    m_timer.start();
}

void Progress::finish()
{
    if (!m_shown)
        return;
    show();
    std::fputc('\n', stderr);
    m_shown = false;
}

bool Progress::interrupted() const
{
    return interruptAsked != 0;
}

void Progress::OnInternalError(const std::string &message, const std::string &source, int line)
{
    std::fprintf(stderr, "%s%s (%s:%d)\n", m_shown ? "\n" : "", message.c_str(), source.c_str(),
                 line);
}

void Progress::OnBytesReceived(const std::vector<char> & /*buffer*/, long count)
{
    moved(count);
}

void Progress::OnBytesSent(const std::vector<char> & /*buffer*/, long count)
{
    moved(count);
}

void Progress::OnBeginSendingData(const std::string & /*localName*/,
                                  const std::string & /*remoteFile*/, long long localSize,
                                  long long offset)
{
    expect(localSize, offset);
}

void Progress::OnSendCommand(const nsFTP::CCommand &command, const nsFTP::CArg &arguments)
{
    if (m_verbose)
        std::fprintf(stderr, "> %s\n", command.AsMaskedString(arguments).c_str());
}

void Progress::OnResponse(const nsFTP::CReply &reply)
{
    if (m_verbose || reply.Code().IsNegativeReply())
        std::fprintf(stderr, "< %s\n", reply.Value().c_str());
}

void Progress::moved(long count)
{
    m_moved += count;
    if (interrupted())
        m_client.Abort();
    if (m_terminal && m_timer.isValid() && m_timer.elapsed() - m_lastShown >= 200)
        show();
}

void Progress::show()
{
    m_lastShown = m_timer.elapsed();
    m_shown = true;
    const long long here = m_done + m_moved;
    const long long perSecond = m_moved * 1000 / std::max<qint64>(m_lastShown, 1);
    QString line = bytes(here);
    if (m_total > 0)
        line += QString(" of %1, %2 %").arg(bytes(m_total)).arg(here * 100 / m_total);
    line += QString(", %1/s").arg(bytes(perSecond));
    if (m_total > here && perSecond > 0)
        line += QString(", %1 s left").arg((m_total - here) / perSecond);
    std::fprintf(stderr, "\r%s\033[K", qPrintable(line));
}
