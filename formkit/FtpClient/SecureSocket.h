// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPSecurity.h"
#include "formkit/FtpClient/formkitftp_export.h"

namespace nsSocket {

/// What a socket that knows TLS offers beside IBlockingSocket. CFTPClient asks its socket for this
/// interface with dynamic_cast. A socket made with CreateInstance() resumes the TLS session of the
/// one that made it: a server can require that of each data connection.
class FORMKITFTP_EXPORT ISecureSocket
{
public:
    virtual ~ISecureSocket();
    /// How CFTPClient is to protect its sessions.
    virtual const nsFTP::CFTPSecurity &Security() const = 0;
    /// Begins TLS on the connected socket: from now on it sends and receives over TLS. Waits no
    /// longer than so many seconds in all. The certificate has to be valid for `host`. Throws, with
    /// the reason, if the peer is not trusted or does not begin TLS: then close the socket.
    ///
    /// With TLS, Receive() gives 0 only if the peer has sent TLS's closing message. If the
    /// connection ends without one, it throws.
    virtual void StartTls(const std::string &host, int seconds) = 0;
    /// Ends TLS: sends TLS's closing message and waits up to so many seconds for that of the peer.
    /// The socket stays connected, in clear. Does nothing without TLS. Throws if the message cannot
    /// be sent.
    virtual void EndTls(int seconds) = 0;
    virtual bool IsTls() const = 0;
};

} // namespace nsSocket
