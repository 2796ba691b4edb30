// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPClient.h"

#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/FTPClient_p.h"
#include "formkit/FtpClient/FTPLogon_p.h"
#include "formkit/FtpClient/FTPProtection_p.h"

#include <algorithm>

using nsSocket::IBlockingSocket;

namespace nsFTP {

static_assert(sizeof(long) == sizeof(long long), "sizes beyond 4 GiB travel in a long");

namespace {

using Turn = std::lock_guard<std::recursive_mutex>;

bool isSendable(const ControlConnection &control, const Logon &steps)
{
    const std::vector<Logon::Command> commands = steps.commands();
    return control.accepts(steps.host()) &&
           std::all_of(commands.begin(), commands.end(), [&](const Logon::Command &step) {
               return control.accepts(step.command, {step.argument});
           });
}

} // namespace

CFTPClient::Private::Private(const std::shared_ptr<IBlockingSocket> &socket,
                             const ControlTimes &times, unsigned int bufferSize,
                             const std::string &directory)
    : buffer(std::clamp(bufferSize, 2U, 1U << 30))
    , control(socket, observers, transfers, buffer, times)
    , initialDirectory(directory)
{
}

bool CFTPClient::Private::isCalledByTransfer() const
{
    return transfers.isMoving() || (transfers.isRunning() && observers.areTold());
}

int CFTPClient::Private::simple(const Verb &command, const CArg &arguments, CReply *replyOut)
{
    const Turn turn(exchange);
    CReply reply;
    if (isCalledByTransfer() || !control.exchange(command, arguments, reply))
        return -1;
    if (reply.Code().IsPositivePreliminaryReply())
        control.abandonReplies();
    if (replyOut)
        *replyOut = reply;
    return SimpleErrorCheck(reply);
}

CFTPClient::CFTPClient(const std::shared_ptr<IBlockingSocket> &socket, unsigned int receiveTimeout,
                       unsigned int bufferSize, unsigned int responseDelay,
                       const std::string &initialDirectory)
    : d(std::make_unique<Private>(socket, ControlTimes{receiveTimeout, responseDelay}, bufferSize,
                                  initialDirectory))
{
    FTP_ASSERT(socket.get(), "m_apSckControlConnection.get()");
}

CFTPClient::~CFTPClient()
{
    for (CNotification *observer : d->observers.set)
        observer->m_Clients.erase(this);
}

void CFTPClient::AttachObserver(CNotification *observer)
{
    FTP_ASSERT(observer, "pObserver");
    d->observers.set.insert(observer);
    try {
        observer->m_Clients.insert(this);
    } catch (...) {
        d->observers.set.erase(observer);
        throw;
    }
}

void CFTPClient::DetachObserver(CNotification *observer)
{
    FTP_ASSERT(observer, "pObserver");
    if (d->observers.set.erase(observer) > 0)
        observer->m_Clients.erase(this);
}

const CFTPClient::TObserverSet &CFTPClient::GetObservers() const
{
    return d->observers.set;
}

void CFTPClient::SetFileListParser(const std::shared_ptr<IFileListParser> &parser)
{
    d->parser = parser;
}

void CFTPClient::SetResumeMode(bool resume)
{
    d->resume = resume;
}

bool CFTPClient::IsResumeModeEnabled() const
{
    return d->resume;
}

void CFTPClient::SetPassiveAddressPolicy(TPassiveAddress policy)
{
    d->passivePolicy = policy;
}

void CFTPClient::SetAcceptOnlyControlPeer(bool only)
{
    d->acceptOnlyControlPeer = only;
}

bool CFTPClient::IsTransferringData() const
{
    return d->transfers.isMoving();
}

bool CFTPClient::IsConnected() const
{
    return d->control.isOpen();
}

bool CFTPClient::Login(const CLogonInfo &logon)
{
    const Turn turn(d->exchange);
    if (d->isCalledByTransfer())
        return false;
    if (!Logon::isKnown(logon.FirewallType())) {
        d->observers.report("Unknown firewall type.", ReportAt::Argument);
        return false;
    }
    Logon steps(logon);
    if (!d->control.accepts(CCommand::CWD, {d->initialDirectory}) || !isSendable(d->control, steps))
        return false;

    if (IsConnected())
        Logout();
    Protection protection(d->control, d->observers);
    CReply reply;
    if (!d->control.open(steps.host(), steps.port()) || !protection.beforeGreeting() ||
        !d->control.receive(reply))
        return false;
    bool goesOn = reply.Code().IsPositiveCompletionReply();
    if (goesOn && !protection.afterGreeting())
        return false;
    while (goesOn && !steps.isOver()) {
        const Logon::Command step = steps.command();
        if (!d->control.exchange(step.command, {step.argument}, reply))
            return false;
        goesOn =
            reply.Code().IsPositiveCompletionReply() || reply.Code().IsPositiveIntermediateReply();
        if (goesOn)
            steps.take(reply);
    }
    if (!goesOn) {
        d->control.abandonReplies();
        return false;
    }
    if (steps.isLoggedOn())
        return protection.afterLogon() && protection.atTheEnd() && offerUtf8() &&
               ChangeWorkingDirectory(d->initialDirectory) == 0;
    d->observers.report("Logon failed.", ReportAt::Logon);
    return false;
}

int CFTPClient::Logout() const
{
    const Turn turn(d->exchange);
    if (d->isCalledByTransfer())
        return -1;
    const int result = d->simple(CCommand::QUIT);
    d->control.close();
    return result;
}

bool CFTPClient::SendCommand(const CCommand &command, const CArg &arguments) const
{
    const Turn turn(d->exchange);
    return !d->isCalledByTransfer() && d->control.send(command, arguments);
}

bool CFTPClient::SendCommand(const CCommand &command, const CArg &arguments, CReply &reply) const
{
    const Turn turn(d->exchange);
    return SendCommand(command, arguments) && GetResponse(reply);
}

bool CFTPClient::GetResponse(CReply &reply) const
{
    const Turn turn(d->exchange);
    return !d->isCalledByTransfer() && d->control.receive(reply);
}

int CFTPClient::SimpleErrorCheck(const CReply &reply)
{
    if (reply.Code().IsPositiveCompletionReply())
        return 0;
    if (reply.Code().IsNegativeReply())
        return 1;
    FTP_ASSERT(reply.Code().IsPositiveReply(), "Reply.Code().IsPositiveReply()");
    return -1;
}

int CFTPClient::ChangeWorkingDirectory(const std::string &directory) const
{
    FTP_ASSERT(!directory.empty(), "!strDirectory.empty()");
    return d->simple(CCommand::CWD, {directory});
}

int CFTPClient::ChangeToParentDirectory() const
{
    return d->simple(CCommand::CDUP);
}

int CFTPClient::PrintWorkingDirectory() const
{
    return d->simple(CCommand::PWD);
}

int CFTPClient::System() const
{
    return d->simple(CCommand::SYST);
}

int CFTPClient::Noop() const
{
    return d->simple(CCommand::NOOP);
}

int CFTPClient::MakeDirectory(const std::string &directory) const
{
    return d->simple(CCommand::MKD, {directory});
}

int CFTPClient::RemoveDirectory(const std::string &directory) const
{
    return d->simple(CCommand::RMD, {directory});
}

int CFTPClient::Delete(const std::string &file) const
{
    return d->simple(CCommand::DELE, {file});
}

int CFTPClient::SiteParameters(const std::string &text) const
{
    return d->simple(CCommand::SITE, {text});
}

int CFTPClient::Help(const std::string &topic) const
{
    return d->simple(CCommand::HELP, {topic});
}

int CFTPClient::Status(const std::string &path) const
{
    return d->simple(CCommand::STAT, {path});
}

int CFTPClient::StructureMount(const std::string &path) const
{
    return d->simple(CCommand::SMNT, {path});
}

int CFTPClient::Reinitialize() const
{
    return d->simple(CCommand::REIN);
}

int CFTPClient::FileStructure(const CStructure &structure) const
{
    return d->simple(CCommand::STRU, {structure.AsString()});
}

int CFTPClient::TransferMode(const CTransferMode &mode) const
{
    return d->simple(CCommand::MODE, {mode.AsString()});
}

int CFTPClient::Allocate(int bytes, const int *recordSize) const
{
    CArg arguments = {std::to_string(bytes)};
    if (recordSize) {
        arguments.emplace_back("R");
        arguments.push_back(std::to_string(*recordSize));
    }
    return d->simple(CCommand::ALLO, arguments);
}

int CFTPClient::RepresentationType(const CRepresentation &representation, unsigned int size) const
{
    const Turn turn(d->exchange);
    if (d->control.session.representation == representation)
        return 0;
    CArg arguments = {representation.Type().AsString()};
    const bool text =
        representation.Type() == CType::ASCII || representation.Type() == CType::EBCDIC;
    if (text && representation.Format() != CTypeFormat::None)
        arguments.push_back(representation.Format().AsString());
    if (representation.Type() == CType::LocalByte)
        arguments.push_back(std::to_string(size == 0 ? 8 : size));
    const int result = d->simple(CCommand::TYPE, arguments);
    if (result == 0)
        d->control.session.representation = representation;
    return result;
}

int CFTPClient::Rename(const std::string &from, const std::string &to) const
{
    const Turn turn(d->exchange);
    CReply reply;
    if (!d->control.accepts(CCommand::RNTO, {to}))
        return -1;
    const int result = d->simple(CCommand::RNFR, {from}, &reply);
    if (reply.Code().IsPositiveIntermediateReply())
        return d->simple(CCommand::RNTO, {to});
    return result == 1 ? 1 : -1;
}

int CFTPClient::Move(const std::string &from, const std::string &to) const
{
    return Rename(from, to);
}

int CFTPClient::FileModificationTime(const std::string &path, long long &seconds) const
{
    CReply reply;
    const int result = d->simple(CCommand::MDTM, {path}, &reply);
    return result == 0 && !readTime(valueOf(reply), seconds) ? -1 : result;
}

int CFTPClient::FileSize(const std::string &path, long &size) const
{
    CReply reply;
    const int result = d->simple(CCommand::SIZE, {path}, &reply);
    const std::string_view value = valueOf(reply);
    return result == 0 && !CFTPListParser::GetLong(value.data(), value.size(), size) ? -1 : result;
}

} // namespace nsFTP
