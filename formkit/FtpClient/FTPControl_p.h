// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPFeatures.h"
#include "formkit/FtpClient/FTPObservers_p.h"
#include "formkit/FtpClient/FTPProtocol_p.h"
#include "formkit/FtpClient/SecureSocket.h"

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

/// What is known of a session. Forgotten at its end.
struct SessionState
{
    /// What TYPE set; empty when that is not known.
    std::optional<CRepresentation> representation;
    /// The reply to FEAT; empty when it was not asked for.
    std::optional<CFTPFeatures> features;
    /// The server has refused the command, which is not sent again.
    bool refusesEpsv = false;
    bool refusesEprt = false;
    /// Data connections go over TLS.
    bool protectsData = false;
    /// The control connection has left TLS after CCC, because clearControl asks for that.
    bool controlInClear = false;
};

/// A control connection: sends commands, reads replies, and keeps each reply with its command.
/// - A reply is owed from when its command was sent until it is read. A 1xx reply leaves the final
///   one owed.
/// - An owed reply is abandoned when nobody waits for it any more (after a time-out, for example).
///   Abandoned replies are read before the next command is sent. Nothing else is read then.
/// - Lines that came along with a reply are kept; they answer the next commands.
/// - After an abort the number of replies to come is not known. PWD is then sent before the next
///   command, and replies are read until the 257 that answers PWD.
/// - A reply that cannot answer its command ends the session, and so does anything else after which
///   replies cannot be matched with commands.
class ControlConnection
{
public:
    using Clock = std::chrono::steady_clock;

    /// Replies are received into the buffer, which must hold at least two bytes.
    ControlConnection(const std::shared_ptr<nsSocket::IBlockingSocket> &socket,
                      const Observers &observers, const TransferState &transfers,
                      std::vector<char> &buffer, const ControlTimes &times);

    bool isOpen() const { return *m_socket != nsSocket::INVALID_SOCKET; }
    nsSocket::IBlockingSocket &socket() const { return *m_socket; }
    int timeout() const;

    /// Connects; the greeting is then owed.
    bool open(const std::string &host, unsigned short port);
    void close();
    /// The family of the peer's address.
    int family() const { return m_family; }

    /// The socket, if it knows TLS; otherwise null.
    nsSocket::ISecureSocket *secure() const;
    /// Begins or ends TLS on this connection, whose socket must know TLS. When that fails (the
    /// certificate is not the host's, for example) the reason is reported, the session is closed,
    /// and the result is false.
    bool startTls();
    bool endTls();
    /// False, and reported, if data would go in clear although CFTPSecurity does not allow that.
    bool mayMoveData() const;
    /// Begins TLS on a connected data socket if the session protects data. If that fails, the
    /// reason is reported and the result is false.
    bool protect(nsSocket::IBlockingSocket &dataSocket);

    /// False, and reported, when a text has a line break or NUL.
    bool accepts(const Verb &command, const CArg &arguments) const;
    bool accepts(const std::string &host) const;

    /// Sends a command.
    bool send(const Verb &command, const CArg &arguments);
    /// Reads one reply; true when it has a code.
    bool receive(CReply &reply);
    /// The same, but a reply that cannot answer the command is reported, closes the session and
    /// gives false.
    bool receiveFor(const Verb &command, CReply &reply);
    bool exchange(const Verb &command, const CArg &arguments, CReply &reply);
    /// Sends ABOR and reads its reply, or that of the aborted command.
    void abort();

    /// Nobody waits any more for the replies that are owed now.
    void abandonReplies() { m_abandoned = m_unanswered; }
    bool isOwedReplies() const { return m_unanswered > 0; }

    SessionState session;

private:
    void drop();
    bool keepsProtection(const Verb &command);
    void connect(const std::string &host, unsigned short port);
    void breakOff(const nsSocket::CBlockingSocketException &exception, ReportAt place);
    bool limitPassed(size_t lines, size_t bytes);
    bool receiveText();
    bool cutLines(size_t received);
    bool takeLine(std::string &line);
    bool takeReply(CReply &reply);
    bool readReply(CReply &reply, Clock::time_point latest = Clock::time_point::max());
    Clock::time_point deadline() const;
    bool write(const Verb &command, const CArg &arguments);
    bool settle();
    bool readOwed(bool untilPwd);

    const std::shared_ptr<nsSocket::IBlockingSocket> m_socket;
    const Observers &m_observers;
    const TransferState &m_transfers;
    std::vector<char> &m_buffer;
    const ControlTimes m_times;
    std::string m_host;
    int m_family = AF_INET;

    /// What was received and not yet read: whole lines, the text after the last line feed, and the
    /// first lines of a reply whose rest had not come when a wait timed out.
    std::deque<std::string> m_lines;
    std::string m_partialLine;
    std::string m_partialReply;
    size_t m_partialReplyLines = 0;
    /// The limits of the reply that is being read: when it must be complete, and its bytes so far.
    Clock::time_point m_replyEnd;
    size_t m_replyBytes = 0;

    /// The number of replies owed, and how many of these, the first ones, are abandoned.
    unsigned int m_unanswered = 0;
    unsigned int m_abandoned = 0;
    bool m_afterAbort = false;
};

} // namespace nsFTP
