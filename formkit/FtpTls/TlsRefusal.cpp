// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpTls/TlsRefusal_p.h"

#include <cerrno>
#include <cstring>

#include <openssl/err.h>
#include <openssl/x509_vfy.h>

namespace nsSocket {

TlsRefusal::TlsRefusal(const std::string &sentence)
    : CBlockingSocketException((errno = 0, "TLS")), m_sentence(sentence)
{
}

bool TlsRefusal::GetErrorMessage(char *buffer, unsigned int size,
                                 unsigned int * /*helpContext*/) const
{
    if (size <= m_sentence.size())
        return false;
    std::memcpy(buffer, m_sentence.c_str(), m_sentence.size() + 1);
    return true;
}

std::string TlsRefusal::GetErrorMessage(unsigned int * /*helpContext*/) const
{
    return m_sentence;
}

std::string certificateFault(long verifyResult, const std::string &host)
{
    const std::string certificate = "The certificate of " + host;
    switch (verifyResult) {
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
        return "The server's certificate is not for " + host + ".";
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return certificate + " has expired.";
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return certificate + " is not valid yet.";
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
        return certificate + " is not signed by a known authority.";
    default:
        return certificate + " is not valid: " + ::X509_verify_cert_error_string(verifyResult) +
               ".";
    }
}

std::string opensslReason()
{
    const unsigned long error = ::ERR_peek_error(); // the root of those after it
    const char *const reason = ::ERR_reason_error_string(error);
    // Without a text of its own the system's, as for a file that cannot be opened.
    const std::string text = reason                    ? reason
                             : ERR_SYSTEM_ERROR(error) ? std::strerror(ERR_GET_REASON(error))
                                                       : "unknown";
    ::ERR_clear_error();
    return text;
}

} // namespace nsSocket
