// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/BlockingSocket.h"
#include "formkit/FtpClient/FTPDataTypes.h"
#include "formkit/FtpClient/FTPFeatures.h"
#include "formkit/FtpClient/FTPListParse.h"
#include "formkit/FtpClient/FTPStreams.h"
#include "formkit/FtpClient/formkitftp_export.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace nsFTP {

class Address;
class Verb;

/// A blocking FTP client: one control connection, one data connection at a time.
///
///     CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance(), 30);
///     if (client.Login({"ftp.example.org", 21, "user", "password"}))
///         client.DownloadFile("statement.pdf", "statement.pdf", CType::Image, true);
///     client.Logout();
///
/// - Threads: an operation runs on the thread that calls it and returns when it is finished. One
///   client serves one thread; only Abort(), GiveUp() and IsTransferringData() may be called from
///   another.
/// - Results: true for success. An int is 0 after a 2xx reply, 1 after a 4xx or 5xx reply, and -1
///   after any other reply or none.
/// - Replies: one that is still to come after a time-out, an abort, a broken-off transfer or a 1xx
///   reply is read before the next command is sent. Nothing else is read before a command.
/// - Exceptions: only std::bad_alloc and what observers and streams throw.
/// - Text: CR, LF and NUL in arguments, logon data and host names are refused before a byte is
///   sent. Paths and names are bytes; the client does not convert them.
///
/// docs/ftp.md tells more: limits, resuming, aborting, firewalls, and what the client cannot do.
class FORMKITFTP_EXPORT CFTPClient
{
public:
    /// The interfaces that a caller implements can be named as the client's, too.
    using IFileListParser = nsFTP::IFileListParser;
    using ITransferNotification = nsFTP::ITransferNotification;

    /// An observer is told what a client does.
    /// - The client calls its observers on its own thread, in the order of their addresses.
    /// - A client or observer that is destroyed is detached from all its partners.
    /// - From within a call an observer may attach and detach observers, itself included, and may
    ///   call Abort(), which gives -1 unless a transfer or a list runs.
    /// - It must not send commands from within a call (during a transfer they give -1), nor
    ///   destroy the client.
    class FORMKITFTP_EXPORT CNotification
    {
    public:
        CNotification() = default;
        CNotification(const CNotification &) = delete;
        CNotification &operator=(const CNotification &) = delete;
        virtual ~CNotification();

        /// Something failed. The source is always "formkit/FtpClient/FTPClient". The line stands
        /// for a place in the code, by a number that is the same in all versions. When the failure
        /// ends the session, IsConnected() is still true during this call.
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
        /// A command that CCommand does not know is about to be sent (AUTH, FEAT, EPSV, MLSD), or a
        /// raw line, with its secrets.
        virtual void OnSendExtension(const std::string &command, const CArg &arguments);

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
        Refuse          ///< fail
    };

    /// receiveTimeout: seconds for each wait; 0 takes only what is there already.
    /// bufferSize: bytes of the transfer buffer, taken as 2 when less and as 1 GiB when more.
    /// responseDelay: seconds to sleep after every receive of reply text.
    /// initialDirectory: entered after each logon; "." stays where the server begins. An empty one
    /// is a programming error, which ends the process at Login().
    explicit CFTPClient(const std::shared_ptr<nsSocket::IBlockingSocket> &socket,
                        unsigned int receiveTimeout = 30, unsigned int bufferSize = 65536,
                        unsigned int responseDelay = 0, const std::string &initialDirectory = ".");
    CFTPClient(const CFTPClient &) = delete;
    CFTPClient &operator=(const CFTPClient &) = delete;
    /// Detaches the observers. Does not log out; the connection ends with the socket.
    ~CFTPClient();

    /// Attaching an observer twice is attaching it once; detaching one that is not attached does
    /// nothing. Null is a programming error.
    void AttachObserver(CNotification *observer);
    void DetachObserver(CNotification *observer);
    const TObserverSet &GetObservers() const;

