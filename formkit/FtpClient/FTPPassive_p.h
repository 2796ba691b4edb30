// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include <netinet/in.h>

namespace nsFTP {

/// Finds the address in a reply to PASV, as CFTPClient::GetIpAddressFromResponse() describes.
bool readPassiveAddress(const std::string &reply, unsigned int &ipAddress, unsigned short &port);

/// A socket address; the arguments are in host byte order.
sockaddr_in addressOf(unsigned int ipAddress, unsigned short port);
sockaddr *generic(sockaddr_in *address);
std::string dotted(in_addr address);

} // namespace nsFTP
