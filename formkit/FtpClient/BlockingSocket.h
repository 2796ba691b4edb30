// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <memory>
#include <string>

#include <netinet/in.h>
#include <sys/socket.h>

/// Blocking IPv4 sockets. Every operation blocks the calling thread; every wait of Send, Receive
/// and their like is bounded by a time-out in whole seconds; every failure is thrown as a
/// CBlockingSocketException. A socket serves one thread at a time.
///
/// Preconditions (a valid handle where one is needed, pointers that are not null) are checked in
/// every build and end the process: they are programming errors. What a peer does never is: a
/// closed peer is an exception or a Receive of 0, no signal is raised (SIGPIPE included), handles
/// above 1023 work, and an interrupted wait goes on for the time that is left.
namespace nsSocket {

class CInterruption;

/// The type of a raw handle.
using SOCKET = unsigned int;

/// The handle of a socket object that holds none.
constexpr SOCKET INVALID_SOCKET = ~0U;

/// The one exception of this layer: the name of the operation that failed and the system's error
/// number at the moment the exception was made. Failures that no system call reported (a send or
/// receive that timed out, a name that cannot be resolved) carry 0; a Connect or Accept that
/// timed out carries ETIMEDOUT.
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

private:
    int m_nError;
    std::string m_strMessage;
};

/// One socket. The FTP client knows sockets only through this interface and makes further ones
/// of the same kind with CreateInstance(), so that a test or a host can give it a class of its
/// own.
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
    /// Bounds each later Connect and Accept of this socket, and of the sockets that it creates,
    /// to so many seconds; a negative value (the state of a new socket) leaves the bound to the
    /// system. The interface's own version does nothing, for classes that cannot wait.
    virtual void SetWaitLimit(int seconds);
    /// Lets another thread end the waits of this socket, and of the sockets that it creates from
    /// now on. The interface's own version does nothing, for classes that cannot be interrupted.
    virtual void SetInterruption(const std::shared_ptr<const CInterruption> &interruption);
};

/// A socket of the system. A wait that is interrupted throws the operation's name with ECANCELED,
/// unless what it waits for is there already.
///
/// Addresses are IPv4 sockaddr_in of 16 bytes. Time-outs are whole seconds; 0 or less asks
/// without waiting. The handle is non-blocking underneath and is closed in child processes.
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
    /// Throws "Connect"; also when SetWaitLimit()'s time passes first (ETIMEDOUT).
    void Connect(const sockaddr *psa) const override;
    /// Throws "Bind".
    void Bind(const sockaddr *psa) const override;
    /// Listens with a backlog of 5. Throws "Listen".
    void Listen() const override;
    /// Closes a held handle and forgets it whatever comes of that; throws nothing.
    void Cleanup() override;
    /// Waits for one connection, hands it to connected (a CBlockingSocket without a handle) and
    /// writes the peer's address to psa. False when a signal interrupted the accept or its wait
    /// (errno is then EINTR): try again. Throws "Accept"; also when SetWaitLimit()'s time passes
    /// first (ETIMEDOUT).
    bool Accept(IBlockingSocket &connected, sockaddr *psa) const override;
    /// Closes a held handle. Throws "Close" and keeps the handle when the system refuses.
    void Close() override;
    /// Sends everything, waiting up to seconds for each piece; gives the count sent. A size of 0
    /// or less sends nothing. Throws as Send() does.
    int Write(const char *data, int size, int seconds) const override;
    /// Receives up to size bytes; 0 means that the peer has closed. A size of 0 or less asks for
    /// nothing and gives 0 at once. Throws "Receive timeout", "Receive".
    int Receive(char *buffer, int size, int seconds) const override;
    /// Throws "GetPeerName".
    void GetPeerAddr(sockaddr *psa) const override;
    /// Throws "GetSockName".
    void GetSockAddr(sockaddr *psa) const override;
    /// The raw handle, INVALID_SOCKET when there is none.
    operator SOCKET() const override { return m_hSocket; }
    /// True when a Receive would not wait: data, or the peer's end, is there. Throws
    /// "Socket Error".
    bool CheckReadability() const override;
    /// The first IPv4 address of a name or dotted text, with the port in network byte order.
    /// Safe in several threads; takes as long as the system's resolver does. Throws
    /// "GetHostByName".
    sockaddr_in GetHostByName(const char *name, unsigned short port = 0) override;
    /// The name of an address; valid until the thread's next call. Throws "GetHostByAddr".
    const char *GetHostByAddr(const sockaddr *psa) override;
    void SetWaitLimit(int seconds) override { m_nWaitLimit = seconds; }
    void SetInterruption(const std::shared_ptr<const CInterruption> &interruption) override;

    /// Sends what the system takes at once; gives the count. Throws "Send timeout", "Send".
    int Send(const char *data, int size, int seconds) const;
    /// One datagram and its sender. Throws "Receive timeout", "ReceiveDatagram".
    int ReceiveDatagram(char *buffer, int size, sockaddr *psa, int seconds) const;
    /// One datagram to psa. Throws "Send timeout", "SendDatagram".
    int SendDatagram(const char *data, int size, const sockaddr *psa, int seconds) const;

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

    /// Reads one line with its CR and LF, cut to size - 1 bytes, ends it with a NUL and gives
    /// the count of bytes before that. Throws "ReadHeaderLine" when the peer closes first, when
    /// 1000 bytes hold no line end, and when a line feed has no CR before it (the line then
    /// stays in the buffer); else as Receive() does. After a line that was cut the buffer counts
    /// the bytes cut off as held still: what follows such a line is not reliable. A size below 1
    /// reads nothing and gives 0.
    int ReadHttpHeaderLine(char *line, int size, int seconds);
    /// Reads until the peer closes or the buffer is full, the bytes read ahead first; gives the
    /// count. Bytes read ahead that do not fit stay for the next call. Throws as Receive() does.
    int ReadHttpResponse(char *buffer, int size, int seconds);

private:
    std::unique_ptr<char[]> m_pReadBuf;
    int m_nBytes = 0;
};

/// A new CBlockingSocket without a handle: what CFTPClient's constructor wants.
FORMKITFTP_EXPORT std::shared_ptr<IBlockingSocket> CreateDefaultBlockingSocketInstance();

} // namespace nsSocket