    /// Replaces the parser of List(); a CFTPListParser at first.
    void SetFileListParser(const std::shared_ptr<IFileListParser> &parser);
    /// Whether transfers go on where an earlier one ended; on at first.
    void SetResumeMode(bool resume);
    bool IsResumeModeEnabled() const;
    /// UseControlHost is for servers behind a router that translates addresses. With it, or with
    /// Refuse, no server can make the client connect to a third host.
    void SetPassiveAddressPolicy(TPassiveAddress policy);
    /// Off at first: in active mode the client takes the data connection of anyone who connects.
    /// On: only that of the control connection's peer. Others are reported and closed, and the
    /// client waits on until its time-out.
    void SetAcceptOnlyControlPeer(bool only);
    /// Off at first: on IPv4 the client uses PASV and PORT. On: EPSV and EPRT, until the server
    /// refuses them, which is remembered for the session. On IPv6 they are used in any case. The
    /// data connection of EPSV goes to the control connection's peer.
    void SetExtendedAddresses(bool extended);
    /// Off at first: List() sends LIST. On: the List() that gives entries sends MLSD when
    /// Features() has MLST; the parser is then a CFTPFactParser.
    void SetMachineListings(bool machine);
    /// Off at first. On: when Features() has UTF8, Login() tells the server that names are UTF-8.
    void SetUtf8(bool utf8);
    /// True while data are moved.
    bool IsTransferringData() const;
    /// True when the control connection is open, as far as is known.
    bool IsConnected() const;

    /// Connects, logs on (docs/ftp.md has the commands of each firewall type) and enters the
    /// initial directory. An open session is logged out first. When the server refuses, the
    /// connection stays open. A firewall type outside the enumeration is refused.
    bool Login(const CLogonInfo &logon);
    /// Sends QUIT and closes the connection whatever the reply.
    int Logout() const;

    /// Sends a command; its reply is read with GetResponse().
    bool SendCommand(const CCommand &command, const CArg &arguments) const;
    /// Sends a command and reads its reply; true when a reply with a code came, whatever it says.
    /// The operations below do more: a 257, 227 or 213 that cannot answer their command ends the
    /// session, and they give -1.
    bool SendCommand(const CCommand &command, const CArg &arguments, CReply &reply) const;
    /// Reads one reply. After a 1xx reply the caller reads again for the final one. A reply that
    /// does not begin with three digits ends the session.
    bool GetResponse(CReply &reply) const;
    static int SimpleErrorCheck(const CReply &reply);

    /// Each sends one command: CWD, CDUP, PWD, SYST, NOOP, MKD, RMD, DELE, SITE, HELP, STAT, SMNT,
    /// REIN, STRU, MODE. Observers get the text of the reply (OnResponse()). An empty directory to
    /// change to is a programming error.
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
    /// "TYPE L 8". Only L has a size; 0 stands for 8. A change of the size alone is not sent.
    int RepresentationType(const CRepresentation &representation, unsigned int size = 0) const;
    /// Sends RNFR, and RNTO only after a 3xx reply to that. Any other reply to RNFR gives 1 when it
    /// is negative, else -1.
    int Rename(const std::string &from, const std::string &to) const;
    int Move(const std::string &from, const std::string &to) const;
    /// Sends MDTM. Sets the seconds since 1970-01-01 UTC; gives -1, and sets nothing, when a
    /// positive reply has no date and time that exist.
    int FileModificationTime(const std::string &path, long long &seconds) const;
    /// Sends SIZE. Sets the size in bytes, also beyond 4 GiB; gives -1, and sets nothing, when a
    /// positive reply has no number that fits. Many servers refuse SIZE while the type is ASCII.
    int FileSize(const std::string &path, long &size) const;

    // What not every server knows. Features() tells.

