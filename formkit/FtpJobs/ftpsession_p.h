// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/job_p.h"
#include "formkit/FtpJobs/lastwords_p.h"

/// A session with a server, which carries out jobs one after the other. It is used on one thread;
/// other threads only call GiveUp() of its client.
class FtpSession : private LastWords
{
public:
    FtpSession(const std::shared_ptr<nsFTP::CFTPClient> &client, const FtpServer &settings);
    ~FtpSession() override;

    FtpError logOn();
    FtpError perform(Job &job, QVector<FtpEntry> *entries);
    /// False when the server does not answer.
    bool giveSignOfLife();
    bool isOpen() const { return m_client->IsConnected(); }

private:
    using Representation = nsFTP::CRepresentation;

    FtpError download(Job &job);
    FtpError fetchInto(Job &job, const class PartFile &part);
    static bool mayGoOn(const Job &job, const class PartFile &part, bool same);
    bool receive(Job &job, nsFTP::CFile &file, bool resumes);
    FtpError upload(Job &job);
    FtpError send(Job &job, bool resumes);
    bool learnSource(Job &job, bool *same);
    FtpError list(const Job &job, QVector<FtpEntry> *entries);
    bool listHere(const std::string &folder, const Job &job,
                  std::vector<std::shared_ptr<nsFTP::CFTPFileStatus>> *entries);
    bool enter(const std::string &folder);
    FtpError failure(const Job &job) const { return of(job.remote, isOpen()); }
    long remoteSize(const Job &job) const;

    void OnResponse(const nsFTP::CReply &reply) override;
    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    void OnBytesSent(const std::vector<char> &buffer, long count) override;
    void OnBeginSendingData(const std::string &localName, const std::string &remoteFile,
                            long long localSize, long long offset) override;

    const std::shared_ptr<nsFTP::CFTPClient> m_client;
    const FtpServer &m_settings;
    Job *m_job = nullptr;
    /// The folder in which the session began; empty until PWD was sent.
    std::string m_home;
};
