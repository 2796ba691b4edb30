// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/SecureSocket.h"

namespace nsSocket {

ISecureSocket::~ISecureSocket() = default;

} // namespace nsSocket
