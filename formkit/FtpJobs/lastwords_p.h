// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/ftpjobtypes.h"

/// What a client said last of why an operation failed, and what that means to a user.
class LastWords : public nsFTP::CFTPClient::CNotification
{
public:
    explicit LastWords(const nsFTP::CLogonInfo &logon);

    /// A new operation begins.
    void forget();
    /// Why it failed: a failure of the logon or, with a name, that of a command about it.
    FtpError ofLogon() const;
    FtpError of(const std::string &name, bool connected) const;
    /// Whether the server refused for good.
    bool isRefusal() const { return m_reply.compare(0, 1, "5") == 0; }

    void OnInternalError(const std::string &message, const std::string &source, int line) override;
    void OnResponse(const nsFTP::CReply &reply) override;

    /// Text of a server as part of a sentence.
    static QString plain(const std::string &text);

protected:
    /// What a socket said; None when nothing.
    FtpError ofConnection() const;

private:
    const QString m_host;
    /// The last of these that came; the others are empty.
    std::string m_reply;
    std::string m_operation; ///< a socket's
    std::string m_message;
    int m_number = 0; ///< the operation's errno
    bool m_insecure = false;
    bool m_brokeOff = false;
};
