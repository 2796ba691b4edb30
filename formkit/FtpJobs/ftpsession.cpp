// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/ftpsession_p.h"

#include "formkit/FtpJobs/ftpjobs.h"
#include "formkit/FtpJobs/partfile_p.h"

#include <QFileInfo>
#include <QTimeZone>

using namespace nsFTP;

namespace {

/// Smaller files are fetched again from their beginning: that costs less than asking for their time
/// would, which tells whether the remote file is still the same.
constexpr long WorthResuming = 1 << 20;

FtpError localError(const QString &file, const QString &reason)
{
    return {FtpError::LocalFile, QStringLiteral("%1: %2").arg(file, reason)};
}

FtpError localError(const QString &file, const CFile &opened)
{
    return localError(file, QString::fromStdString(opened.GetErrorText()));
}

CRepresentation representationOf(const Job &job)
{
    return job.has(FtpJobs::Text) ? CType::ASCII : CType::Image;
}

// The first text in quotation marks, two of which stand for one inside.
std::string quoted(const std::string &reply)
{
    std::string text;
    size_t i = reply.find('"');
    while (i < reply.size() && ++i < reply.size()) {
        if (reply[i] == '"' && (++i == reply.size() || reply[i] != '"'))
            break;
        text += reply[i];
    }
    return text;
}

FtpEntry entryOf(const CFTPFileStatus &status, const std::string &folder)
{
    FtpEntry entry;
    entry.name = QByteArray::fromStdString(status.name);
    const bool isPath = status.name.find('/') != std::string::npos;
    const std::string separator = folder.empty() || folder.back() == '/' ? "" : "/";
    entry.path = isPath ? entry.name : QByteArray::fromStdString(folder + separator) + entry.name;
    entry.isFile = status.tryRetrieve;
    entry.isFolder = status.tryCwd;
    entry.size = status.size;
    if (status.mtimeType != CFTPFileStatus::timeUnknown)
        entry.modified = QDateTime::fromSecsSinceEpoch(status.mtime, QTimeZone::utc());
    entry.knowsTime = status.mtimeType != CFTPFileStatus::timeDay;
    return entry;
}

} // namespace

FtpSession::FtpSession(const std::shared_ptr<CFTPClient> &client, const FtpServer &settings)
    : LastWords(settings.logon), m_client(client), m_settings(settings)
{
    m_client->SetPassiveAddressPolicy(CFTPClient::TPassiveAddress::UseControlHost);
    m_client->SetAcceptOnlyControlPeer(true);
    m_client->AttachObserver(this);
}

FtpSession::~FtpSession()
{
    // A goodbye whose answer nobody waits for.
    m_client->GiveUp();
    if (isOpen())
        m_client->Logout();
}

FtpError FtpSession::logOn()
{
    forget();
    return m_client->Login(m_settings.logon) ? FtpError() : ofLogon();
}

FtpError FtpSession::perform(Job &job, QVector<FtpEntry> *entries)
{
    forget();
    m_job = &job;
    FtpError error;
    switch (job.kind) {
    case Job::Download:
        error = download(job);
        break;
    case Job::Upload:
        error = upload(job);
        break;
    case Job::List:
        error = list(job, entries);
        break;
    case Job::Remove:
        if (m_client->Delete(job.remote) != 0)
            error = failure(job);
        break;
    }
    m_job = nullptr;
    return error;
}

bool FtpSession::giveSignOfLife()
{
    return m_client->Noop() != -1;
}

long FtpSession::remoteSize(const Job &job) const
{
    long size = -1;
    return m_client->FileSize(job.remote, size) == 0 ? size : -1;
}

// Learns of what the job moves, and whether it is still what the last attempt moved. False when
// that cannot be told now.
bool FtpSession::learnSource(Job &job, bool *same)
{
    const QFileInfo local(job.local);
    const bool isUpload = job.kind == Job::Upload;
    long long time = isUpload ? local.lastModified().toMSecsSinceEpoch() : -1;
    long long size = isUpload ? local.size() : -1;
    if (!isUpload && !job.has(FtpJobs::Text)) {
        size = remoteSize(job);
        if (!ofConnection() && (size >= WorthResuming || job.has(FtpJobs::Resume)))
            m_client->FileModificationTime(job.remote, time);
    }
    const bool wasTold = job.sourceSize >= 0;
    if (ofConnection() || !isOpen() || (wasTold && size < 0))
        return false;
    *same = size == job.sourceSize && time == job.sourceTime;
    job.sourceSize = size;
    job.sourceTime = time;
    job.total = size;
    return true;
}

FtpError FtpSession::download(Job &job)
{
    const PartFile part(job.local);
    if (QFileInfo(job.local).isDir())
        return localError(job.local, FtpJobs::tr("it is a folder"));
    const FtpError error = fetchInto(job, part);
    if (error) {
        if (job.hasPart && job.sourceTime >= 0)
            part.setTime(job.sourceTime);
        return error;
    }
    const QString reason = part.land();
    return reason.isEmpty() ? FtpError() : localError(job.local, reason);
}

// Whether the part has the beginning of the remote file, as far as can be known.
bool FtpSession::mayGoOn(const Job &job, const PartFile &part, bool same)
{
    const bool worth = job.sourceSize >= WorthResuming || job.has(FtpJobs::Resume);
    const bool known =
        job.hasPart ? same : job.has(FtpJobs::Resume) && job.sourceTime <= part.time();
    return worth && known && job.mayResume && part.size() > 0 && part.size() <= job.sourceSize;
}

