// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPAddress_p.h"
#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/FTPClient_p.h"
#include "formkit/FtpClient/FTPPassive_p.h"

#include <algorithm>
#include <chrono>

#include <arpa/inet.h>

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

std::unique_ptr<IBlockingSocket> CFTPClient::Private::newSocket(ReportAt place)
{
    try {
        return std::unique_ptr<IBlockingSocket>(control.socket().CreateInstance());
    } catch (const CBlockingSocketException &exception) {
        observers.report(exception, place);
        return nullptr;
    }
}

// Decides by the policy where to connect to, given the address in the reply to PASV.
bool CFTPClient::Private::choosePassiveAddress(Address &address)
{
    if (passivePolicy == TPassiveAddress::Use) {
        if (address.isThisNetwork())
            observers.report("No address in the reply to PASV.", ReportAt::Passive);
        return !address.isThisNetwork();
    }
    Address peer;
    if (!findPeer(peer))
        return false;
    if (passivePolicy == TPassiveAddress::Refuse && !address.isSameHost(peer)) {
        observers.report("Foreign address in the reply to PASV.", ReportAt::Passive);
        return false;
    }
    peer.setPort(address.port());
    address = peer;
    return true;
}

// The control connection's.
bool CFTPClient::Private::findPeer(Address &peer)
{
    try {
        peer = Address::peerOf(control.socket());
        return true;
    } catch (const CBlockingSocketException &exception) {
        observers.report(exception, ReportAt::Passive);
        return false;
    }
}

// Asks the server where it listens, by EPSV or PASV.
bool CFTPClient::askForAddress(Address &address) const
{
    const bool onlyExtended = d->control.family() == AF_INET6;
    if (onlyExtended || (d->extendedAddresses && !d->control.session.refusesEpsv)) {
        CReply reply;
        unsigned short port = 0;
        const int result = d->simple("EPSV", {}, &reply);
        if (result == 0) {
            const bool found = readExtendedPort(reply.Value(), port) && d->findPeer(address);
            address.setPort(port);
            return found;
        }
        if (onlyExtended || result != 1)
            return false;
        d->control.session.refusesEpsv = reply.Code().IsPermanentNegativeReply();
    }
    unsigned int ip = 0;
    unsigned short port = 0;
    if (Passive(ip, port) != 0)
        return false;
    address = Address(ip, port);
    return d->choosePassiveAddress(address);
}

// Tells the server where the client listens, by EPRT or PORT.
int CFTPClient::tellAddress(const Address &address) const
{
    const bool onlyExtended = address.family() == AF_INET6;
    if (onlyExtended || (d->extendedAddresses && !d->control.session.refusesEprt)) {
        CReply reply;
        const int result = d->simple("EPRT", {extendedArgument(address)}, &reply);
        if (onlyExtended || result != 1)
            return result;
        d->control.session.refusesEprt = reply.Code().IsPermanentNegativeReply();
    }
    return DataPort(address.host(), address.port());
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
    return restart(position);
}

int CFTPClient::restart(long long position) const
{
    CReply reply;
    const int result = d->simple(CCommand::REST, {std::to_string(position)}, &reply);
    // "Not implemented, superfluous" is positive, and yet no agreement.
    if (reply.Code().Value() == "202")
        return -1;
    return reply.Code().IsPositiveIntermediateReply() ? 0 : result;
}

// Sends REST when a restart is wanted, then the command; true when the server is about to transfer.
bool CFTPClient::begin(const Verb &command, const std::string &path, long long offset) const
{
    const bool restarts =
        command == CCommand::RETR || command == CCommand::STOR || command == CCommand::APPE;
    if (d->transfers.isAbortRequested() || !d->control.mayMoveData())
        return false;
    if (d->resume && offset != 0 && restarts && restart(offset) != 0) {
        // A REST that was not answered may still take effect, on a later transfer.
        if (d->control.isOwedReplies())
            d->control.close();
        return false;
    }
    CReply reply;
    return d->control.exchange(command, {path}, reply) && reply.Code().IsPositivePreliminaryReply();
}

bool CFTPClient::OpenPassiveDataConnection(IBlockingSocket &dataSocket, const CCommand &command,
                                           const std::string &path, unsigned int offset) const
{
    FTP_ASSERT(command.IsDatachannelCommand(), "false");
    return openPassive(dataSocket, command, path, offset);
}

bool CFTPClient::openPassive(IBlockingSocket &dataSocket, const Verb &command,
                             const std::string &path, long long offset) const
{
    Address address;
    if (!askForAddress(address))
        return false;
    try {
        dataSocket.SetWaitLimit(d->control.timeout());
        createFor(dataSocket, address.family());
        dataSocket.Connect(address.generic());
    } catch (const CBlockingSocketException &exception) {
        d->observers.report(exception, ReportAt::Passive);
        dataSocket.Cleanup();
        return false;
    }
    return begin(command, path, offset) && d->control.protect(dataSocket);
}

