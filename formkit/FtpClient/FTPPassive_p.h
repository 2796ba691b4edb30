// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include <netinet/in.h>

namespace nsFTP {

/// Finds the address of a reply to PASV; CFTPClient::GetIpAddressFromResponse() tells how.
bool readPassiveAddress(const std::string &reply, unsigned int &ipAddress, unsigned short &port);

/// An address of the Internet as sockets take it; the parts are in host byte order.
sockaddr_in addressOf(unsigned int ipAddress, unsigned short port);
sockaddr *generic(sockaddr_in *address);
std::string dotted(in_addr address);

} // namespace nsFTP
