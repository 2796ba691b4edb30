#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/FTPClient_p.h"
#include "formkit/FtpClient/FTPPassive_p.h"

#include <algorithm>
#include <cerrno>

using nsSocket::CBlockingSocketException;
using nsSocket::IBlockingSocket;

namespace nsFTP {

bool CFTPClient::GetIpAddressFromResponse(const std::string &reply, unsigned int &ipAddress,
                                          unsigned short &port)
{
    return readPassiveAddress(reply, ipAddress, port);
}

int CFTPClient::Passive(unsigned int &ipAddress, unsigned short &port) const
{
    CReply reply;
    const int result = d->simple(CCommand::PASV, {}, &reply);
    if (result == 0 && !readPassiveAddress(reply.Value(), ipAddress, port))
        return -1;
    return result;
}

// Where to connect after PASV answered with an address, by the policy for those that are not the
// peer's.
bool CFTPClient::Private::choosePassiveAddress(sockaddr_in &address)
{
    if (passivePolicy == TPassiveAddress::Use) {
        // "This network": the system would take 0.0.0.0 for the machine itself.
        const bool isAddress = ntohl(address.sin_addr.s_addr) >> 24 != 0;
        if (!isAddress)
            observers.report("No address in the reply to PASV.", ReportAt::Passive);
        return isAddress;
    }
    sockaddr_in peer = {};
    try {
        control.socket().GetPeerAddr(generic(&peer));
    } catch (const CBlockingSocketException &exception) {
        observers.report(exception, ReportAt::Passive);
        return false;
    }
    if (passivePolicy == TPassiveAddress::Refuse &&
        address.sin_addr.s_addr != peer.sin_addr.s_addr) {
        observers.report("Foreign address in the reply to PASV.", ReportAt::Passive);
        return false;
    }
    address.sin_addr = peer.sin_addr;
    return true;
}

int CFTPClient::DataPort(const std::string &hostIp, unsigned short port) const
{
    std::string argument = hostIp;
    std::replace(argument.begin(), argument.end(), '.', ',');
    argument += "," + std::to_string(port >> 8) + "," + std::to_string(port & 0xff);
    return d->simple(CCommand::PORT, {argument});
}

int CFTPClient::Restart(unsigned int position) const
{
    CReply reply;
    const int result = d->simple(CCommand::REST, {std::to_string(position)}, &reply);
    // "Not implemented, superfluous" is positive, and yet no agreement.
    if (reply.Code().Value() == "202")
        return -1;
    return reply.Code().IsPositiveIntermediateReply() ? 0 : result;
}

// REST where it is due, then the command itself; true when the server is about to transfer.
bool CFTPClient::begin(const CCommand &command, const std::string &path, unsigned int offset) const
{
    const bool restarts =
        command == CCommand::RETR || command == CCommand::STOR || command == CCommand::APPE;
    if (d->resume && offset != 0 && restarts && Restart(offset) != 0)
        return false;
    CReply reply;
    return d->control.exchange(command, {path}, reply) && reply.Code().IsPositivePreliminaryReply();
}

bool CFTPClient::OpenPassiveDataConnection(IBlockingSocket &dataSocket, const CCommand &command,
                                           const std::string &path, unsigned int offset) const
{
    FTP_ASSERT(command.IsDatachannelCommand(), "false");
    unsigned int ip = 0;
    unsigned short port = 0;
    if (Passive(ip, port) != 0)
        return false;
    sockaddr_in address = addressOf(ip, port);
    if (!d->choosePassiveAddress(address))
        return false;
    try {
        dataSocket.SetWaitLimit(d->control.timeout());
        dataSocket.Create(SOCK_STREAM);
        dataSocket.Connect(generic(&address));
    } catch (const CBlockingSocketException &exception) {
        d->observers.report(exception, ReportAt::Passive);
        dataSocket.Cleanup();
        return false;
    }
    return begin(command, path, offset);
}

bool CFTPClient::OpenActiveDataConnection(IBlockingSocket &dataSocket, const CCommand &command,
                                          const std::string &path, unsigned int offset) const
{
    FTP_ASSERT(command.IsDatachannelCommand(), "false");
    if (!IsConnected())
        return false;
    IBlockingSocket &control = d->control.socket();
    const std::unique_ptr<IBlockingSocket> listener(control.CreateInstance());
    try {
        listener->SetWaitLimit(d->control.timeout());
        listener->Create(SOCK_STREAM);
        sockaddr_in any = addressOf(INADDR_ANY, 0);
        listener->Bind(generic(&any));
        sockaddr_in listening = {};
        listener->GetSockAddr(generic(&listening));
        listener->Listen();
        sockaddr_in own = {};
        control.GetSockAddr(generic(&own));
        return DataPort(dotted(own.sin_addr), ntohs(listening.sin_port)) == 0 &&
               begin(command, path, offset) && d->accept(*listener, dataSocket);
    } catch (const CBlockingSocketException &exception) {
        d->observers.report(exception, ReportAt::Active);
        listener->Cleanup();
        return false;
    }
}

// Within the limit of one wait, whoever connects and whatever signals come meanwhile.
bool CFTPClient::Private::accept(IBlockingSocket &listener, IBlockingSocket &dataSocket)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(control.timeout());
    sockaddr_in wanted = {};
    if (acceptOnlyControlPeer)
        control.socket().GetPeerAddr(generic(&wanted));
    for (;;) {
        sockaddr_in peer = {};
        errno = 0;
        if (!listener.Accept(dataSocket, generic(&peer))) {
            if (errno != EINTR)
                return false;
        } else if (!acceptOnlyControlPeer || peer.sin_addr.s_addr == wanted.sin_addr.s_addr) {
            return true;
        } else {
            observers.report("Data connection from " + dotted(peer.sin_addr) + " turned away.",
                             ReportAt::ForeignPeer);
            dataSocket.Cleanup();
        }
        // Connections that stand in line already need no wait: they end with the time too.
        const auto left = std::chrono::ceil<std::chrono::seconds>(end - Clock::now());
        if (left.count() <= 0)
            return false;
        listener.SetWaitLimit(int(left.count()));
    }
}

