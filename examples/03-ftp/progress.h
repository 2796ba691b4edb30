// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/FtpJobs/ftpjobs.h>

/// Shows on the terminal how far a transfer is and what goes wrong. Without a terminal there is no
/// bar.
class Progress : public QObject
{
public:
    explicit Progress(FtpJobs &jobs);

    /// Writes a line of its own.
    void say(const QString &text);

private:
    void show(const FtpProgress &progress);
    void clear();

    const bool m_terminal;
    bool m_shown = false;
};

/// Shows commands and replies. Called on the threads of the jobs.
class Conversation : public nsFTP::CFTPClient::CNotification
{
public:
    void OnSendCommand(const nsFTP::CCommand &command, const nsFTP::CArg &arguments) override;
    void OnSendExtension(const std::string &command, const nsFTP::CArg &arguments) override;
    void OnResponse(const nsFTP::CReply &reply) override;
};

/// Text from a server without what would command the terminal.
QByteArray harmless(QByteArray text);
