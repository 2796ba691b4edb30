// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace nsFTP {

/// How the sessions of a client are protected. FormKit::FtpTls makes the sockets that do it:
/// CreateTlsSocketInstance().
/// - If a server does not do what is asked for here, the client closes the connection and tells the
///   observers why (CFTPClient::CNotification::OnInternalError()). It never falls back to clear
///   text by itself.
/// - With a firewall the protection reaches as far as the firewall, whose certificate is checked.
struct CFTPSecurity
{
    /// How the connection becomes a protected one.
    enum TMode {
        None,     ///< it does not: everything crosses the network in clear
        Explicit, ///< by AUTH TLS after the greeting; the usual way, on port 21
        Implicit  ///< before the greeting; for old servers, mostly on port 990
    };

    /// With None the members below mean nothing.
    TMode mode = Explicit;
    /// A PEM file with the certificates of the authorities to trust instead of the system's.
    std::string caFile;
    /// The server's key: "sha256//" and the SHA-256 of its public key in base64, as curl takes it.
    /// Without caFile it replaces all other checks of the certificate; with caFile both checks must
    /// succeed. If the server has another key, the report names that key.
    std::string pinnedKey;
    /// Files and listings cross the network in clear (PROT C), names and passwords do not.
    bool clearData = false;
    /// Names cross the network in clear after the logon (CCC), so that routers between can read
    /// the ports.
    bool clearControl = false;
};

} // namespace nsFTP
