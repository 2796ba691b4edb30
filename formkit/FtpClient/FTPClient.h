// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/BlockingSocket.h"
#include "formkit/FtpClient/FTPDataTypes.h"
#include "formkit/FtpClient/FTPListParse.h"
#include "formkit/FtpClient/FTPStreams.h"
#include "formkit/FtpClient/formkitftp_export.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace nsFTP {

/// A blocking FTP client: one control connection, one data connection at a time.
///
///     CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance(), 30);
///     if (client.Login({"ftp.example.org", 21, "user", "password"}))
///         client.DownloadFile("statement.pdf", "statement.pdf", CType::Image, true);
///     client.Logout();
///
/// - Every operation runs on the caller's thread and returns when the exchange is over. One client
///   serves one thread; only Abort() and IsTransferringData() may be called from another one.
/// - An int result is a command's: 0 for a positive completion reply, 1 for a negative one, -1 for
///   any other reply and for none.
/// - Nothing is thrown but std::bad_alloc and what an observer throws.
/// - CR, LF and NUL in arguments, logon data and host names are refused before a byte is sent.
/// - Paths and names are bytes, sent and given as they are.
///
/// docs/ftp.md tells what is promised: limits, replies, resuming, aborting, and what is missing.
class FORMKITFTP_EXPORT CFTPClient
{
public:
    // The interfaces that a caller implements, under the client's name too.
    using IFileListParser = nsFTP::IFileListParser;
    using ITransferNotification = nsFTP::ITransferNotification;

    /// An observer, called synchronously on the client's thread; several of one client in the
    /// order of their addresses. A client or observer that is destroyed leaves all its partners.
    /// From within a call an observer may attach and detach and may call Abort(), which gives -1
    /// outside of transfers and lists. Commands that it sends during a transfer are refused with
    /// -1, at other times it must send none. It must not destroy the client.
    class FORMKITFTP_EXPORT CNotification
    {
    public:
        CNotification() = default;
        CNotification(const CNotification &) = delete;
        CNotification &operator=(const CNotification &) = delete;
        virtual ~CNotification();

        /// Something failed. The source is the name of a unit ("formkit/FtpClient/FTPClient"),
        /// the line a number that stands for a place there: it stays the same in all versions.
        /// When that ends the session, IsConnected() is still true during this call.
        virtual void OnInternalError(const std::string &message, const std::string &source,
                                     int line);
        /// Data are about to be received.
        virtual void OnBeginReceivingData();
        /// The first count bytes of buffer arrived.
        virtual void OnBytesReceived(const std::vector<char> &buffer, long count);
        /// No more data come: the server ended them, or the transfer was aborted. Not called
        /// when receiving failed. The final reply is still to come.
        virtual void OnEndReceivingData(long long total);
        /// The first count bytes of buffer were sent.
        virtual void OnBytesSent(const std::vector<char> &buffer, long count);
        /// An upload is about to begin: the names, the local size in bytes (-1 when unknown) and
        /// the offset from which the local bytes are sent.
        virtual void OnBeginSendingData(const std::string &localName, const std::string &remoteFile,
                                        long long localSize, long long offset);
        /// A command is about to be sent, with its arguments, secrets included: logs for other
        /// eyes use CCommand::AsMaskedString().
        virtual void OnSendCommand(const CCommand &command, const CArg &arguments);
        /// A complete reply came.
        virtual void OnResponse(const CReply &reply);

    private:
        friend class CFTPClient;
        std::set<CFTPClient *> m_Clients;
    };

    /// The observers of a client.
    using TObserverSet = std::set<CNotification *>;

    /// What to do with an address in a PASV reply that is not the control connection's peer.
    enum class TPassiveAddress {
        Use,            ///< connect there (the default); 0.x.x.x is no address and refused
        UseControlHost, ///< connect to the control connection's peer instead, at the port given
        Refuse          // give the transfer up
    };

