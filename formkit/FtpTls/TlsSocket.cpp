// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpTls/TlsSocket.h"

#include "formkit/FtpClient/SecureSocket.h"
#include "formkit/FtpTls/TlsContext_p.h"
#include "formkit/FtpTls/TlsRefusal_p.h"

#include <QScopeGuard>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <exception>

#include <netinet/tcp.h>
#include <openssl/err.h>

namespace nsSocket {

namespace {

[[noreturn]] int timedOut()
{
    errno = 0;
    throw CBlockingSocketException("Receive timeout");
}

// OpenSSL reads and writes through the socket below it, which bounds the waits. What that throws
// must not pass through OpenSSL: it is kept, and thrown again outside.
class CTlsSocket : public CInternetSocket, public ISecureSocket
{
public:
    CTlsSocket(const std::shared_ptr<TlsContext> &context, TAddressFamily family, bool isData)
        : CInternetSocket(family), m_context(context), m_family(family), m_isData(isData)
    {
    }
    ~CTlsSocket() override { forgetTls(); }

    IBlockingSocket *CreateInstance() const override
    {
        return Equipped(new CTlsSocket(m_context, m_family, true));
    }
    void Close() override;
    void Cleanup() override;
    int Write(const char *data, int size, int seconds) const override;
    int Receive(char *buffer, int size, int seconds) const override;
    bool CheckReadability() const override;

    const nsFTP::CFTPSecurity &Security() const override { return m_context->security(); }
    void StartTls(const std::string &host, int seconds) override;
    void EndTls(int seconds) override;
    bool IsTls() const override { return m_tls != nullptr; }

private:
    using Clock = std::chrono::steady_clock;

    static const BIO_METHOD *wire();
    static int readWire(BIO *bio, char *buffer, int size);
    static int writeWire(BIO *bio, const char *data, int size);
    static long controlWire(BIO *bio, int command, long number, void *pointer);

    template <typename Call> int run(int seconds, Call call) const;
    template <typename Transfer> int onWire(Transfer transfer) const;
    int receiveOnce(char *buffer, int size, int seconds) const;
    int secondsLeft() const;
    [[noreturn]] void refuse(const std::string &host) const;
    void forgetTls();

