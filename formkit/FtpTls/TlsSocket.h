// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPSecurity.h"
#include "formkit/FtpClient/InternetSocket.h"
#include "formkit/FtpTls/formkitftptls_export.h"

namespace nsSocket {

/// A new socket for CFTPClient's constructor. The client then protects its sessions as the security
/// says: nothing else has to be set.
///
///     nsFTP::CFTPSecurity security;
///     nsFTP::CFTPClient client(nsSocket::CreateTlsSocketInstance(security), 30);
///     client.Login({"ftp.example.org", 21, "user", "password"});
///
/// It knows TLS 1.2 and 1.3, IPv4 and IPv6. With the mode None it is a plain CInternetSocket. A CA
/// file is read at the logon, which fails if the file cannot be read.
FORMKITFTPTLS_EXPORT std::shared_ptr<IBlockingSocket>
CreateTlsSocketInstance(const nsFTP::CFTPSecurity &security,
                        TAddressFamily family = TAddressFamily::Any);

} // namespace nsSocket