bool CFTPClient::OpenActiveDataConnection(IBlockingSocket &dataSocket, const CCommand &command,
                                          const std::string &path, unsigned int offset) const
{
    FTP_ASSERT(command.IsDatachannelCommand(), "false");
    return openActive(dataSocket, command, path, offset);
}

bool CFTPClient::openActive(IBlockingSocket &dataSocket, const Verb &command,
                            const std::string &path, long long offset) const
{
    if (!IsConnected())
        return false;
    const std::unique_ptr<IBlockingSocket> listener = d->newSocket(ReportAt::Active);
    if (!listener)
        return false;
    try {
        listener->SetWaitLimit(d->control.timeout());
        createFor(*listener, d->control.family());
        listener->Bind(Address::any(d->control.family()).generic());
        const Address listening = Address::ownOf(*listener);
        listener->Listen();
        Address own = Address::ownOf(d->control.socket());
        own.setPort(listening.port());
        return tellAddress(own) == 0 && begin(command, path, offset) &&
               d->accept(*listener, dataSocket) && d->control.protect(dataSocket);
    } catch (const CBlockingSocketException &exception) {
        d->observers.report(exception, ReportAt::Active);
        listener->Cleanup();
        return false;
    }
}

// The other end of a data connection that was accepted.
Address CFTPClient::Private::acceptedFrom(const sockaddr_in &peer, IBlockingSocket &dataSocket)
{
    try {
        return control.family() == AF_INET6 ? Address::peerOf(dataSocket)
                                            : Address(ntohl(peer.sin_addr.s_addr), 0);
    } catch (const CBlockingSocketException &) {
        return {}; // it has gone already
    }
}

// Takes the server's connection. However many signals and foreign peers come, it all lasts no
// longer than one wait.
bool CFTPClient::Private::accept(IBlockingSocket &listener, IBlockingSocket &dataSocket)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(control.timeout());
    const Address wanted = acceptOnlyControlPeer ? Address::peerOf(control.socket()) : Address();
    for (;;) {
        sockaddr_in psa = {};
        if (listener.Accept(dataSocket, reinterpret_cast<sockaddr *>(&psa))) {
            const Address peer = acceptedFrom(psa, dataSocket);
            if (!acceptOnlyControlPeer || peer.isSameHost(wanted))
                return true;
            observers.report("Data connection from " + peer.host() + " turned away.",
                             ReportAt::ForeignPeer);
            dataSocket.Cleanup();
        }
        // Peers that are in the queue already are accepted without a wait: check the time here too.
        const auto left = std::chrono::ceil<std::chrono::seconds>(end - Clock::now());
        if (left.count() <= 0 || transfers.isAbortRequested())
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

bool CFTPClient::execute(const Verb &command, const std::string &path,
                         const CRepresentation &representation, bool passive, long long offset,
                         ITransferNotification &notification) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    if (!IsConnected() || !d->control.accepts(command, {path}) ||
        RepresentationType(representation) != 0 || d->transfers.isAbortRequested())
        return false;
    const std::shared_ptr<IBlockingSocket> dataSocket = d->newSocket(ReportAt::CreateData);
    if (!dataSocket)
        return false;
    const bool opened = passive ? openPassive(*dataSocket, command, path, offset)
                                : openActive(*dataSocket, command, path, offset);
    const bool moved = opened && (command.sends() ? SendData(notification, *dataSocket)
                                                  : ReceiveData(notification, *dataSocket));
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
        auto *const secure = dynamic_cast<nsSocket::ISecureSocket *>(&dataSocket);
        if (secure && !d->transfers.isAbortRequested())
            secure->EndTls(d->control.timeout());
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

// 0 at the end of the data, and when another thread ended the wait.
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

// Always false: the transfer's result.
bool CFTPClient::Private::breakOff(const CBlockingSocketException &exception,
                                   IBlockingSocket &dataSocket)
{
    observers.report(exception, ReportAt::Transfer);
    dataSocket.Cleanup();
    return false;
}

// Always false, too. Closes the data connection first: servers answer no ABOR while it is open.
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
    // Another command is under way: on another thread, or the one whose observer calls.
    const std::unique_lock<std::recursive_mutex> turn(d->exchange, std::try_to_lock);
    if (!turn.owns_lock() || d->observers.areTold())
        return -1;
    return d->simple(CCommand::ABOR);
}

void CFTPClient::GiveUp() const
{
    d->transfers.giveUp();
}

} // namespace nsFTP