    const std::shared_ptr<TlsContext> m_context;
    const TAddressFamily m_family;
    const bool m_isData;
    Ssl m_tls;
    /// Of the operation that runs.
    mutable Clock::time_point m_end;
    mutable int m_seconds = 0;
    mutable bool m_mayRead = true;
    mutable std::exception_ptr m_failure;
    /// The peer has closed the connection.
    mutable bool m_ended = false;
};

const BIO_METHOD *CTlsSocket::wire()
{
    static const std::unique_ptr<BIO_METHOD, Freed<BIO_meth_free>> method = [] {
        std::unique_ptr<BIO_METHOD, Freed<BIO_meth_free>> made(
            ::BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "socket"));
        ::BIO_meth_set_read(made.get(), readWire);
        ::BIO_meth_set_write(made.get(), writeWire);
        ::BIO_meth_set_ctrl(made.get(), controlWire);
        return made;
    }();
    return method.get();
}

int CTlsSocket::secondsLeft() const
{
    const auto left = std::chrono::ceil<std::chrono::seconds>(m_end - Clock::now());
    return int(std::max<long long>(0, left.count()));
}

// Runs a transfer of the socket below; -1, and the exception kept, when it fails.
template <typename Transfer> int CTlsSocket::onWire(Transfer transfer) const
{
    try {
        return transfer();
    } catch (...) {
        m_failure = std::current_exception();
        return -1;
    }
}

int CTlsSocket::readWire(BIO *bio, char *buffer, int size)
{
    const auto *const socket = static_cast<const CTlsSocket *>(::BIO_get_data(bio));
    BIO_clear_retry_flags(bio);
    // A peer could send messages of TLS without end, and never a byte of data.
    const bool late = Clock::now() > socket->m_end + std::chrono::seconds(1);
    const int count = !socket->m_mayRead ? -1 : socket->onWire([&] {
        return late ? timedOut()
                    : socket->CBlockingSocket::Receive(buffer, size, socket->secondsLeft());
    });
    socket->m_ended = socket->m_ended || count == 0;
    if (count < 0)
        BIO_set_retry_read(bio);
    return count;
}

int CTlsSocket::writeWire(BIO *bio, const char *data, int size)
{
    const auto *const socket = static_cast<const CTlsSocket *>(::BIO_get_data(bio));
    BIO_clear_retry_flags(bio);
    const int count = socket->onWire(
        [&] { return socket->CBlockingSocket::Write(data, size, socket->m_seconds); });
    if (count < 0)
        BIO_set_retry_write(bio);
    return count;
}

long CTlsSocket::controlWire(BIO *bio, int command, long /*number*/, void * /*pointer*/)
{
    const auto *const socket = static_cast<const CTlsSocket *>(::BIO_get_data(bio));
    if (command == BIO_CTRL_EOF)
        return socket->m_ended ? 1 : 0;
    return command == BIO_CTRL_FLUSH ? 1 : 0;
}

// Runs a call of OpenSSL; throws what the socket below threw meanwhile.
template <typename Call> int CTlsSocket::run(int seconds, Call call) const
{
    m_seconds = seconds;
    m_end = Clock::now() + std::chrono::seconds(std::max(seconds, 0));
    m_failure = nullptr;
    ::ERR_clear_error();
    const int result = call(m_tls.get());
    if (result <= 0 && m_failure)
        std::rethrow_exception(m_failure);
    return result;
}

void CTlsSocket::StartTls(const std::string &host, int seconds)
{
    const int on = 1;
    ::setsockopt(int(operator SOCKET()), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    m_ended = false;
    m_tls = m_context->makeConnection(host, m_isData);
    BIO *const bio = ::BIO_new(wire());
    if (!bio)
        throw std::bad_alloc();
    ::BIO_set_data(bio, this);
    ::BIO_set_init(bio, 1);
    ::SSL_set_bio(m_tls.get(), bio, bio);
    int connected = 0;
    try {
        connected = run(seconds, ::SSL_connect);
    } catch (const CBlockingSocketException &exception) {
        const int error = exception.GetErrorNumber();
        if (error != EPIPE && error != ECONNRESET)
            throw;
        m_ended = true;
    }
    if (connected != 1)
        refuse(host);
    m_context->checkKey(m_tls.get(), host);
}

void CTlsSocket::refuse(const std::string &host) const
{
    const long verified = ::SSL_get_verify_result(m_tls.get());
    const bool checked = ::SSL_get_verify_mode(m_tls.get()) != SSL_VERIFY_NONE;
    if (checked && verified != X509_V_OK)
        throw TlsRefusal(certificateFault(verified, host));
    if (m_ended)
        throw TlsRefusal(host + " closed the connection instead of beginning TLS.");
    const unsigned long error = ::ERR_peek_error();
    if (ERR_GET_LIB(error) == ERR_LIB_SSL && ERR_GET_REASON(error) == SSL_R_WRONG_VERSION_NUMBER)
        throw TlsRefusal(host + " does not answer in TLS.");
    throw TlsRefusal(host + " and this client agree on no TLS: " + opensslReason() + ".");
}

int CTlsSocket::receiveOnce(char *buffer, int size, int seconds) const
{
    const int count = run(seconds, [=](SSL *tls) { return ::SSL_read(tls, buffer, size); });
    if (count > 0 || ::SSL_get_error(m_tls.get(), count) == SSL_ERROR_ZERO_RETURN)
        return std::max(count, 0);
    if (!m_mayRead)
        return 0;
    throw TlsRefusal(m_ended ? "The connection ended without TLS's closing message: what came may "
                               "not be all."
                             : "TLS failed: " + opensslReason() + ".");
}

int CTlsSocket::Receive(char *buffer, int size, int seconds) const
{
    if (!m_tls || size <= 0)
        return CInternetSocket::Receive(buffer, size, seconds);
    int total = receiveOnce(buffer, size, seconds);
    // One call gives one record. Take what else is here, but wait for nothing.
    const auto restored = qScopeGuard([this] { m_mayRead = true; });
    m_mayRead = false;
    for (int count = total; count > 0 && total < size && ::SSL_has_pending(m_tls.get());) {
        count = receiveOnce(buffer + total, size - total, 0);
        total += count;
    }
    return total;
}

int CTlsSocket::Write(const char *data, int size, int seconds) const
{
    if (!m_tls || size <= 0)
        return CInternetSocket::Write(data, size, seconds);
    const int sent = run(seconds, [=](SSL *tls) { return ::SSL_write(tls, data, size); });
    if (sent <= 0)
        throw TlsRefusal("TLS failed: " + opensslReason() + ".");
    return sent;
}

bool CTlsSocket::CheckReadability() const
{
    if (!m_tls)
        return CInternetSocket::CheckReadability();
    // What has come may be a ticket, or a part of a record: then Receive() would wait.
    try {
        char byte = 0;
        run(0, [&](SSL *tls) { return ::SSL_peek(tls, &byte, 1); });
        return true;
    } catch (const CBlockingSocketException &) {
        return false;
    }
}

void CTlsSocket::EndTls(int seconds)
{
    if (!m_tls)
        return;
    run(seconds, ::SSL_shutdown);
    // Closing with anything unread would reset the connection, and the peer could lose the end of
    // the data. It has been told the end: what it answers does not matter any more.
    const Clock::time_point end = Clock::now() + std::chrono::seconds(std::max(seconds, 0));
    try {
        char rest[4096];
        while (receiveOnce(rest, sizeof rest, secondsLeft()) > 0 && Clock::now() < end) {
        }
    } catch (const CBlockingSocketException &) {
        ::ERR_clear_error();
    }
    forgetTls();
}

void CTlsSocket::Close()
{
    if (m_tls && ::SSL_is_init_finished(m_tls.get())) {
        try {
            run(0, ::SSL_shutdown);
        } catch (const CBlockingSocketException &) {
            ::ERR_clear_error(); // the peer has gone, or reads nothing
        }
    }
    forgetTls();
    CInternetSocket::Close();
}

void CTlsSocket::Cleanup()
{
    forgetTls();
    CInternetSocket::Cleanup();
}

void CTlsSocket::forgetTls()
{
    // Otherwise OpenSSL takes the session for broken, and it could not be resumed.
    if (m_tls)
        ::SSL_set_shutdown(m_tls.get(), SSL_SENT_SHUTDOWN | SSL_RECEIVED_SHUTDOWN);
    m_tls.reset();
}

} // namespace

std::shared_ptr<IBlockingSocket> CreateTlsSocketInstance(const nsFTP::CFTPSecurity &security,
                                                         TAddressFamily family)
{
    if (security.mode == nsFTP::CFTPSecurity::None)
        return CreateInternetSocketInstance(family);
    return std::make_shared<CTlsSocket>(std::make_shared<TlsContext>(security), family, false);
}

} // namespace nsSocket
