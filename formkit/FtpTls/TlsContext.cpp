// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpTls/TlsContext_p.h"

#include "formkit/FtpTls/TlsRefusal_p.h"

#include <new>
#include <vector>

#include <arpa/inet.h>
#include <openssl/evp.h>
#include <openssl/x509v3.h>

namespace nsSocket {

namespace {

/// Several records come with one receive.
constexpr size_t ReadAhead = 128 * 1024;

bool isAddress(const std::string &host)
{
    unsigned char bytes[sizeof(in6_addr)];
    return ::inet_pton(AF_INET, host.c_str(), bytes) == 1 ||
           ::inet_pton(AF_INET6, host.c_str(), bytes) == 1;
}

// The SHA-256 of a certificate's public key, in base64.
std::string fingerprint(X509 *certificate)
{
    unsigned char *der = nullptr;
    const int length = ::i2d_X509_PUBKEY(::X509_get_X509_PUBKEY(certificate), &der);
    if (length <= 0)
        return {};
    unsigned char hash[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    ::EVP_Digest(der, size_t(length), hash, &size, ::EVP_sha256(), nullptr);
    ::OPENSSL_free(der);
    unsigned char text[2 * EVP_MAX_MD_SIZE];
    const int written = ::EVP_EncodeBlock(text, hash, int(size));
    return {text, text + written};
}

} // namespace

void TlsContext::prepare()
{
    m_context.reset(::SSL_CTX_new(::TLS_client_method()));
    SSL_CTX *const context = m_context.get();
    if (!context)
        throw std::bad_alloc();
    SSL_CTX_set_app_data(context, this);
    ::SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
    ::SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
    ::SSL_CTX_set_session_cache_mode(context,
                                     SSL_SESS_CACHE_CLIENT | SSL_SESS_CACHE_NO_INTERNAL_STORE);
    ::SSL_CTX_sess_set_new_cb(context, keepSession);
    ::SSL_CTX_set_read_ahead(context, 1);
    ::SSL_CTX_set_default_read_buffer_len(context, ReadAhead);
    const std::string &file = m_security.caFile;
    const bool onlyKey = file.empty() && !m_security.pinnedKey.empty();
    ::SSL_CTX_set_verify(context, onlyKey ? SSL_VERIFY_NONE : SSL_VERIFY_PEER, nullptr);
    const bool loaded = file.empty() ? ::SSL_CTX_set_default_verify_paths(context) == 1
                                     : ::SSL_CTX_load_verify_file(context, file.c_str()) == 1;
    if (!loaded) {
        m_context.reset();
        throw TlsRefusal("Cannot read the certificates of the authorities" +
                         (file.empty() ? "" : " in " + file) + ": " + opensslReason() + ".");
    }
}

Ssl TlsContext::makeConnection(const std::string &host, bool isData)
{
    if (!m_context)
        prepare();
    Ssl connection(::SSL_new(m_context.get()));
    if (!connection)
        throw std::bad_alloc();
    if (isAddress(host)) {
        ::X509_VERIFY_PARAM_set1_ip_asc(::SSL_get0_param(connection.get()), host.c_str());
    } else {
        ::SSL_set_hostflags(connection.get(), X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        ::SSL_set1_host(connection.get(), host.c_str());
        SSL_set_tlsext_host_name(connection.get(), host.c_str());
    }
    if (!isData) {
        m_session.reset();
        SSL_set_app_data(connection.get(), this);
    } else if (m_session) {
        // A copy: what goes wrong with one data connection must not end the session for the next.
        const SslSession copy(::SSL_SESSION_dup(m_session.get()));
        ::SSL_set_session(connection.get(), copy.get());
    }
    return connection;
}

// Called for each ticket of the control connection, which may come at any time.
int TlsContext::keepSession(SSL *connection, SSL_SESSION *session)
{
    auto *const context = static_cast<TlsContext *>(SSL_get_app_data(connection));
    if (!context)
        return 0;
    context->m_session.reset(session);
    return 1;
}

void TlsContext::checkKey(SSL *connection, const std::string &host) const
{
    if (m_security.pinnedKey.empty())
        return;
    X509 *const certificate = ::SSL_get0_peer_certificate(connection);
    const std::string key = "sha256//" + (certificate ? fingerprint(certificate) : "");
    if (key != m_security.pinnedKey)
        throw TlsRefusal("The key of " + host + " is not the pinned one, but " + key + ".");
}

} // namespace nsSocket
