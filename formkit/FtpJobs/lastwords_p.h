// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/ftpjobtypes.h"

/// Observes a client, remembers its last report of a failure, and makes of it what the user is
/// told.
class LastWords : public nsFTP::CFTPClient::CNotification
{
public:
    explicit LastWords(const nsFTP::CLogonInfo &logon);

    /// Forgets what was reported: a new operation begins.
    void forget();
    /// Why the operation failed: a logon, or a command about a remote name (empty for the session's
    /// folder). `connected` says whether the session is still open.
    FtpError ofLogon() const;
    FtpError of(const std::string &name, bool connected) const;
    /// Whether the server refused with a 5xx reply.
    bool isRefusal() const { return m_reply.compare(0, 1, "5") == 0; }

    void OnInternalError(const std::string &message, const std::string &source, int line) override;
    void OnResponse(const nsFTP::CReply &reply) override;

    /// A server's text as a part of a sentence: shortened, without control characters.
    static QString plain(const std::string &text);

protected:
    /// A failure of the connection or its TLS; None if there was none.
    FtpError ofConnection() const;

private:
    const QString m_host;
    /// What came last: a negative reply, a socket's failure, or any other message. The others are
    /// empty.
    std::string m_reply;
    std::string m_operation; ///< a socket's
    std::string m_message;
    int m_number = 0; ///< the operation's errno
    bool m_insecure = false;
    bool m_brokeOff = false;
};
