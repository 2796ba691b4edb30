// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPControl_p.h"

#include "formkit/FtpClient/FTPAddress_p.h"
#include "formkit/FtpClient/FTPTransferState_p.h"
#include "formkit/FtpClient/InternetSocket.h"

#include <QScopeGuard>

#include <algorithm>
#include <climits>
#include <thread>

using nsSocket::CBlockingSocketException;

namespace nsFTP {

namespace {

constexpr char LineEnd[] = "\r\n";
constexpr size_t MaxReplyLines = 100000;
constexpr size_t MaxReplyBytes = size_t(8) << 20;
constexpr int MaxOwedReplies = 100;
constexpr int MaxPreliminaries = 10;

bool timedOut(const CBlockingSocketException &exception)
{
    return exception.GetErrorMessage().rfind("Receive timeout", 0) == 0;
}

} // namespace

ControlConnection::ControlConnection(const std::shared_ptr<nsSocket::IBlockingSocket> &socket,
                                     const Observers &observers, const TransferState &transfers,
                                     std::vector<char> &buffer, const ControlTimes &times)
    : m_socket(socket)
    , m_observers(observers)
    , m_transfers(transfers)
    , m_buffer(buffer)
    , m_times(times)
{
}

int ControlConnection::timeout() const
{
    return int(std::min<unsigned int>(m_times.receiveTimeout, INT_MAX));
}

bool ControlConnection::open(const std::string &host, unsigned short port)
{
    close();
    auto failed = qScopeGuard([this] { drop(); });
    try {
        m_socket->SetWaitLimit(timeout());
        m_socket->SetInterruption(m_transfers.interruption());
        connect(host, port);
    } catch (const CBlockingSocketException &exception) {
        m_observers.report(exception, ReportAt::OpenControl);
        return false;
    }
    failed.dismiss();
    m_unanswered = 1; // the greeting
    return true;
}

void ControlConnection::connect(const std::string &host, unsigned short port)
{
    m_host = host;
    m_family = AF_INET;
    if (auto *internet = dynamic_cast<nsSocket::IInternetSocket *>(m_socket.get())) {
        internet->ConnectToHost(host.c_str(), port);
        m_family = Address::peerOf(*m_socket).family();
        return;
    }
    m_socket->Create(SOCK_STREAM);
    const sockaddr_in address = m_socket->GetHostByName(host.c_str(), port);
    m_socket->Connect(reinterpret_cast<const sockaddr *>(&address));
}

void ControlConnection::close()
{
    const auto closed = qScopeGuard([this] { drop(); });
    try {
        m_socket->Close();
    } catch (const CBlockingSocketException &exception) {
        m_observers.report(exception, ReportAt::CloseControl);
    }
}

// Ends the session: closes the connection and forgets all that belongs to it.
void ControlConnection::drop()
{
    m_socket->Cleanup();
    session = {};
    m_lines.clear();
    m_partialLine.clear();
    m_partialReply.clear();
    m_partialReplyLines = 0;
    m_unanswered = 0;
    m_abandoned = 0;
    m_afterAbort = false;
}

nsSocket::ISecureSocket *ControlConnection::secure() const
{
    return dynamic_cast<nsSocket::ISecureSocket *>(m_socket.get());
}

bool ControlConnection::startTls()
{
    // Text that came in clear must not be taken for the server's protected replies.
    if (!m_lines.empty() || !m_partialLine.empty()) {
        const auto reported = qScopeGuard([this] { drop(); });
        m_observers.report("The server sent text in clear before TLS began.", ReportAt::Security);
        return false;
    }
    try {
        secure()->StartTls(m_host, timeout());
        return true;
    } catch (const CBlockingSocketException &exception) {
        breakOff(exception, ReportAt::Security);
        return false;
    }
}

bool ControlConnection::keepsProtection(const Verb &command)
{
    const nsSocket::ISecureSocket *const socket = secure();
    if (!socket || socket->Security().mode == CFTPSecurity::None || session.controlInClear)
        return true;
    if (!socket->IsTls() && command.name() != "AUTH") {
        const auto reported = qScopeGuard([this] { drop(); });
        m_observers.report("Without TLS nothing is sent.", ReportAt::Security);
        return false;
    }
    if (command == CCommand::REIN)
        m_observers.report("REIN would end the protection: log out instead.", ReportAt::Security);
    return !(command == CCommand::REIN);
}

bool ControlConnection::mayMoveData() const
{
    const nsSocket::ISecureSocket *const socket = secure();
    if (!socket || socket->Security().mode == CFTPSecurity::None || socket->Security().clearData ||
        session.protectsData)
        return true;
    m_observers.report("The server was not asked to protect data: log in first.",
                       ReportAt::Security);
    return false;
}

bool ControlConnection::protect(nsSocket::IBlockingSocket &dataSocket)
{
    auto *const target = dynamic_cast<nsSocket::ISecureSocket *>(&dataSocket);
    if (!session.protectsData)
        return true;
    try {
        if (target)
            target->StartTls(m_host, timeout());
        else
            m_observers.report("The data socket has no TLS.", ReportAt::Security);
        return target != nullptr;
    } catch (const CBlockingSocketException &exception) {
        m_observers.report(exception, ReportAt::Security);
        return false;
    }
}

bool ControlConnection::endTls()
{
    try {
        secure()->EndTls(timeout());
        session.controlInClear = true;
        return true;
    } catch (const CBlockingSocketException &exception) {
        breakOff(exception, ReportAt::Security);
        return false;
    }
}

void ControlConnection::breakOff(const CBlockingSocketException &exception, ReportAt place)
{
    const auto reported = qScopeGuard([this] { drop(); });
    m_observers.report(exception, place);
}

bool ControlConnection::limitPassed(size_t lineCount, size_t bytes)
{
    if (lineCount <= MaxReplyLines && bytes <= MaxReplyBytes && Clock::now() < m_replyEnd)
        return false;
    const auto reported = qScopeGuard([this] { drop(); });
    m_observers.report("Reply limit exceeded.", ReportAt::ReplyLimit);
    return true;
}

// Receives reply text and cuts it into lines.
bool ControlConnection::receiveText()
{
    const int room = int(m_buffer.size()) - 1;
    int received = 0;
    try {
        do {
            if (limitPassed(m_lines.size(), m_replyBytes))
                return false;
            const auto left = std::chrono::ceil<std::chrono::seconds>(m_replyEnd - Clock::now());
            received = m_socket->Receive(m_buffer.data(), room,
                                         int(std::min<long long>(timeout(), left.count())));
            if (received <= 0) {
                // The peer has closed. Whole lines that came before are still good.
                if (m_lines.empty())
                    drop();
                return !m_lines.empty();
            }
            if (m_times.responseDelay != 0)
                std::this_thread::sleep_for(std::chrono::seconds(m_times.responseDelay));
            if (!cutLines(size_t(received)))
                return false;
        } while (received == room && m_socket->CheckReadability());
    } catch (const CBlockingSocketException &exception) {
        if (!m_lines.empty()) {
            m_observers.report(exception, ReportAt::Receive);
            return true;
        }
        if (m_transfers.isInterrupted() || (timedOut(exception) && Clock::now() < m_replyEnd)) {
            abandonReplies();
            m_observers.report(exception, ReportAt::Receive);
        } else {
            breakOff(exception, ReportAt::Receive);
        }
        return false;
    }
    return true;
}

// Lines keep their line feeds. Text after the last line feed is kept until its rest comes. False
// beyond a limit.
bool ControlConnection::cutLines(size_t received)
{
    m_replyBytes += received;
    size_t begin = 0;
    size_t end = m_partialLine.size();
    m_partialLine.append(m_buffer.data(), received);
    while ((end = m_partialLine.find('\n', end)) != std::string::npos) {
        m_lines.push_back(m_partialLine.substr(begin, ++end - begin));
        begin = end;
        if (limitPassed(m_lines.size(), m_replyBytes))
            return false;
    }
    m_partialLine.erase(0, begin);
    return true;
}

bool ControlConnection::takeLine(std::string &line)
{
    if (!isOpen())
        return false;
    while (m_lines.empty()) {
        if (!receiveText())
            return false;
    }
    line = std::move(m_lines.front());
    m_lines.pop_front();
    if (line.size() >= 2 && line.compare(line.size() - 2, 2, LineEnd) == 0)
        line.resize(line.size() - 2);
    return true;
}

// When a reply must be complete if waiting for it begins now.
ControlConnection::Clock::time_point ControlConnection::deadline() const
{
    constexpr long long LongestLimit = 1000000000; // more overflows the clock
    const long long limit =
        4LL * (static_cast<long long>(m_times.receiveTimeout) + m_times.responseDelay);
    return Clock::now() + std::chrono::seconds(std::clamp(limit, 1LL, LongestLimit));
}

// Reads one whole reply, whatever its code; false when none came. Goes on with a reply of which a
// part came before a time-out.
bool ControlConnection::takeReply(CReply &reply)
{
    m_replyBytes = 0;
    bool complete = false;
    while (!complete) {
        std::string line;
        if (!takeLine(line))
            return false;
        if (++m_partialReplyLines == 1) {
            m_partialReply = std::move(line);
            complete = !opensMultiLine(m_partialReply);
        } else {
            m_partialReply.append(LineEnd).append(line);
            complete = closesMultiLine(line, m_partialReply);
        }
        if (limitPassed(m_partialReplyLines, m_partialReply.size()))
            return false;
    }
    reply.Set(m_partialReply);
    m_partialReply.clear();
    m_partialReplyLines = 0;
    return true;
}

// Reads one whole reply, counts it, and tells the observers. Text that is no reply closes the
// session.
bool ControlConnection::readReply(CReply &reply, Clock::time_point latest)
{
    m_replyEnd = std::min(deadline(), latest);
    auto isNoReply = qScopeGuard([this] { drop(); }); // also after an exception
    if (!takeReply(reply)) {
        isNoReply.dismiss();
        return false;
    }
    const bool isReply = !reply.Code().Value().empty() || startsWithThreeDigits(reply.Value());
    if (isReply) {
        isNoReply.dismiss();
        const unsigned int answered = reply.Value().front() == '1' ? 0 : 1;
        m_unanswered -= std::min(m_unanswered, answered);
        m_abandoned -= std::min(m_abandoned, answered);
    }
    auto thrown = qScopeGuard([this] { abandonReplies(); });
    m_observers.tell([&](CFTPClient::CNotification &o) { o.OnResponse(reply); });
    thrown.dismiss();
    return isReply;
}

bool ControlConnection::receive(CReply &reply)
{
    if (!readReply(reply))
        return false;
    // Three digits that are no valid code, such as 160: the reply that may follow is abandoned.
    if (!reply.Code().Value().empty())
        return true;
    abandonReplies();
    return false;
}

bool ControlConnection::receiveFor(const Verb &command, CReply &reply)
{
    if (!receive(reply))
        return false;
    if (mayAnswer(reply, command))
        return true;
    const auto reported = qScopeGuard([this] { drop(); });
    m_observers.report("The reply " + reply.Code().Value() + " is another command's.",
                       ReportAt::OutOfStep);
    return false;
}

bool ControlConnection::exchange(const Verb &command, const CArg &arguments, CReply &reply)
{
    return send(command, arguments) && receiveFor(command, reply);
}

void ControlConnection::abort()
{
    if (!send(CCommand::ABOR, {}))
        return;
    m_afterAbort = true;
    // Some servers send 1xx replies about the aborted transfer first.
    const Clock::time_point latest = deadline();
    CReply reply;
    bool isPreliminary = true;
    for (int i = 0; i <= MaxPreliminaries && isPreliminary; ++i)
        isPreliminary = readReply(reply, latest) && reply.Code().IsPositivePreliminaryReply();
}

bool ControlConnection::accepts(const Verb &command, const CArg &arguments) const
{
    if (std::none_of(arguments.begin(), arguments.end(), hasLineBreakOrNul))
        return true;
    m_observers.report("Line break or NUL in an argument of " + command.name() + ".",
                       ReportAt::Argument);
    return false;
}

bool ControlConnection::accepts(const std::string &host) const
{
    if (!hasLineBreakOrNul(host))
        return true;
    m_observers.report("Line break or NUL in a host name.", ReportAt::Argument);
    return false;
}

bool ControlConnection::write(const Verb &command, const CArg &arguments)
{
    m_observers.tell([&](CFTPClient::CNotification &o) {
        if (command.known())
            o.OnSendCommand(*command.known(), arguments);
        else
            o.OnSendExtension(command.name(), arguments);
    });
    try {
        const std::string line = command.line(arguments) + LineEnd;
        m_socket->Write(line.data(), int(line.size()), timeout());
    } catch (const CBlockingSocketException &exception) {
        breakOff(exception, ReportAt::Send);
        return false;
    }
    ++m_unanswered;
    return true;
}

bool ControlConnection::send(const Verb &command, const CArg &arguments)
{
    if (!isOpen() || !accepts(command, arguments) || !keepsProtection(command) || !settle())
        return false;
    if (command == CCommand::TYPE || command == CCommand::REIN)
        session.representation.reset();
    return write(command, arguments);
}

// Reads abandoned replies, so that the next reply is that of the next command. Closes the session,
// and gives false, when they do not come.
bool ControlConnection::settle()
{
    if (!m_afterAbort && m_abandoned == 0)
        return true;
    auto outOfStep = qScopeGuard([this] { drop(); });
    const bool untilPwd = m_afterAbort;
    const bool settled = (!untilPwd || write(CCommand::PWD, {})) && readOwed(untilPwd);
    if (settled)
        outOfStep.dismiss();
    return settled;
}

// Together they may take as long as one reply.
bool ControlConnection::readOwed(bool untilPwd)
{
    const Clock::time_point latest = deadline();
    for (int i = 0; i < MaxOwedReplies; ++i) {
        CReply reply;
        if (!readReply(reply, latest))
            return false;
        if (untilPwd && reply.Code().Value() == "257") {
            m_unanswered = 0;
            m_abandoned = 0;
            m_afterAbort = false;
            return true;
        }
        if (!untilPwd && m_abandoned == 0)
            return true;
    }
    return false;
}

} // namespace nsFTP