    /// receiveTimeout: seconds for each wait; 0 takes only what is there already.
    /// bufferSize: bytes of the transfer buffer, taken as 2 when less and as 1 GiB when more.
    /// responseDelay: seconds to sleep after every receive of reply text.
    /// initialDirectory: entered after each logon; "." stays where the server begins. An empty
    /// one is a programming error at Login().
    explicit CFTPClient(const std::shared_ptr<nsSocket::IBlockingSocket> &socket,
                        unsigned int receiveTimeout = 30, unsigned int bufferSize = 65536,
                        unsigned int responseDelay = 0, const std::string &initialDirectory = ".");
    CFTPClient(const CFTPClient &) = delete;
    CFTPClient &operator=(const CFTPClient &) = delete;
    /// Detaches the observers. Does not log out; the connection ends with the socket.
    ~CFTPClient();

    /// An observer is attached once, however often it is given. None may be null: that is a
    /// programming error.
    void AttachObserver(CNotification *observer);
    void DetachObserver(CNotification *observer);
    const TObserverSet &GetObservers() const;

    /// Replaces the parser of List(); a CFTPListParser at first.
    void SetFileListParser(const std::shared_ptr<IFileListParser> &parser);
    /// Whether transfers go on where an earlier one ended; on at first.
    void SetResumeMode(bool resume);
    bool IsResumeModeEnabled() const;
    /// Behind a router that translates addresses UseControlHost helps; it and Refuse keep a
    /// server from sending the client to a third host.
    void SetPassiveAddressPolicy(TPassiveAddress policy);
    /// On: active mode takes the data connection from the control connection's peer only; others
    /// are reported and turned away while the time-out runs. Off at first: data of anyone who
    /// connects are taken.
    void SetAcceptOnlyControlPeer(bool only);
    /// True while data are moved.
    bool IsTransferringData() const;
    /// True when the control connection is open, as far as is known.
    bool IsConnected() const;

    /// Connects, logs on (see docs/ftp.md for the commands of each firewall) and enters the
    /// initial directory. An open session is logged out first. After a failure the connection
    /// stays open unless it broke. A firewall type outside the enumeration is refused.
    bool Login(const CLogonInfo &logon);
    /// Sends QUIT and closes the connection whatever the reply.
    int Logout() const;

    /// Sends a command; its reply is read with GetResponse().
    bool SendCommand(const CCommand &command, const CArg &arguments) const;
    /// Sends a command and reads its reply; true when a reply with a code came, whatever it says.
    /// Whether the code can answer the command is checked for the commands below only: 257, 227
    /// or 213 to one that they cannot answer ends the session, and the command gives -1.
    bool SendCommand(const CCommand &command, const CArg &arguments, CReply &reply) const;
    /// Reads one reply. After a reply of class 1 a caller reads on for the final one. A reply
    /// without three digits ends the session.
    bool GetResponse(CReply &reply) const;
    static int SimpleErrorCheck(const CReply &reply);

    /// One command each, named by the function: CWD, CDUP, PWD, SYST, NOOP, MKD, RMD, DELE, SITE,
    /// HELP, STAT, SMNT, REIN, STRU and MODE. What the server answers in words is told to the
    /// observers.
    int ChangeWorkingDirectory(const std::string &directory) const;
    int ChangeToParentDirectory() const;
    int PrintWorkingDirectory() const;
    int System() const;
    int Noop() const;
    int MakeDirectory(const std::string &directory) const;
    int RemoveDirectory(const std::string &directory) const;
    int Delete(const std::string &file) const;
    int SiteParameters(const std::string &text) const;
    int Help(const std::string &topic = {}) const;
    int Status(const std::string &path = {}) const;
    int StructureMount(const std::string &path) const;
    int Reinitialize() const;
    int FileStructure(const CStructure &structure) const;
    int TransferMode(const CTransferMode &mode) const;
    /// "ALLO 100", with a record size "ALLO 100 R 80".
    int Allocate(int bytes, const int *recordSize = nullptr) const;
    /// Sends TYPE unless this type and format are set already: "TYPE A", "TYPE A N", "TYPE I",
    /// "TYPE L 8". The size goes with L only, as 8 when it is 0; L with another size than the one
    /// set is not sent again.
    int RepresentationType(const CRepresentation &representation, unsigned int size = 0) const;
    /// RNTO goes out only after a 3xx reply to RNFR; any other reply to that gives 1 when it is
    /// negative, else -1.
    int Rename(const std::string &from, const std::string &to) const;
    int Move(const std::string &from, const std::string &to) const;
    /// Gives the time in seconds since 1970-01-01 UTC; -1 and no time when a positive reply
    /// holds no date and time that exist.
    int FileModificationTime(const std::string &path, long long &seconds) const;
    /// Gives the size in bytes, beyond 4 GiB too; -1 and no size when a positive reply holds no
    /// number that fits. Many servers refuse to tell while the type is ASCII.
    int FileSize(const std::string &path, long &size) const;