FtpError FtpSession::fetchInto(Job &job, const PartFile &part)
{
    // The type first: many servers tell no size in ASCII.
    if (m_client->RepresentationType(representationOf(job)) != 0)
        return failure(job);
    bool same = false;
    if (!learnSource(job, &same))
        return failure(job);
    const bool resumes = mayGoOn(job, part, same);
    if (job.hasPart && !resumes)
        part.discard(); // bytes of another file, perhaps
    job.hasPart = resumes;
    CFile file(_tstring(part.name()));
    if (!file.Open(CFile::receive))
        return localError(part.name(), file);
    job.done = resumes ? part.size() : 0;
    const bool good = receive(job, file, resumes);
    job.hasPart = job.done > 0;
    if (!file.Close(good))
        return localError(part.name(), file);
    if (good)
        return {};
    // The server resumes nothing, or says that it does and sends all the same.
    if (resumes && isOpen() && (isRefusal() || job.done > job.sourceSize)) {
        job.mayResume = false;
        // Else a server that did agree could apply the offset to the next transfer.
        m_client->Restart(0);
        return fetchInto(job, part);
    }
    FtpError error = failure(job);
    if (error.code == FtpError::Failed && job.done < job.sourceSize)
        error = {FtpError::Incomplete, FtpJobs::tr("Of %1 only %2 of %3 bytes came.")
                                           .arg(plain(job.remote))
                                           .arg(job.done)
                                           .arg(job.sourceSize)};
    return error;
}

bool FtpSession::receive(Job &job, CFile &file, bool resumes)
{
    forget();
    m_client->SetResumeMode(resumes);
    if (resumes)
        return m_client->DownloadFile(job.remote, file, representationOf(job), m_settings.passive);
    // More bytes than were told are a file that has grown.
    return file.SetLocalStreamOffset(0) &&
           m_client->ExecuteDatachannelCommand(CCommand::RETR, job.remote, representationOf(job),
                                               m_settings.passive, 0, file) &&
           job.done >= job.sourceSize;
}

FtpError FtpSession::upload(Job &job)
{
    bool same = false;
    if (!learnSource(job, &same))
        return failure(job);
    if (job.hasPart && !same)
        job.mayResume = false; // the server has bytes of another file
    const bool mayResume = job.mayResume && !job.has(FtpJobs::Text);
    if (!mayResume || !job.hasPart)
        return send(job, mayResume && job.has(FtpJobs::Resume));
    // What the server has must be what the last attempt sent, or the beginning of that.
    if (m_client->RepresentationType(CType::Image) != 0)
        return failure(job);
    const long there = remoteSize(job);
    if (ofConnection() || !isOpen())
        return failure(job);
    return send(job, there > 0 && there <= job.done);
}

FtpError FtpSession::send(Job &job, bool resumes)
{
    forget();
    CFile file(_tstring(job.local));
    if (!file.Open(CFile::send))
        return localError(job.local, file);
    m_client->SetResumeMode(resumes);
    const qint64 before = job.moved;
    const bool good =
        m_client->UploadFile(file, job.remote, false, representationOf(job), m_settings.passive);
    job.hasPart = job.hasPart || job.moved > before;
    if (!file.IsGood())
        return localError(job.local, file);
    if (!good && resumes && isOpen() && isRefusal()) {
        job.mayResume = false;
        return send(job, false);
    }
    if (!good)
        return failure(job);
    // What an earlier attempt sent may have arrived after the size was asked for.
    const long there = resumes ? remoteSize(job) : -1;
    if (there < 0 || there == job.sourceSize)
        return {};
    job.mayResume = false;
    return {FtpError::Incomplete, FtpJobs::tr("%1 has %2 of %3 bytes at the server.")
                                      .arg(plain(job.remote))
                                      .arg(there)
                                      .arg(job.sourceSize)};
}

FtpError FtpSession::list(const Job &job, QVector<FtpEntry> *entries)
{
    std::vector<std::shared_ptr<CFTPFileStatus>> found;
    if (!listHere(job.remote, job, &found))
        return failure(job);
    entries->reserve(int(found.size()));
    for (const auto &status : found) {
        if (status->name != "." && status->name != "..")
            entries->append(entryOf(*status, job.remote));
    }
    return {};
}

// Servers take a blank for the end of a path, and a leading dash for options: such a folder is
// entered for the time of its listing.
bool FtpSession::listHere(const std::string &folder, const Job &job,
                          std::vector<std::shared_ptr<CFTPFileStatus>> *entries)
{
    const auto listed = [&](const std::string &path) {
        return job.has(FtpJobs::NamesOnly) ? m_client->NameList(path, *entries, m_settings.passive)
                                           : m_client->List(path, *entries, m_settings.passive);
    };
    if (folder.find(' ') == std::string::npos && folder.compare(0, 1, "-") != 0)
        return listed(folder);
    if (m_home.empty())
        m_client->PrintWorkingDirectory();
    if (m_home.empty() || m_client->ChangeWorkingDirectory(folder) != 0)
        return false;
    const bool good = listed({});
    if (m_client->ChangeWorkingDirectory(m_home) != 0)
        m_client->Logout();
    return good;
}

void FtpSession::OnResponse(const CReply &reply)
{
    LastWords::OnResponse(reply);
    if (m_home.empty() && reply.Code().Value() == "257")
        m_home = quoted(reply.Value());
}

void FtpSession::OnBytesReceived(const std::vector<char> & /*buffer*/, long count)
{
    if (!m_job)
        return;
    m_job->moved += count;
    m_job->done += count;
}

void FtpSession::OnBytesSent(const std::vector<char> &buffer, long count)
{
    OnBytesReceived(buffer, count);
}

void FtpSession::OnBeginSendingData(const std::string & /*localName*/,
                                    const std::string & /*remoteFile*/, long long /*localSize*/,
                                    long long offset)
{
    if (m_job)
        m_job->done = offset;
}
