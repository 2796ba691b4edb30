// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPAssert_p.h"

#include <array>
#include <string>

namespace nsFTP {

/// The text of a value that counts from 0; a value without one is a programming error.
template <size_t Count> std::string textOf(const std::array<const char *, Count> &texts, int value)
{
    FTP_ASSERT(value >= 0 && size_t(value) < Count && texts[size_t(value)], "false");
    return texts[size_t(value)];
}

} // namespace nsFTP
