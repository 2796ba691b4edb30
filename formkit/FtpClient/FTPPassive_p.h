// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPAddress_p.h"

namespace nsFTP {

/// Finds the address in a reply to PASV, as CFTPClient::GetIpAddressFromResponse() describes.
bool readPassiveAddress(const std::string &reply, unsigned int &ipAddress, unsigned short &port);

/// Finds the port in a reply to EPSV: "229 Entering Extended Passive Mode (|||6446|)". False, and
/// nothing is set, when there is none, and when it is 0.
bool readExtendedPort(const std::string &reply, unsigned short &port);
/// The argument of EPRT: "|2|::1|6446|".
std::string extendedArgument(const Address &address);

} // namespace nsFTP
