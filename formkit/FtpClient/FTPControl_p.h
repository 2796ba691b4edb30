// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPObservers_p.h"

#include <chrono>
#include <deque>
#include <optional>

namespace nsFTP {

class TransferState;

/// How long a control connection waits, in seconds.
struct ControlTimes
{
    unsigned int receiveTimeout; ///< for each wait
    unsigned int responseDelay;  ///< to sleep after every receive
};

/// One control connection: writes commands and reads the lines of their replies. A reply belongs
/// to its command:
/// - Nothing is read before a command unless something is owed. What is read ahead answers the
///   commands to come.
/// - What commands are owed that nobody waits for any more is read before the next command.
/// - After an abort nobody knows how many replies come: PWD is sent before the next command, and
///   what comes is read until its 257.
/// - An answer that is another command's ends the session, and so does whatever else makes it
///   impossible to tell replies apart.
class ControlConnection
{
public:
    using Clock = std::chrono::steady_clock;

    /// The buffer is what is received into; it has to hold two bytes at least.
    ControlConnection(const std::shared_ptr<nsSocket::IBlockingSocket> &socket,
                      const Observers &observers, const TransferState &transfers,
                      std::vector<char> &buffer, const ControlTimes &times);

    bool isOpen() const { return *m_socket != nsSocket::INVALID_SOCKET; }
    nsSocket::IBlockingSocket &socket() const { return *m_socket; }
    int timeout() const;

    /// Connects; the greeting is then owed.
    bool open(const std::string &host, unsigned short port);
    void close();

    /// False, and reported, for line breaks and NULs.
    bool accepts(const CCommand &command, const CArg &arguments) const;
    bool accepts(const std::string &host) const;

    /// Sends a command.
    bool send(const CCommand &command, const CArg &arguments);
    /// Reads one reply; true when it has a code.
    bool receive(CReply &reply);
    /// The same; false too when the reply can only be another command's: the session is closed.
    bool receiveFor(const CCommand &command, CReply &reply);
    bool exchange(const CCommand &command, const CArg &arguments, CReply &reply);
    /// Sends ABOR and reads its reply, or that of the aborted command.
    void abort();

    /// Nobody waits any more for what is owed.
    void abandonReplies() { m_abandoned = m_unanswered; }
    bool isOwedReplies() const { return m_unanswered > 0; }

    /// What TYPE set; forgotten when the session ends.
    std::optional<CRepresentation> representation;

private:
    void drop();
    void breakOff(const nsSocket::CBlockingSocketException &exception, ReportAt place);
    bool limitPassed(size_t lines, size_t bytes);
    bool receiveText();
    bool cutLines(size_t received);
    bool takeLine(std::string &line);
    bool takeReply(CReply &reply);
    bool readReply(CReply &reply, Clock::time_point latest = Clock::time_point::max());
    Clock::time_point deadline() const;
    bool write(const CCommand &command, const CArg &arguments);
    bool settle();
    bool readOwed(bool untilPwd);

    const std::shared_ptr<nsSocket::IBlockingSocket> m_socket;
    const Observers &m_observers;
    const TransferState &m_transfers;
    std::vector<char> &m_buffer;
    const ControlTimes m_times;

    /// Whole lines, and the text after the last line feed; then the lines of a reply that is not
    /// complete. They wait for the rest when a receive timed out.
    std::deque<std::string> m_lines;
    std::string m_partialLine;
    std::string m_partialReply;
    size_t m_partialReplyLines = 0;
    /// What one reply may take, and has taken.
    Clock::time_point m_replyEnd;
    size_t m_replyBytes = 0;

    /// Replies that are still to come, and how many of them, the first ones, nobody waits for.
    unsigned int m_unanswered = 0;
    unsigned int m_abandoned = 0;
    bool m_afterAbort = false;
};

} // namespace nsFTP
