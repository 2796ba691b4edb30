// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <memory>
#include <string>

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

/// Blocking IPv4 sockets.
/// - Every operation blocks the calling thread. Sending and receiving wait no longer than their
///   time-out in whole seconds.
/// - Every failure is thrown as a CBlockingSocketException.
/// - A socket serves one thread at a time.
/// - Programming errors (no valid handle where one is needed, a null pointer) end the process, in
///   every build. What a peer does is no such error: when it closes, Receive() gives 0 or an
///   operation throws. No signal is raised, not even SIGPIPE.
/// - A wait that a signal interrupts goes on for the time that is left. Handles above 1023 work.
namespace nsSocket {

class CInterruption;

/// The type of a raw handle.
using SOCKET = unsigned int;

/// The handle of a socket object that holds none.
constexpr SOCKET INVALID_SOCKET = ~0U;

/// The one exception of this layer: the name of the operation that failed, and the system's error
/// number when the exception was made. The number is 0 when no system call failed (a send or
/// receive timed out, a name cannot be resolved), and ETIMEDOUT when a Connect or Accept timed out.
class FORMKITFTP_EXPORT CBlockingSocketException
{
public:
    /// Reads errno. The message must not be null.
    explicit CBlockingSocketException(const char *message);
    CBlockingSocketException(const CBlockingSocketException &) = default;
    CBlockingSocketException &operator=(const CBlockingSocketException &) = default;
    virtual ~CBlockingSocketException();

    /// Writes "<message> error 0x<eight hex digits>", or "<message> error" when the error number
    /// is 0, with its NUL. Gives false and writes nothing when size is too small: at least the
    /// message's length and 18 are needed with an error number, its length and 7 without.
    /// helpContext is not used.
    virtual bool GetErrorMessage(char *buffer, unsigned int size,
                                 unsigned int *helpContext = nullptr) const;
    /// The same text as a string; empty when it is longer than 511 bytes.
    virtual std::string GetErrorMessage(unsigned int *helpContext = nullptr) const;
    int GetErrorNumber() const { return m_nError; }

private:
    int m_nError;
    std::string m_strMessage;
};

/// One socket. The FTP client uses sockets only through this interface and makes further ones of
/// the same kind with CreateInstance(), so that a test or a host can supply its own class. Such a
/// class reports every failure as a CBlockingSocketException.
class FORMKITFTP_EXPORT IBlockingSocket
{
public:
    virtual ~IBlockingSocket();
    /// A new socket of the same concrete kind, without a handle, owned by the caller.
    virtual IBlockingSocket *CreateInstance() const = 0;
    virtual void Create(int type = SOCK_STREAM) = 0;
    virtual void Connect(const sockaddr *psa) const = 0;
    virtual void Bind(const sockaddr *psa) const = 0;
    virtual void Listen() const = 0;
    virtual void Cleanup() = 0;
    /// False when the wait was interrupted: the client then calls again, until its time-out.
    virtual bool Accept(IBlockingSocket &connected, sockaddr *psa) const = 0;
    virtual void Close() = 0;
    virtual int Write(const char *data, int size, int seconds) const = 0;
    virtual int Receive(char *buffer, int size, int seconds) const = 0;
    virtual void GetPeerAddr(sockaddr *psa) const = 0;
    virtual void GetSockAddr(sockaddr *psa) const = 0;
    virtual operator SOCKET() const = 0;
    virtual bool CheckReadability() const = 0;
    virtual sockaddr_in GetHostByName(const char *name, unsigned short port = 0) = 0;
    virtual const char *GetHostByAddr(const sockaddr *psa) = 0;
    /// Limits each later Connect(), Accept() and GetHostByName(), of this socket and of those that
    /// it creates, to so many seconds. A negative value, as in a new socket, leaves the limit to
    /// the system. A class that does not override this has no limit.
    virtual void SetWaitLimit(int seconds);
    /// Lets another thread end the waits of this socket and of those that it creates from now on.
    /// The waits of a class that does not override this cannot be ended.
    virtual void SetInterruption(const std::shared_ptr<const CInterruption> &interruption);
};

/// A socket of the system. Addresses are sockaddr_in of 16 bytes. A time-out of 0 or less does not
/// wait. Once its CInterruption is raised, an operation that would have to wait throws its name
/// with ECANCELED. The handle itself is non-blocking, and programs that are started do not inherit
/// it. The system keeps a silent connection open with packets of its own.
class FORMKITFTP_EXPORT CBlockingSocket : public IBlockingSocket
{
public:
    CBlockingSocket() = default;
    CBlockingSocket(const CBlockingSocket &) = delete;
    CBlockingSocket &operator=(const CBlockingSocket &) = delete;
    /// Closes a held handle; throws nothing.
    ~CBlockingSocket() override;

