#pragma once

#include "formkit/FtpClient/FTPControl_p.h"
#include "formkit/FtpClient/FTPTransferState_p.h"

namespace nsFTP {

struct CFTPClient::Private
{
    Private(const std::shared_ptr<nsSocket::IBlockingSocket> &socket, const ControlTimes &times,
            unsigned int bufferSize, const std::string &directory);

    /// One command and its reply. A server that announces another reply is not waited for here.
    int simple(const CCommand &command, const CArg &arguments = {}, CReply *reply = nullptr);
    /// Whether the caller is called by the running transfer, whose replies it would take.
    bool isCalledByTransfer() const;
    bool choosePassiveAddress(sockaddr_in &address);
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
    /// One exchange at a time; Abort() from another thread keeps out of one.
    std::recursive_mutex exchange;
};

/// The time from a data-channel command's beginning to its final reply, in which Abort() only
/// asks. What the command is still owed afterwards is left to the next one.
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
