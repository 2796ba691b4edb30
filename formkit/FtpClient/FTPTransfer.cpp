#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/FTPClient_p.h"

#include <algorithm>
#include <limits>

#include <arpa/inet.h>

using nsSocket::CBlockingSocketException;
using nsSocket::IBlockingSocket;

namespace nsFTP {

namespace {

class TransferringScope
{
public:
    explicit TransferringScope(std::atomic<bool> &flag) : m_flag(flag) { m_flag = true; }
    TransferringScope(const TransferringScope &) = delete;
    TransferringScope &operator=(const TransferringScope &) = delete;
    ~TransferringScope() { m_flag = false; }

private:
    std::atomic<bool> &m_flag;
};

sockaddr *generic(sockaddr_in *address)
{
    return reinterpret_cast<sockaddr *>(address);
}

std::string dotted(in_addr address)
{
    char text[INET_ADDRSTRLEN] = {};
    ::inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Reads six numbers of a byte each from the start of a text; false when there are fewer, or
// when the list goes on.
bool readSixNumbers(std::string_view text, unsigned int (&numbers)[6])
{
    size_t i = 0;
    const auto skipBlanks = [&] { i = std::min(text.find_first_not_of(" \t", i), text.size()); };
    for (int n = 0; n < 6; ++n) {
        numbers[n] = 0;
        const size_t begin = i;
        for (; i < text.size() && isDigit(text[i]) && numbers[n] <= 255; ++i)
            numbers[n] = numbers[n] * 10 + unsigned(text[i] - '0');
        if (i == begin || numbers[n] > 255)
            return false;
        const size_t end = i;
        skipBlanks();
        const bool comma = i < text.size() && text[i] == ',';
        if (n == 5)
            return !comma && (end == text.size() || !isDigit(text[end]));
        if (!comma)
            return false;
        ++i;
        skipBlanks();
    }
    return false;
}

// Offsets of text mean something else on each server.
bool mayResume(const CRepresentation &representation)
{
    return representation.Type() == CType::Image || representation.Type() == CType::LocalByte;
}

// Hands a resumed download on, and tells whether the server sent the file from its beginning
// although it was asked to go on behind the local part.
class ResumedStream : public ITransferNotification
{
public:
    ResumedStream(ITransferNotification &target, long long offset)
        : m_target(target), m_offset(offset)
    {
    }

    void OnBytesReceived(const std::vector<char> &buffer, long count) override
    {
        if (m_repeats && m_received < m_offset) {
            const auto known = size_t(std::min<long long>(count, m_offset - m_received));
            m_part.resize(known);
            m_repeats = m_target.ReadLocalStream(m_received, m_part.data(), known) == known &&
                        std::equal(m_part.begin(), m_part.end(), buffer.begin());
        }
        m_received += count;
        m_target.OnBytesReceived(buffer, count);
    }
    void OnPreBytesSend(char * /*buffer*/, unsigned long /*bufferSize*/,
                        unsigned long &bytesToSend) override
    {
        bytesToSend = 0;
    }
    bool IsGood() const override { return m_target.IsGood(); }

    // The count proves it where it can; else the local part's bytes once more are taken for it.
    // The remote size is -1 when it is not known.
    bool beginsAgain(long long remoteSize, bool good) const
    {
        if (m_offset == 0 || m_received == 0)
            return false;
        const long long rest = remoteSize - m_offset;
        if (remoteSize < 0 || m_received < rest || (m_received == rest && !good))
            return m_repeats;
        // A file that grows while it is read ends between its rest and the whole of it.
        return m_received > rest && (m_repeats || !good || m_received >= remoteSize);
    }

private:
    ITransferNotification &m_target;
    const long long m_offset;
    long long m_received = 0;
    bool m_repeats = true;
    std::vector<char> m_part;
};

} // namespace

bool CFTPClient::GetIpAddressFromResponse(const std::string &reply, unsigned int &ipAddress,
                                          unsigned short &port)
{
    const std::string_view text = reply;
    char before = ' '; // the last character that is no blank: a list begins behind no comma
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned int n[6];
        const bool begins = isDigit(text[i]) && (i == 0 || !isDigit(text[i - 1])) && before != ',';
        if (begins && readSixNumbers(text.substr(i), n)) {
            if (n[4] == 0 && n[5] == 0)
                return false;
            ipAddress = n[0] << 24 | n[1] << 16 | n[2] << 8 | n[3];
            port = static_cast<unsigned short>(n[4] << 8 | n[5]);
            return true;
        }
        if (text[i] != ' ' && text[i] != '\t')
            before = text[i];
    }
    return false;
}

int CFTPClient::Passive(unsigned int &ipAddress, unsigned short &port) const
{
    CReply reply;
    const int result = simple(CCommand::PASV, {}, &reply);
    if (result == 0 && !GetIpAddressFromResponse(reply.Value(), ipAddress, port))
        return -1;
    return result;
}

// Where to connect after PASV, by the policy for addresses that are not the peer's.
bool CFTPClient::passiveAddress(sockaddr_in &address) const
{
    unsigned int ip = 0;
    unsigned short port = 0;
    if (Passive(ip, port) != 0)
        return false;
    address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(ip);
    if (d->passiveAddress == TPassiveAddress::Use) {
        // "This network": the system would take 0.0.0.0 for the machine itself.
        if (ip >> 24 == 0)
            d->report("No address in the reply to PASV.", ReportAt::Passive);
        return ip >> 24 != 0;
    }
    sockaddr_in peer = {};
    try {
        d->control->GetPeerAddr(generic(&peer));
    } catch (const CBlockingSocketException &exception) {
        d->report(exception, ReportAt::Passive);
        return false;
    }
    if (d->passiveAddress == TPassiveAddress::Refuse &&
        address.sin_addr.s_addr != peer.sin_addr.s_addr) {
        d->report("Foreign address in the reply to PASV.", ReportAt::Passive);
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
    return simple(CCommand::PORT, {argument});
}

int CFTPClient::Restart(unsigned int position) const
{
    CReply reply;
    const int result = simple(CCommand::REST, {std::to_string(position)}, &reply);
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
    return SendCommand(command, {path}, reply) && reply.Code().IsPositivePreliminaryReply();
}

bool CFTPClient::OpenPassiveDataConnection(IBlockingSocket &dataSocket, const CCommand &command,
                                           const std::string &path, unsigned int offset) const
{
    FTP_ASSERT(command.IsDatachannelCommand(), "false");
    sockaddr_in address = {};
    if (!passiveAddress(address))
        return false;
    try {
        dataSocket.SetWaitLimit(d->timeout());
        dataSocket.Create(SOCK_STREAM);
        dataSocket.Connect(generic(&address));
    } catch (const CBlockingSocketException &exception) {
        dataSocket.Cleanup();
        d->report(exception, ReportAt::Passive);
        return false;
    }
    return begin(command, path, offset);
}

bool CFTPClient::OpenActiveDataConnection(IBlockingSocket &dataSocket, const CCommand &command,
                                          const std::string &path, unsigned int offset) const
{
    FTP_ASSERT(command.IsDatachannelCommand(), "false");
    if (!d->connected())
        return false;
    const std::unique_ptr<IBlockingSocket> listener(d->control->CreateInstance());
    try {
        listener->SetWaitLimit(d->timeout());
        listener->Create(SOCK_STREAM);
        sockaddr_in any = {};
        any.sin_family = AF_INET;
        listener->Bind(generic(&any));
        sockaddr_in listening = {};
        listener->GetSockAddr(generic(&listening));
        listener->Listen();
        sockaddr_in own = {};
        d->control->GetSockAddr(generic(&own));
        return DataPort(dotted(own.sin_addr), ntohs(listening.sin_port)) == 0 &&
               begin(command, path, offset) && accept(*listener, dataSocket);
    } catch (const CBlockingSocketException &exception) {
        d->report(exception, ReportAt::Active);
        listener->Cleanup();
        return false;
    }
}

bool CFTPClient::accept(IBlockingSocket &listener, IBlockingSocket &dataSocket) const
{
    sockaddr_in peer = {};
    if (!d->acceptOnlyControlPeer)
        return listener.Accept(dataSocket, generic(&peer));
    sockaddr_in control = {};
    d->control->GetPeerAddr(generic(&control));
    const auto end = Private::Clock::now() + std::chrono::seconds(d->timeout());
    while (listener.Accept(dataSocket, generic(&peer))) {
        if (peer.sin_addr.s_addr == control.sin_addr.s_addr)
            return true;
        d->report("Data connection from " + dotted(peer.sin_addr) + " turned away.",
                  ReportAt::ForeignPeer);
        dataSocket.Cleanup();
        // Connections that stand in line already need no wait: they end with the time too.
        const auto left = std::chrono::ceil<std::chrono::seconds>(end - Private::Clock::now());
        if (left.count() <= 0)
            break;
        listener.SetWaitLimit(int(left.count()));
    }
    return false;
}

// What a client is still owed at the end of a scope is left to its next command.
struct CFTPClient::OwedReplies
{
    explicit OwedReplies(Private &client) : d(client) {}
    OwedReplies(const OwedReplies &) = delete;
    OwedReplies &operator=(const OwedReplies &) = delete;
    ~OwedReplies() { d.giveUpReplies(); }

    Private &d;
};

// The time from a data-channel command's beginning to its final reply, in which Abort() only
// asks. What the command is still owed afterwards is left to the next one.
class CFTPClient::DataCommand
{
public:
    explicit DataCommand(Private &client) : d(client)
    {
        const std::lock_guard<std::mutex> guard(d.abortGuard);
        m_entered = !d.dataCommand && !d.transferring;
        if (m_entered)
            d.dataCommand = true;
    }
    DataCommand(const DataCommand &) = delete;
    DataCommand &operator=(const DataCommand &) = delete;
    ~DataCommand()
    {
        if (!m_entered)
            return;
        const std::scoped_lock guard(d.exchange, d.abortGuard);
        d.giveUpReplies();
        d.dataCommand = false;
        d.abortRequested = false;
    }

    bool entered() const { return m_entered; }

private:
    Private &d;
    bool m_entered;
};

bool CFTPClient::busy() const
{
    const std::lock_guard<std::mutex> guard(d->abortGuard);
    return d->dataCommand || d->transferring;
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
    if (!d->connected() || !d->accepted(command, {path}) ||
        RepresentationType(representation) != 0 || d->abortRequested)
        return false;
    const std::shared_ptr<IBlockingSocket> dataSocket(d->control->CreateInstance());
    const bool opened = passive ? OpenPassiveDataConnection(*dataSocket, command, path, offset)
                                : OpenActiveDataConnection(*dataSocket, command, path, offset);
    const bool moved = opened && TransferData(command, notification, *dataSocket);
    try {
        dataSocket->Close();
    } catch (const CBlockingSocketException &exception) {
        d->report(exception, ReportAt::CloseData);
        dataSocket->Cleanup();
    }
    CReply reply;
    return moved && GetResponse(reply) && reply.Code().IsPositiveCompletionReply();
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
    try {
        const TransferringScope scope(d->transferring);
        unsigned long bytesRead = 0;
        const auto nextBlock = [&] {
            notification.OnPreBytesSend(d->buffer.data(), d->buffer.size(), bytesRead);
            FTP_ASSERT(bytesRead <= d->buffer.size(), "bytesRead <= m_vBuffer.size()");
            if (!notification.IsGood())
                d->abortRequested = true;
        };
        nextBlock();
        while (!d->abortRequested && bytesRead != 0) {
            const int written = dataSocket.Write(d->buffer.data(), int(bytesRead), d->timeout());
            FTP_ASSERT(written == int(bytesRead), "iNumWrite == static_cast<int>(bytesRead)");
            d->tell([&](CNotification &o) { o.OnBytesSent(d->buffer, long(bytesRead)); });
            nextBlock();
        }
    } catch (const CBlockingSocketException &exception) {
        dataSocket.Cleanup();
        d->report(exception, ReportAt::Transfer);
        return false;
    }
    return !d->abortRequested || abortTransfer(dataSocket);
}

bool CFTPClient::ReceiveData(ITransferNotification &notification, IBlockingSocket &dataSocket) const
{
    try {
        const TransferringScope scope(d->transferring);
        long long total = 0;
        d->tell([](CNotification &o) { o.OnBeginReceivingData(); });
        const auto nextBlock = [&] {
            if (d->abortRequested)
                return 0;
            const int count =
                dataSocket.Receive(d->buffer.data(), int(d->buffer.size()), d->timeout());
            total += count;
            return count;
        };
        for (int count = nextBlock(); count != 0 && !d->abortRequested; count = nextBlock()) {
            d->tell([&](CNotification &o) { o.OnBytesReceived(d->buffer, count); });
            notification.OnBytesReceived(d->buffer, count);
            if (!notification.IsGood())
                d->abortRequested = true;
        }
        d->tell([&](CNotification &o) { o.OnEndReceivingData(total); });
    } catch (const CBlockingSocketException &exception) {
        dataSocket.Cleanup();
        d->report(exception, ReportAt::Transfer);
        return false;
    }
    return !d->abortRequested || abortTransfer(dataSocket);
}

// Always false, as the transfer is that is aborted. The data connection goes first: servers
// answer no ABOR while it stands open.
bool CFTPClient::abortTransfer(IBlockingSocket &dataSocket) const
{
    dataSocket.Cleanup();
    d->abortRequested = false;
    sendAbort();
    return false;
}

// The transfer's own reply and that to ABOR are due. A server may send both, or one for both;
// the one that is missing is looked for before the next command.
void CFTPClient::sendAbort() const
{
    CReply reply;
    // Some go on about the transfer with a reply of class 1.
    const bool read = SendCommand(CCommand::ABOR, {}) && d->readFinalReply(reply);
    if (!read || reply.Code().IsTransientNegativeReply()) {
        d->giveUpReplies();
        return;
    }
    d->perhapsOneMore = d->unanswered > 0;
    d->unanswered = 0;
    d->abandoned = 0;
}

int CFTPClient::Abort() const
{
    {
        const std::lock_guard<std::mutex> guard(d->abortGuard);
        if (d->dataCommand || d->transferring) {
            d->abortRequested = true;
            return 0;
        }
    }
    // Held by another thread's command, or called by an observer from within one: an abort has
    // no business there.
    const std::unique_lock<std::recursive_mutex> turn(d->exchange, std::try_to_lock);
    if (!turn.owns_lock() || d->telling > 0)
        return -1;
    d->abortRequested = false;
    return simple(CCommand::ABOR);
}

bool CFTPClient::List(const std::string &path, std::vector<std::shared_ptr<CFTPFileStatus>> &result,
                      bool passive) const
{
    FTP_ASSERT(d->parser.get(), "m_apFileListParser.get()");
    COutputStream stream(CCommand(CCommand::LIST).AsString());
    if (!ExecuteDatachannelCommand(CCommand::LIST, path, CType::ASCII, passive, 0, stream))
        return false;
    result.clear();
    std::string line;
    while (stream.GetNextLine(line)) {
        auto status = std::make_shared<CFTPFileStatus>();
        if (d->parser->Parse(*status, line)) {
            status->path = path;
            result.push_back(std::move(status));
        }
    }
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
    result.clear();
    for (std::string &name : names) {
        auto status = std::make_shared<CFTPFileStatus>();
        status->name = std::move(name);
        status->path = path;
        status->tryCwd = true;
        status->tryRetrieve = true;
        result.push_back(std::move(status));
    }
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
    result.clear();
    std::string line;
    while (stream.GetNextLine(line)) {
        if (!line.empty())
            result.push_back(line);
    }
    return true;
}

bool CFTPClient::openLocal(CFile &file, CFile::TDirection direction) const
{
    if (file.Open(direction))
        return true;
    d->report("Cannot open " + file.GetLocalStreamName() + ": " + file.GetErrorText(),
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
        d->report("Cannot write " + localFile + ": " + file.GetErrorText(), ReportAt::LocalFile);
    return good && kept;
}

bool CFTPClient::DownloadFile(const std::string &remoteFile, ITransferNotification &notification,
                              const CRepresentation &representation, bool passive) const
{
    const DataCommand scope(*d);
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    // The type first: many servers refuse to tell a size in ASCII.
    if (!scope.entered() || !d->accepted(CCommand::RETR, {remoteFile}) ||
        RepresentationType(representation) != 0)
        return false;
    long remoteSize = -1;
    if (FileSize(remoteFile, remoteSize) != 0)
        remoteSize = -1;
    long long offset = 0;
    if (d->resume && mayResume(representation))
        offset = std::max(0LL, notification.GetLocalStreamSize());
    if (remoteSize >= 0 && offset > remoteSize) {
        d->report("The local file is longer than the remote one.", ReportAt::Offset);
        return false;
    }
    if (offset > std::numeric_limits<unsigned int>::max() ||
        !notification.SetLocalStreamOffset(offset)) {
        d->report("Cannot resume at " + std::to_string(offset) + ".", ReportAt::Offset);
        return false;
    }
    ResumedStream stream(notification, offset);
    const bool good = execute(CCommand::RETR, remoteFile, representation, passive,
                              static_cast<unsigned int>(offset), stream);
    if (!stream.beginsAgain(remoteSize, good))
        return good;
    d->report("The server seems to ignore REST: the local file is left as it was.",
              ReportAt::Offset);
    notification.SetLocalStreamOffset(offset);
    return false;
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
        d->report("Cannot read " + localFile + ": " + file.GetErrorText(), ReportAt::LocalFile);
    return good;
}

bool CFTPClient::UploadFile(ITransferNotification &notification, const std::string &remoteFile,
                            bool storeUnique, const CRepresentation &representation,
                            bool passive) const
{
    const DataCommand scope(*d);
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    if (!scope.entered() || !d->accepted(CCommand::STOR, {remoteFile}))
        return false;
    CCommand command = storeUnique ? CCommand::STOU : CCommand::STOR;
    long offset = 0;
    if (d->resume && mayResume(representation)) {
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
        d->report("The remote file is longer than the local one.", ReportAt::Offset);
        return false;
    }
    if (!notification.SetLocalStreamOffset(offset)) {
        d->report("Cannot resume at " + std::to_string(offset) + ".", ReportAt::Offset);
        return false;
    }
    d->tell([&](CNotification &o) {
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

bool CFTPClient::TransferFile(const CFTPClient &source, const std::string &sourceFile,
                              const CFTPClient &target, const std::string &targetFile,
                              const CRepresentation &representation, bool passive)
{
    if (&source == &target)
        return false;
    const std::scoped_lock turns(source.d->exchange, target.d->exchange);
    if (source.busy() || target.busy() || !source.d->accepted(CCommand::RETR, {sourceFile}) ||
        !target.d->accepted(CCommand::STOR, {targetFile}) ||
        source.RepresentationType(representation) != 0 ||
        target.RepresentationType(representation) != 0)
        return false;
    // The target makes its file before the source is asked for data: better to know first that
    // there is something to send. In ASCII the answer means nothing: many servers refuse it with
    // the code of a missing file.
    CReply size;
    if (mayResume(representation))
        source.simple(CCommand::SIZE, {sourceFile}, &size);
    if (size.Code().Value() == "550")
        return false;
    const CFTPClient &listening = passive ? source : target;
    const CFTPClient &connecting = passive ? target : source;
    sockaddr_in address = {};
    if (!listening.passiveAddress(address) ||
        connecting.DataPort(dotted(address.sin_addr), ntohs(address.sin_port)) != 0)
        return false;
    const OwedReplies sourceReplies(*source.d);
    const OwedReplies targetReplies(*target.d);
    // The target is told first: some servers connect as soon as they know the address, and lose
    // what arrives before they are told to store it. A target that listens may not answer before
    // it has a connection.
    CReply reply;
    const bool begun = passive ? target.begin(CCommand::STOR, targetFile, 0) &&
                                     source.begin(CCommand::RETR, sourceFile, 0)
                               : target.SendCommand(CCommand::STOR, {targetFile}) &&
                                     source.begin(CCommand::RETR, sourceFile, 0) &&
                                     target.GetResponse(reply) &&
                                     reply.Code().IsPositivePreliminaryReply();
    for (const CFTPClient *client : {&listening, &connecting}) {
        if (!begun && client->d->unanswered > 0)
            client->sendAbort();
    }
    CReply sent;
    CReply stored;
    const bool sourceEnds = begun && source.GetResponse(sent);
    const bool targetEnds = begun && target.GetResponse(stored);
    return sourceEnds && targetEnds && sent.Code().IsPositiveCompletionReply() &&
           stored.Code().IsPositiveCompletionReply();
}

} // namespace nsFTP