bool CFTPClient::ExecuteDatachannelCommand(const CCommand &command, const std::string &path,
                                           const CRepresentation &representation, bool passive,
                                           unsigned int offset,
                                           ITransferNotification &notification) const
{
    FTP_ASSERT(command.IsDatachannelCommand(), "false");
    const DataCommand scope(*d);
    return scope.entered() && execute(command, path, representation, passive, offset, notification);
}

bool CFTPClient::execute(const CCommand &command, const std::string &path,
                         const CRepresentation &representation, bool passive, unsigned int offset,
                         ITransferNotification &notification) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    if (!IsConnected() || !d->control.accepts(command, {path}) ||
        RepresentationType(representation) != 0 || d->transfers.isAbortRequested())
        return false;
    const std::shared_ptr<IBlockingSocket> dataSocket(d->control.socket().CreateInstance());
    const bool opened = passive ? OpenPassiveDataConnection(*dataSocket, command, path, offset)
                                : OpenActiveDataConnection(*dataSocket, command, path, offset);
    const bool moved = opened && TransferData(command, notification, *dataSocket);
    try {
        dataSocket->Close();
    } catch (const CBlockingSocketException &exception) {
        d->observers.report(exception, ReportAt::CloseData);
        dataSocket->Cleanup();
    }
    CReply reply;
    return moved && d->control.receiveFor(command, reply) &&
           reply.Code().IsPositiveCompletionReply();
}

bool CFTPClient::TransferData(const CCommand &command, ITransferNotification &notification,
                              IBlockingSocket &dataSocket) const
{
    if (command.IsDatachannelWriteCommand())
        return SendData(notification, dataSocket);
    FTP_ASSERT(command.IsDatachannelReadCommand(), "false");
    return ReceiveData(notification, dataSocket);
}

