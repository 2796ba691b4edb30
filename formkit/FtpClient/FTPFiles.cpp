// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/FTPClient_p.h"
#include "formkit/FtpClient/FTPListing_p.h"
#include "formkit/FtpClient/FTPResume_p.h"

#include <algorithm>

namespace nsFTP {

bool CFTPClient::List(const std::string &path, std::vector<std::shared_ptr<CFTPFileStatus>> &result,
                      bool passive) const
{
    FTP_ASSERT(d->parser.get(), "m_apFileListParser.get()");
    if (d->machineListings && supports("MLST"))
        return MachineList(path, result, passive);
    COutputStream stream(CCommand(CCommand::LIST).AsString());
    if (!ExecuteDatachannelCommand(CCommand::LIST, path, CType::ASCII, passive, 0, stream))
        return false;
    result = entriesOf(stream, *d->parser, path);
    return true;
}

bool CFTPClient::List(const std::string &path, std::vector<std::string> &result, bool passive) const
{
    return listLines(CCommand::LIST, path, result, passive);
}

bool CFTPClient::NameList(const std::string &path,
                          std::vector<std::shared_ptr<CFTPFileStatus>> &result, bool passive) const
{
    std::vector<std::string> names;
    if (!listLines(CCommand::NLST, path, names, passive))
        return false;
    result = entriesOf(std::move(names), path);
    return true;
}

bool CFTPClient::NameList(const std::string &path, std::vector<std::string> &result,
                          bool passive) const
{
    return listLines(CCommand::NLST, path, result, passive);
}

bool CFTPClient::listLines(const CCommand &command, const std::string &path,
                           std::vector<std::string> &result, bool passive) const
{
    COutputStream stream(command.AsString());
    if (!ExecuteDatachannelCommand(command, path, CType::ASCII, passive, 0, stream))
        return false;
    result = linesOf(stream);
    return true;
}

bool CFTPClient::openLocal(CFile &file, CFile::TDirection direction) const
{
    if (file.Open(direction))
        return true;
    d->observers.report("Cannot open " + file.GetLocalStreamName() + ": " + file.GetErrorText(),
                        ReportAt::LocalFile);
    return false;
}

bool CFTPClient::DownloadFile(const std::string &remoteFile, const std::string &localFile,
                              const CRepresentation &representation, bool passive) const
{
    CFile file(localFile);
    if (!openLocal(file, CFile::receive))
        return false;
    const bool good = DownloadFile(remoteFile, file, representation, passive);
    const bool kept = file.Close(good);
    if (!kept)
        d->observers.report("Cannot write " + localFile + ": " + file.GetErrorText(),
                            ReportAt::LocalFile);
    return good && kept;
}

bool CFTPClient::DownloadFile(const std::string &remoteFile, ITransferNotification &notification,
                              const CRepresentation &representation, bool passive) const
{
    const DataCommand scope(*d);
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    // The type first: many servers refuse to tell a size in ASCII.
    if (!scope.entered() || !d->control.accepts(CCommand::RETR, {remoteFile}) ||
        RepresentationType(representation) != 0)
        return false;
    long remoteSize = -1;
    if (FileSize(remoteFile, remoteSize) != 0)
        remoteSize = -1;
    long long offset = 0;
    if (d->resume && isBinary(representation))
        offset = std::max(0LL, notification.GetLocalStreamSize());
    if (remoteSize >= 0 && offset > remoteSize) {
        d->observers.report("The local file is longer than the remote one.", ReportAt::Offset);
        return false;
    }
    if (!notification.SetLocalStreamOffset(offset)) {
        d->observers.report("Cannot resume at " + std::to_string(offset) + ".", ReportAt::Offset);
        return false;
    }
    CountedDownload download(notification, offset, isBinary(representation) ? remoteSize : -1);
    const bool good =
        execute(CCommand::RETR, remoteFile, representation, passive, offset, download);
    if (download.beganAgain(good)) {
        d->observers.report("The server ignores REST: the local file is left as it was.",
                            ReportAt::Offset);
        notification.SetLocalStreamOffset(offset);
        return false;
    }
    if (!good || !isBinary(representation) || remoteSize < 0 || download.present() == remoteSize)
        return good;
    d->observers.report("The local file has " + std::to_string(download.present()) +
                            " bytes, the remote one had " + std::to_string(remoteSize) + ".",
                        ReportAt::Offset);
    return download.present() > remoteSize;
}

bool CFTPClient::DownloadFile(const std::string &sourceFile, const CFTPClient &targetClient,
                              const std::string &targetFile, const CRepresentation &representation,
                              bool passive) const
{
    return TransferFile(*this, sourceFile, targetClient, targetFile, representation, passive);
}

bool CFTPClient::UploadFile(const std::string &localFile, const std::string &remoteFile,
                            bool storeUnique, const CRepresentation &representation,
                            bool passive) const
{
    CFile file(localFile);
    if (!openLocal(file, CFile::send))
        return false;
    const bool good = UploadFile(file, remoteFile, storeUnique, representation, passive);
    if (!file.IsGood())
        d->observers.report("Cannot read " + localFile + ": " + file.GetErrorText(),
                            ReportAt::LocalFile);
    return good;
}

bool CFTPClient::UploadFile(ITransferNotification &notification, const std::string &remoteFile,
                            bool storeUnique, const CRepresentation &representation,
                            bool passive) const
{
    const DataCommand scope(*d);
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    if (!scope.entered() || !d->control.accepts(CCommand::STOR, {remoteFile}))
        return false;
    CCommand command = storeUnique ? CCommand::STOU : CCommand::STOR;
    long offset = 0;
    if (d->resume && isBinary(representation)) {
        if (RepresentationType(representation) != 0)
            return false;
        long remoteSize = 0;
        if (FileSize(remoteFile, remoteSize) == 0 && remoteSize > 0) {
            command = CCommand::APPE;
            offset = remoteSize;
        }
    }
    const long long localSize = notification.GetLocalStreamSize();
    if (localSize >= 0 && offset > localSize) {
        d->observers.report("The remote file is longer than the local one.", ReportAt::Offset);
        return false;
    }
    if (!notification.SetLocalStreamOffset(offset)) {
        d->observers.report("Cannot resume at " + std::to_string(offset) + ".", ReportAt::Offset);
        return false;
    }
    d->observers.tell([&](CNotification &o) {
        o.OnBeginSendingData(notification.GetLocalStreamName(), remoteFile, localSize, offset);
    });
    return execute(command, remoteFile, representation, passive, 0, notification);
}

bool CFTPClient::UploadFile(const CFTPClient &sourceClient, const std::string &sourceFile,
                            const std::string &targetFile, const CRepresentation &representation,
                            bool passive) const
{
    return TransferFile(sourceClient, sourceFile, *this, targetFile, representation, passive);
}

} // namespace nsFTP