    /// Listings are asked for in ASCII. On failure the result is left as it was. Entries that
    /// the parser does not know are dropped; lists of strings hold the lines without line ends,
    /// empty ones left out. Many servers take a path with a blank or a leading dash for options
    /// or for several paths: change into the directory first, then list "".
    bool List(const std::string &path, std::vector<std::shared_ptr<CFTPFileStatus>> &result,
              bool passive) const;
    bool List(const std::string &path, std::vector<std::string> &result, bool passive) const;
    /// Entries of names only: name and path are set, and an entry may be a directory or a file.
    bool NameList(const std::string &path, std::vector<std::shared_ptr<CFTPFileStatus>> &result,
                  bool passive) const;
    bool NameList(const std::string &path, std::vector<std::string> &result, bool passive) const;

    /// A transfer is good only when the data ended cleanly and the final reply is positive. A
    /// download in Image or LocalByte whose size the server told (SIZE) has to have that many
    /// bytes, the part that was there already included: fewer are reported and a failure, more
    /// are reported and good, since the file has grown. What arrived stays in either case.
    ///
    /// With resume mode on a download in Image or LocalByte goes on after the local file's last
    /// byte (REST, which a server agrees to with 350); ASCII is fetched from the beginning. A
    /// local file longer than the remote one, or longer than 32 bits can tell, is refused, and so
    /// is a server that refuses REST; the local file is then untouched.
    /// When a server agrees to REST and sends the file from its beginning nevertheless, the
    /// download fails and the local file is cut back to what it was. Sizes show that: where SIZE
    /// is not told, or the data break off early, it is not seen.
    bool DownloadFile(const std::string &remoteFile, const std::string &localFile,
                      const CRepresentation &representation, bool passive) const;
    /// The same into a stream, whose GetLocalStreamSize() is where a resumed download begins.
    bool DownloadFile(const std::string &remoteFile, ITransferNotification &notification,
                      const CRepresentation &representation, bool passive) const;
    /// From this client's server to another client's; see TransferFile().
    bool DownloadFile(const std::string &sourceFile, const CFTPClient &targetClient,
                      const std::string &targetFile, const CRepresentation &representation,
                      bool passive) const;

    /// An upload with resume mode on asks for the remote file's size and, when that is above 0,
    /// appends (APPE) the local bytes after it: an existing remote file is completed, not
    /// replaced. A remote file longer than the local one is refused. ASCII and EBCDIC are sent
    /// whole and replace the remote file in either mode: servers translate line ends, so that the
    /// remote size tells nothing about the local file. storeUnique asks the server for a name of
    /// its own (STOU).
    bool UploadFile(const std::string &localFile, const std::string &remoteFile, bool storeUnique,
                    const CRepresentation &representation, bool passive) const;
    bool UploadFile(ITransferNotification &notification, const std::string &remoteFile,
                    bool storeUnique, const CRepresentation &representation, bool passive) const;
    /// From another client's server to this client's; see TransferFile().
    bool UploadFile(const CFTPClient &sourceClient, const std::string &sourceFile,
                    const std::string &targetFile, const CRepresentation &representation,
                    bool passive) const;
    /// Lets one server send a file straight to another, from its beginning. passive: the source
    /// listens and the target connects; else the other way round. Both clients must be logged
    /// on; the time-outs must cover the whole transfer. Servers often refuse such transfers.
    /// With Image and LocalByte the source is asked for the size first, and a 550 ends the
    /// transfer: the target would make an empty file of what is not there.
    static bool TransferFile(const CFTPClient &source, const std::string &sourceFile,
                             const CFTPClient &target, const std::string &targetFile,
                             const CRepresentation &representation, bool passive);

