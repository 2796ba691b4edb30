// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPSecurity.h"

#include <memory>

#include <openssl/ssl.h>

namespace nsSocket {

/// Frees what OpenSSL allocated.
template <auto Free> struct Freed
{
    template <typename Object> void operator()(Object *object) const { Free(object); }
};
using Ssl = std::unique_ptr<SSL, Freed<SSL_free>>;
using SslSession = std::unique_ptr<SSL_SESSION, Freed<SSL_SESSION_free>>;

/// What the sockets of one client share: whom they trust, and the TLS session of the control
/// connection, which data connections resume.
class TlsContext
{
public:
    explicit TlsContext(const nsFTP::CFTPSecurity &security) : m_security(security) {}

    const nsFTP::CFTPSecurity &security() const { return m_security; }
    /// A new connection, which will check that the certificate is valid for the host. A data
    /// connection resumes the session of the control connection. Throws TlsRefusal if the
    /// authorities' certificates cannot be read.
    Ssl makeConnection(const std::string &host, bool isData);
    /// Throws TlsRefusal if a key is pinned and the connected peer has another one.
    void checkKey(SSL *connection, const std::string &host) const;

private:
    static int keepSession(SSL *connection, SSL_SESSION *session);
    void prepare();

    const nsFTP::CFTPSecurity m_security;
    std::unique_ptr<SSL_CTX, Freed<SSL_CTX_free>> m_context;
    SslSession m_session;
};

} // namespace nsSocket