    IBlockingSocket *CreateInstance() const override;
    /// Makes a socket of the type (SOCK_STREAM, SOCK_DGRAM); the object must not hold one.
    /// Throws "Create".
    void Create(int type = SOCK_STREAM) override;
    /// Throws "Connect", with ETIMEDOUT when SetWaitLimit()'s time is over.
    void Connect(const sockaddr *psa) const override;
    /// Throws "Bind".
    void Bind(const sockaddr *psa) const override;
    /// Listens with a backlog of 5. Throws "Listen".
    void Listen() const override;
    /// Closes and forgets a held handle; throws nothing.
    void Cleanup() override;
    /// Waits for one connection, gives its handle to connected (a CBlockingSocket without a handle)
    /// and writes the peer's address to psa. False when a signal interrupted it (errno is then
    /// EINTR): try again. Throws "Accept", with ETIMEDOUT when SetWaitLimit()'s time is over.
    bool Accept(IBlockingSocket &connected, sockaddr *psa) const override;
    /// Closes a held handle. Throws "Close" and keeps the handle when the system refuses.
    void Close() override;
    /// Sends everything, in pieces, and waits up to so many seconds for each; gives the count sent.
    /// A size of 0 or less sends nothing. Throws as Send() does.
    int Write(const char *data, int size, int seconds) const override;
    /// Receives up to size bytes; gives the count, and 0 when the peer has closed. A size of 0 or
    /// less gives 0 at once. Throws "Receive timeout", "Receive".
    int Receive(char *buffer, int size, int seconds) const override;
    /// Throws "GetPeerName".
    void GetPeerAddr(sockaddr *psa) const override;
    /// Throws "GetSockName".
    void GetSockAddr(sockaddr *psa) const override;
    /// The raw handle, INVALID_SOCKET when there is none.
    operator SOCKET() const override { return m_hSocket; }
    /// True when Receive() would not wait: there are data, or the peer has closed. Throws
    /// "Socket Error".
    bool CheckReadability() const override;
    /// The first IPv4 address of a name or dotted text, and the port in network byte order. May be
    /// called in several threads. Takes as long as the system's resolver does, but no longer than
    /// SetWaitLimit()'s time. Throws "GetHostByName", with ETIMEDOUT when that is over.
    sockaddr_in GetHostByName(const char *name, unsigned short port = 0) override;
    /// The name of an address; valid until the thread's next call. Throws "GetHostByAddr".
    const char *GetHostByAddr(const sockaddr *psa) override;
    void SetWaitLimit(int seconds) override { m_nWaitLimit = seconds; }
    void SetInterruption(const std::shared_ptr<const CInterruption> &interruption) override;

    /// Sends as much as the system takes at once; gives the count. Throws "Send timeout", "Send".
    int Send(const char *data, int size, int seconds) const;
    /// One datagram and its sender. Throws "Receive timeout", "ReceiveDatagram".
    int ReceiveDatagram(char *buffer, int size, sockaddr *psa, int seconds) const;
    /// One datagram to psa. Throws "Send timeout", "SendDatagram".
    int SendDatagram(const char *data, int size, const sockaddr *psa, int seconds) const;

protected:
    /// As Create(), for another family of addresses; Connect() and Bind() then take these.
    void Open(int family, int type);
    /// Gives a new instance the wait limit and the interruption of this one.
    IBlockingSocket *Equipped(CBlockingSocket *instance) const;
    int WaitLimit() const { return m_nWaitLimit; }
    /// The addresses of a name or dotted text, as getaddrinfo() gives them, for streams; never
    /// null. Waits and throws as GetHostByName() does.
    std::shared_ptr<const addrinfo> LookUp(const char *name, unsigned short port, int family) const;

private:
    int descriptor() const;

    SOCKET m_hSocket = INVALID_SOCKET;
    int m_nWaitLimit = -1;
    std::shared_ptr<const CInterruption> m_pInterruption;
};

/// A socket with a read-ahead buffer of 1000 bytes for replies that come in lines. Sockets that it
/// creates are plain CBlockingSockets.
class FORMKITFTP_EXPORT CHttpBlockingSocket : public CBlockingSocket
{
public:
    CHttpBlockingSocket();
    ~CHttpBlockingSocket() override;

    /// Reads one line with its CR and LF, cut to size - 1 bytes, adds a NUL and gives the count of
    /// bytes before that. A size below 1 reads nothing and gives 0.
    /// - Throws "ReadHeaderLine" when the peer closes before the line's end, when 1000 bytes have
    ///   no line end, and when no CR stands before the LF: a peer's bytes never end the process.
    ///   The bytes stay in the buffer. Throws else as Receive() does.
    /// - After a line that was cut, the bytes cut off still count as held: what is read next is
    ///   not reliable.
    int ReadHttpHeaderLine(char *line, int size, int seconds);
    /// Reads until the peer closes or the buffer is full; gives the count. Bytes that were read
    /// ahead come first; those that do not fit stay for the next call. Throws as Receive() does.
    int ReadHttpResponse(char *buffer, int size, int seconds);

private:
    std::unique_ptr<char[]> m_pReadBuf;
    int m_nBytes = 0;
};

/// A new CBlockingSocket without a handle, for CFTPClient's constructor.
FORMKITFTP_EXPORT std::shared_ptr<IBlockingSocket> CreateDefaultBlockingSocketInstance();

} // namespace nsSocket