    /// Sends FEAT, once a session.
    int Features(CFTPFeatures &features) const;
    /// Sends a line as it stands and reads its reply; true when a reply with a code came. Lines
    /// that begin with AUTH, PBSZ, PROT, CCC, REIN and QUIT are refused: the client keeps account
    /// of these.
    bool SendRaw(const std::string &line, CReply &reply) const;
    /// As above, with the part of a second that servers may tell.
    int FileModificationTime(const std::string &path, long long &seconds, long &nanoseconds) const;
    /// Sends MFMT: seconds since 1970-01-01 UTC, from the years 1000 to 9999.
    int SetFileModificationTime(const std::string &path, long long seconds) const;
    /// Sends MLST for one file or directory. Gives -1, and sets nothing, when a positive reply has
    /// no entry.
    int MachineStatus(const std::string &path, CFTPFileStatus &status) const;
    /// MLSD, in ASCII: the entries of a directory as CFTPFactParser reads them.
    bool MachineList(const std::string &path, std::vector<std::shared_ptr<CFTPFileStatus>> &result,
                     bool passive) const;

    /// LIST and NLST, in ASCII. A list that fails leaves the result as it was. Lines that the
    /// parser does not understand are left out; a result of strings has all lines but empty ones,
    /// without line ends. Many servers take a path with a blank for several paths, and one with a
    /// leading dash for options: change into the directory first, then list "".
    bool List(const std::string &path, std::vector<std::shared_ptr<CFTPFileStatus>> &result,
              bool passive) const;
    bool List(const std::string &path, std::vector<std::string> &result, bool passive) const;
    /// The entries have a name and a path; each may be a directory or a file.
    bool NameList(const std::string &path, std::vector<std::shared_ptr<CFTPFileStatus>> &result,
                  bool passive) const;
    bool NameList(const std::string &path, std::vector<std::string> &result, bool passive) const;

    /// Sends TYPE, SIZE, PASV or PORT, perhaps REST, and RETR. TYPE goes before SIZE, since servers
    /// refuse SIZE in ASCII or give another number there.
    ///
    /// Success means: the data ended without an error, the final reply is positive, and a download
    /// in Image or LocalByte has the size that the server told. Fewer bytes are a failure; more are
    /// a success, since the file has grown; both are reported. What arrived stays in any case.
    ///
    /// With resume mode on, a download in Image or LocalByte continues after the local file's last
    /// byte; text is fetched from the beginning.
    /// - The download fails, and leaves the local file as it was, when that is longer than the
    ///   remote file, and when the server does not agree to REST (350 agrees, 202 does not).
    /// - A server that agrees to REST may send the file from its beginning all the same. The
    ///   download then fails, and the local file is cut back to its former length. The sizes show
    ///   this: the client does not notice when the server has no SIZE or the data break off early.
    bool DownloadFile(const std::string &remoteFile, const std::string &localFile,
                      const CRepresentation &representation, bool passive) const;
    /// The same into a stream. A resumed download continues at its GetLocalStreamSize().
    bool DownloadFile(const std::string &remoteFile, ITransferNotification &notification,
                      const CRepresentation &representation, bool passive) const;
    /// From this client's server to another client's; see TransferFile().
    bool DownloadFile(const std::string &sourceFile, const CFTPClient &targetClient,
                      const std::string &targetFile, const CRepresentation &representation,
                      bool passive) const;

