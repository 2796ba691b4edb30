// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/lastwords_p.h"

#include "formkit/FtpJobs/ftpjobs.h"

#include <cerrno>

namespace {

/// The places in the client that report refused security, and transfers that broke off.
constexpr int SecurityLine = 440;
constexpr int TransferLine = 1089;
constexpr int LongestText = 300;

bool endsWith(const std::string &text, const std::string &end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

LastWords::LastWords(const nsFTP::CLogonInfo &logon)
    : m_host(plain(logon.FirewallType() == nsFTP::CFirewallType::NoFirewall ? logon.HostName()
                                                                            : logon.FirewallHost()))
{
}

void LastWords::forget()
{
    m_reply.clear();
    m_operation.clear();
    m_message.clear();
    m_number = 0;
    m_insecure = false;
    m_brokeOff = false;
}

QString LastWords::plain(const std::string &text)
{
    QString result = QString::fromStdString(text.substr(0, LongestText));
    for (QChar &c : result) {
        if (!c.isPrint())
            c = QLatin1Char(' ');
    }
    return result.simplified();
}

// A socket's failure reads "Connect error 0x0000006f", or without the number.
void LastWords::OnInternalError(const std::string &message, const std::string & /*source*/,
                                int line)
{
    forget();
    m_insecure = line == SecurityLine;
    m_brokeOff = line == TransferLine;
    const size_t end = message.find(" error");
    if (m_insecure || end == std::string::npos) {
        m_message = message;
        return;
    }
    m_operation = message.substr(0, end);
    m_number = QString::fromStdString(message).section(QLatin1String(" 0x"), 1).toInt(nullptr, 16);
}

void LastWords::OnResponse(const nsFTP::CReply &reply)
{
    if (!reply.Code().IsNegativeReply())
        return;
    forget();
    // Of several lines the last one says it.
    const size_t begin = reply.Value().rfind('\n');
    m_reply = begin == std::string::npos ? reply.Value() : reply.Value().substr(begin + 1);
}

FtpError LastWords::ofConnection() const
{
    if (m_insecure)
        return {FtpError::Insecure, plain(m_message)};
    if (m_operation == "GetHostByName")
        return {FtpError::UnknownHost, FtpJobs::tr("The host %1 is not known.").arg(m_host)};
    if (m_number == ETIMEDOUT || endsWith(m_operation, "timeout"))
        return {FtpError::TimedOut, FtpJobs::tr("%1 did not answer in time.").arg(m_host)};
    const QString reason = m_number == 0 ? QString() : qt_error_string(m_number);
    if (m_operation == "Connect")
        return {FtpError::NoConnection,
                FtpJobs::tr("Cannot connect to %1: %2.").arg(m_host, reason)};
    if (m_number != 0)
        return {FtpError::ConnectionLost,
                FtpJobs::tr("The connection to %1 was lost: %2.").arg(m_host, reason)};
    return {};
}

FtpError LastWords::ofLogon() const
{
    const FtpError error = ofConnection();
    if (error)
        return error;
    if (isRefusal())
        return {FtpError::NotLoggedOn,
                FtpJobs::tr("%1 refused the logon: %2").arg(m_host, plain(m_reply))};
    if (!m_reply.empty())
        return {FtpError::Busy,
                FtpJobs::tr("%1 takes no logon now: %2").arg(m_host, plain(m_reply))};
    if (!m_message.empty())
        return {FtpError::NotLoggedOn,
                FtpJobs::tr("Not logged on to %1: %2").arg(m_host, plain(m_message))};
    return {FtpError::ConnectionLost, FtpJobs::tr("%1 closed the connection.").arg(m_host)};
}

FtpError LastWords::of(const std::string &name, bool connected) const
{
    const FtpError error = ofConnection();
    if (error)
        return error;
    const bool saysGoodbye = m_reply.compare(0, 3, "421") == 0;
    if (saysGoodbye || (!connected && m_reply.empty()))
        return {FtpError::ConnectionLost,
                FtpJobs::tr("%1 closed the connection. %2").arg(m_host, plain(m_reply)).trimmed()};
    // Without a name the folder of the session is meant.
    const QString file = name.empty() ? m_host : plain(name);
    if (isRefusal())
        return {FtpError::Refused,
                FtpJobs::tr("The server refused %1: %2").arg(file, plain(m_reply))};
    if (!m_reply.empty())
        return {FtpError::Busy, FtpJobs::tr("Not now, %1: %2").arg(file, plain(m_reply))};
    const QString reason =
        m_message.empty() ? FtpJobs::tr("the server did not say why") : plain(m_message);
    return {m_brokeOff ? FtpError::Incomplete : FtpError::Failed,
            FtpJobs::tr("%1: %2").arg(file, reason)};
}