bool CFTPClient::SendData(ITransferNotification &notification, IBlockingSocket &dataSocket) const
{
    const TransferState::Scope scope(d->transfers, TransferState::Scope::Step);
    try {
        const TransferState::Moving moving(d->transfers);
        unsigned long bytesRead = 0;
        const auto nextBlock = [&] {
            notification.OnPreBytesSend(d->buffer.data(), d->buffer.size(), bytesRead);
            FTP_ASSERT(bytesRead <= d->buffer.size(), "bytesRead <= m_vBuffer.size()");
            if (!notification.IsGood())
                d->transfers.stop();
        };
        nextBlock();
        while (!d->transfers.isAbortRequested() && bytesRead != 0) {
            const int written =
                dataSocket.Write(d->buffer.data(), int(bytesRead), d->control.timeout());
            FTP_ASSERT(written == int(bytesRead), "iNumWrite == static_cast<int>(bytesRead)");
            d->observers.tell([&](CNotification &o) { o.OnBytesSent(d->buffer, long(bytesRead)); });
            nextBlock();
        }
    } catch (const CBlockingSocketException &exception) {
        if (!d->transfers.isInterrupted())
            return d->breakOff(exception, dataSocket);
    }
    return !d->transfers.isAbortRequested() || d->abortTransfer(dataSocket);
}

bool CFTPClient::ReceiveData(ITransferNotification &notification, IBlockingSocket &dataSocket) const
{
    const TransferState::Scope scope(d->transfers, TransferState::Scope::Step);
    try {
        const TransferState::Moving moving(d->transfers);
        d->observers.tell([](CNotification &o) { o.OnBeginReceivingData(); });
        int count = d->receiveBlock(dataSocket);
        long long total = count;
        while (count != 0 && !d->transfers.isAbortRequested()) {
            d->observers.tell([&](CNotification &o) { o.OnBytesReceived(d->buffer, count); });
            notification.OnBytesReceived(d->buffer, count);
            if (!notification.IsGood())
                d->transfers.stop();
            count = d->receiveBlock(dataSocket);
            total += count;
        }
        d->observers.tell([&](CNotification &o) { o.OnEndReceivingData(total); });
    } catch (const CBlockingSocketException &exception) {
        return d->breakOff(exception, dataSocket);
    }
    return !d->transfers.isAbortRequested() || d->abortTransfer(dataSocket);
}

// 0 at the end, and when another thread ends the wait.
int CFTPClient::Private::receiveBlock(IBlockingSocket &dataSocket)
{
    try {
        return dataSocket.Receive(buffer.data(), int(buffer.size()), control.timeout());
    } catch (const CBlockingSocketException &) {
        if (transfers.isInterrupted())
            return 0;
        throw;
    }
}

// Always false, as the transfer is that breaks off.
bool CFTPClient::Private::breakOff(const CBlockingSocketException &exception,
                                   IBlockingSocket &dataSocket)
{
    observers.report(exception, ReportAt::Transfer);
    dataSocket.Cleanup();
    return false;
}

// Always false, too. The data connection goes first: servers answer no ABOR while it stands open.
bool CFTPClient::Private::abortTransfer(IBlockingSocket &dataSocket)
{
    dataSocket.Cleanup();
    transfers.forgetAbort();
    control.abort();
    return false;
}

int CFTPClient::Abort() const
{
    if (d->transfers.requestAbort())
        return 0;
    // Held by another thread's command, or called by an observer from within one: an abort has
    // no business there.
    const std::unique_lock<std::recursive_mutex> turn(d->exchange, std::try_to_lock);
    if (!turn.owns_lock() || d->observers.areTold())
        return -1;
    return d->simple(CCommand::ABOR);
}

} // namespace nsFTP