    /// With resume mode on, an upload in Image or LocalByte completes an existing remote file
    /// rather than replacing it: the client asks for the remote size and appends (APPE) the local
    /// bytes that follow. It fails when the remote file is longer than the local one. Otherwise the
    /// whole file is sent (STOR), and the remote one is replaced. That goes for text in either
    /// mode: servers translate line ends, so that the remote size says nothing about the local
    /// file. storeUnique lets the server choose the name (STOU).
    bool UploadFile(const std::string &localFile, const std::string &remoteFile, bool storeUnique,
                    const CRepresentation &representation, bool passive) const;
    bool UploadFile(ITransferNotification &notification, const std::string &remoteFile,
                    bool storeUnique, const CRepresentation &representation, bool passive) const;
    /// From another client's server to this client's; see TransferFile().
    bool UploadFile(const CFTPClient &sourceClient, const std::string &sourceFile,
                    const std::string &targetFile, const CRepresentation &representation,
                    bool passive) const;
    /// Lets one server send a file straight to another, from its beginning; on IPv4 and without
    /// protected data only, since servers know no other way. passive: the source
    /// listens and the target connects; else the other way round. Both clients must be logged on,
    /// and their time-outs must be longer than the whole transfer, which Abort() does not end.
    /// Many servers refuse such transfers. In Image and LocalByte the client asks the source for
    /// the size first. A 550 is reported and ends the transfer: the target would create an empty
    /// file for one that does not exist.
    static bool TransferFile(const CFTPClient &source, const std::string &sourceFile,
                             const CFTPClient &target, const std::string &targetFile,
                             const CRepresentation &representation, bool passive);

    /// While a transfer or list runs: asks it to end, and gives 0. It then closes the data
    /// connection, sends ABOR and fails; when no data have moved yet it may fail without ABOR.
    /// - Called by an observer or stream, it ends the transfer after the next block.
    /// - Called on another thread, it also ends every wait at once (for a connection, for data, for
    ///   a reply, that to ABOR included). A socket class that is not this library's can do so by
    ///   IBlockingSocket::SetInterruption(); without that the wait goes on.
    ///
    /// While another command runs, on another thread or around an observer: does nothing, and
    /// gives -1.
    ///
    /// Else, also when the transfer has just ended: sends ABOR like any command, on this thread.
    int Abort() const;

    /// From any thread, also while another operation runs: ends every wait of this client at once,
    /// from now on, and every transfer after the block in hand. What runs fails, and so does nearly
    /// all that is called later; Logout() still sends QUIT, without waiting for the reply. For a
    /// program that is done with the client. A socket class that does not override
    /// IBlockingSocket::SetInterruption() goes on waiting.
    void GiveUp() const;

    // The steps of a transfer, for callers that compose one themselves.

    /// Runs one data-channel command with the path as its argument. With resume mode on, an offset
    /// above 0 is sent as REST before RETR, STOR and APPE. False also when a transfer runs.
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
    /// Sends PASV. Sets the address and the port, in host byte order; gives -1 when a positive
    /// reply has none.
    int Passive(unsigned int &ipAddress, unsigned short &port) const;
    /// Sends PORT for a dotted address.
    int DataPort(const std::string &hostIp, unsigned short port) const;
    /// Sends REST. Gives 0 also for a 3xx reply, by which servers agree, and -1 for 202, which
    /// means that the server does not do it.
    int Restart(unsigned int position) const;
    /// Finds six numbers from 0 to 255 with commas between them, on any line of a reply; blanks
    /// and parentheses around them do not matter. False, and nothing is set, when there are no
    /// such six, when they are part of a longer list, and when the port is 0.
    static bool GetIpAddressFromResponse(const std::string &reply, unsigned int &ipAddress,
                                         unsigned short &port);

private:
    struct Private;
    class DataCommand;

    bool execute(const Verb &command, const std::string &path,
                 const CRepresentation &representation, bool passive, long long offset,
                 ITransferNotification &notification) const;
    bool begin(const Verb &command, const std::string &path, long long offset) const;
    bool openPassive(nsSocket::IBlockingSocket &dataSocket, const Verb &command,
                     const std::string &path, long long offset) const;
    bool openActive(nsSocket::IBlockingSocket &dataSocket, const Verb &command,
                    const std::string &path, long long offset) const;
    bool askForAddress(Address &address) const;
    int tellAddress(const Address &address) const;
    int restart(long long position) const;
    bool supports(const char *extension) const;
    bool offerUtf8() const;
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