    /// While a transfer runs it gives 0 and asks that to end: the transfer closes the data
    /// connection, sends ABOR and fails; one that has not come to its data yet ends before them.
    /// - From an observer: after the block that is received next, or sent.
    /// - From another thread: every wait of the transfer ends at once (connecting, accepting,
    ///   data, replies), also the one for ABOR's reply; with sockets of other makers than this
    ///   library after the block that is received or sent.
    ///
    /// While a command of another kind runs, on another thread or around an observer, it gives -1
    /// and does nothing. Else it sends ABOR and waits for the reply like any command, on the
    /// thread that calls: also when the transfer that was meant has just ended.
    int Abort() const;

    // The steps of a transfer, for callers that put one together themselves.

    /// Runs one data-channel command with the path as its argument; an offset above 0 is sent as
    /// REST before RETR, STOR and APPE when resume mode is on. False also when a transfer runs.
    bool ExecuteDatachannelCommand(const CCommand &command, const std::string &path,
                                   const CRepresentation &representation, bool passive,
                                   unsigned int offset, ITransferNotification &notification) const;
    bool OpenPassiveDataConnection(nsSocket::IBlockingSocket &dataSocket, const CCommand &command,
                                   const std::string &path, unsigned int offset) const;
    bool OpenActiveDataConnection(nsSocket::IBlockingSocket &dataSocket, const CCommand &command,
                                  const std::string &path, unsigned int offset) const;
    bool TransferData(const CCommand &command, ITransferNotification &notification,
                      nsSocket::IBlockingSocket &dataSocket) const;
    bool SendData(ITransferNotification &notification, nsSocket::IBlockingSocket &dataSocket) const;
    bool ReceiveData(ITransferNotification &notification,
                     nsSocket::IBlockingSocket &dataSocket) const;
    /// Sends PASV; the address and port are in host byte order. -1 when a positive reply holds
    /// none.
    int Passive(unsigned int &ipAddress, unsigned short &port) const;
    /// Sends PORT for a dotted address.
    int DataPort(const std::string &hostIp, unsigned short port) const;
    /// Sends REST: 0 also for a 3xx reply, which is how a server agrees; -1 for 202, "superfluous
    /// here".
    int Restart(unsigned int position) const;
    /// Finds six numbers of 0 to 255 parted by commas, blanks around them allowed, with or
    /// without parentheses and on any line of a reply. False, and nothing set, when there are
    /// none, more than six in a row, or a port of 0.
    static bool GetIpAddressFromResponse(const std::string &reply, unsigned int &ipAddress,
                                         unsigned short &port);

private:
    struct Private;
    class DataCommand;

    bool execute(const CCommand &command, const std::string &path,
                 const CRepresentation &representation, bool passive, unsigned int offset,
                 ITransferNotification &notification) const;
    bool begin(const CCommand &command, const std::string &path, unsigned int offset) const;
    bool listLines(const CCommand &command, const std::string &path,
                   std::vector<std::string> &result, bool passive) const;
    bool openLocal(CFile &file, CFile::TDirection direction) const;
    static bool agreeOnAddress(const CFTPClient &listening, const CFTPClient &connecting);
    static bool transferBetween(const CFTPClient &source, const std::string &sourceFile,
                                const CFTPClient &target, const std::string &targetFile,
                                bool passive);

    std::unique_ptr<Private> d;
};

} // namespace nsFTP
