// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPSecurity.h"
#include "formkit/FtpClient/formkitftp_export.h"

namespace nsSocket {

/// What a socket offers that can be protected, beside IBlockingSocket. CFTPClient asks its socket
/// for this interface with dynamic_cast. Sockets made with CreateInstance() belong to the session
/// of the one that made them: a server can require that it is resumed on each data connection.
class FORMKITFTP_EXPORT ISecureSocket
{
public:
    virtual ~ISecureSocket();
    /// What CFTPClient has to ask of the server.
    virtual const nsFTP::CFTPSecurity &Security() const = 0;
    /// From now on the connected socket sends and receives over TLS. Waits no longer than so many
    /// seconds in all for the peer. The host is whom the certificate has to name. Throws the reason
    /// for which the peer is not trusted; the connection is then of no use.
    ///
    /// The end of the data is then only what the peer says to be the end: when the connection
    /// ends without that, Receive() throws.
    virtual void StartTls(const std::string &host, int seconds) = 0;
    /// Tells the peer that no more data come, and waits up to so many seconds for it to do the
    /// same. The socket stays connected, in clear. Without TLS it does nothing. Throws when the
    /// peer cannot be told.
    virtual void EndTls(int seconds) = 0;
    virtual bool IsTls() const = 0;
};

} // namespace nsSocket
