// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPClient_p.h"
#include "formkit/FtpClient/FTPResume_p.h"

#include <QScopeGuard>

namespace nsFTP {

bool CFTPClient::TransferFile(const CFTPClient &source, const std::string &sourceFile,
                              const CFTPClient &target, const std::string &targetFile,
                              const CRepresentation &representation, bool passive)
{
    if (&source == &target)
        return false;
    const std::scoped_lock turns(source.d->exchange, target.d->exchange);
    if (source.d->transfers.isRunning() || target.d->transfers.isRunning() ||
        !source.d->control.accepts(CCommand::RETR, {sourceFile}) ||
        !target.d->control.accepts(CCommand::STOR, {targetFile}) ||
        source.RepresentationType(representation) != 0 ||
        target.RepresentationType(representation) != 0)
        return false;
    for (const CFTPClient *client : {&source, &target}) {
        if (client->d->control.session.protectsData || client->d->control.family() != AF_INET) {
            client->d->observers.report("Server to server is for IPv4 without protected data.",
                                        ReportAt::Between);
            return false;
        }
    }
    // The target makes its file before the source is asked for data: better to know first that
    // there is something to send. In ASCII the answer means nothing: many servers refuse it with
    // the code of a missing file.
    CReply size;
    if (isBinary(representation))
        source.d->simple(CCommand::SIZE, {sourceFile}, &size);
    if (size.Code().Value() == "550") {
        source.d->observers.report("The source has no file " + sourceFile + ".", ReportAt::Between);
        return false;
    }
    return agreeOnAddress(passive ? source : target, passive ? target : source) &&
           transferBetween(source, sourceFile, target, targetFile, passive);
}

bool CFTPClient::agreeOnAddress(const CFTPClient &listening, const CFTPClient &connecting)
{
    unsigned int ip = 0;
    unsigned short port = 0;
    if (listening.Passive(ip, port) != 0)
        return false;
    Address address(ip, port);
    return listening.d->choosePassiveAddress(address) &&
           connecting.DataPort(address.host(), port) == 0;
}

bool CFTPClient::transferBetween(const CFTPClient &source, const std::string &sourceFile,
                                 const CFTPClient &target, const std::string &targetFile,
                                 bool passive)
{
    ControlConnection &from = source.d->control;
    ControlConnection &to = target.d->control;
    // What is still owed at the end is left to the next commands.
    const auto owed = qScopeGuard([&] {
        from.abandonReplies();
        to.abandonReplies();
    });
    // The target is told first: some servers connect as soon as they know the address, and lose
    // what arrives before they are told to store it. A target that listens may not answer before
    // it has a connection.
    CReply stored;
    const bool begun = passive ? target.begin(CCommand::STOR, targetFile, 0) &&
                                     source.begin(CCommand::RETR, sourceFile, 0)
                               : to.send(CCommand::STOR, {targetFile}) &&
                                     source.begin(CCommand::RETR, sourceFile, 0) &&
                                     to.receiveFor(CCommand::STOR, stored) &&
                                     stored.Code().IsPositivePreliminaryReply();
    for (ControlConnection *control : {passive ? &from : &to, passive ? &to : &from}) {
        if (!begun && control->isOwedReplies())
            control->abort();
    }
    CReply sent;
    const bool sourceEnds = begun && from.receiveFor(CCommand::RETR, sent);
    const bool targetEnds = begun && to.receiveFor(CCommand::STOR, stored);
    return sourceEnds && targetEnds && sent.Code().IsPositiveCompletionReply() &&
           stored.Code().IsPositiveCompletionReply();
}

} // namespace nsFTP
