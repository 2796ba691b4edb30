// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPAddress_p.h"
#include "formkit/FtpClient/FTPControl_p.h"
#include "formkit/FtpClient/FTPTransferState_p.h"

namespace nsFTP {

struct CFTPClient::Private
{
    Private(const std::shared_ptr<nsSocket::IBlockingSocket> &socket, const ControlTimes &times,
            unsigned int bufferSize, const std::string &directory);

    /// Sends a command and reads one reply. If it is a 1xx reply, the final reply is still owed.
    int simple(const Verb &command, const CArg &arguments = {}, CReply *reply = nullptr);
    /// True within calls of observers and streams during a transfer. A command would then take
    /// the replies of the transfer.
    bool isCalledByTransfer() const;
    /// A socket of the control socket's kind. If it cannot be made, that is reported and the result
    /// is null.
    std::unique_ptr<nsSocket::IBlockingSocket> newSocket(ReportAt place);
    bool choosePassiveAddress(Address &address);
    bool findPeer(Address &peer);
    Address acceptedFrom(const sockaddr_in &peer, nsSocket::IBlockingSocket &dataSocket);
    bool accept(nsSocket::IBlockingSocket &listener, nsSocket::IBlockingSocket &dataSocket);
    int receiveBlock(nsSocket::IBlockingSocket &dataSocket);
    bool breakOff(const nsSocket::CBlockingSocketException &exception,
                  nsSocket::IBlockingSocket &dataSocket);
    bool abortTransfer(nsSocket::IBlockingSocket &dataSocket);

    std::vector<char> buffer;
    TransferState transfers;
    Observers observers;
    ControlConnection control;
    const std::string initialDirectory;
    std::shared_ptr<IFileListParser> parser = std::make_shared<CFTPListParser>();
    std::atomic<bool> resume{true};
    TPassiveAddress passivePolicy = TPassiveAddress::Use;
    bool acceptOnlyControlPeer = false;
    bool extendedAddresses = false;
    bool machineListings = false;
    bool utf8 = false;
    /// Held during each exchange of command and reply, so that Abort() from another thread sends
    /// nothing then.
    std::recursive_mutex exchange;
};

/// The time from the beginning of a data-channel command to its final reply. Abort() only makes a
/// request in this time. Replies that are still owed at the end are left to the next command.
class CFTPClient::DataCommand
{
public:
    explicit DataCommand(Private &client)
        : d(client), m_scope(d.transfers, TransferState::Scope::Command)
    {
    }
    DataCommand(const DataCommand &) = delete;
    DataCommand &operator=(const DataCommand &) = delete;
    ~DataCommand()
    {
        if (!entered())
            return;
        const std::lock_guard<std::recursive_mutex> turn(d.exchange);
        d.control.abandonReplies();
    }

    bool entered() const { return m_scope.entered(); }

private:
    Private &d;
    const TransferState::Scope m_scope;
};

} // namespace nsFTP
