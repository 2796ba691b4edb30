// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/FtpClient/FTPClient.h>

#include <QElapsedTimer>

/// Shows the progress of a transfer on one line of the terminal, errors, and on request the
/// conversation. Ctrl-C aborts the transfer.
class Progress : public nsFTP::CFTPClient::CNotification
{
public:
    /// Shows commands and replies if verbose, and the line of progress if the error output is a
    /// terminal.
    Progress(nsFTP::CFTPClient &client, bool verbose);

    /// Takes the number of bytes to expect (-1 if unknown), and how many of them are there already.
    void expect(long long total, long long done);
    /// Ends the line of progress.
    void finish();
    bool interrupted() const;

    void OnInternalError(const std::string &message, const std::string &source, int line) override;
    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    void OnBytesSent(const std::vector<char> &buffer, long count) override;
    void OnBeginSendingData(const std::string &localName, const std::string &remoteFile,
                            long long localSize, long long offset) override;
    void OnSendCommand(const nsFTP::CCommand &command, const nsFTP::CArg &arguments) override;
    void OnResponse(const nsFTP::CReply &reply) override;

private:
    void moved(long count);
    void show();

    nsFTP::CFTPClient &m_client;
    bool m_verbose;
    bool m_terminal;
    bool m_shown = false;
    long long m_total = -1;
    long long m_done = 0;
    long long m_moved = 0;
    qint64 m_lastShown = 0;
    QElapsedTimer m_timer;
};
