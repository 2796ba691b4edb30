// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/BlockingSocket.h"

namespace nsSocket {

/// Why a connection has no TLS. Its message is a sentence for people, without an error number.
class TlsRefusal : public CBlockingSocketException
{
public:
    explicit TlsRefusal(const std::string &sentence);
    bool GetErrorMessage(char *buffer, unsigned int size, unsigned int *helpContext) const override;
    std::string GetErrorMessage(unsigned int *helpContext) const override;

private:
    std::string m_sentence;
};

/// The sentence for a result of X509_verify_cert() that is not X509_V_OK.
std::string certificateFault(long verifyResult, const std::string &host);
/// OpenSSL's reason for the last failure; "unknown" if it gives none. Empties OpenSSL's list of
/// errors.
std::string opensslReason();

} // namespace nsSocket
