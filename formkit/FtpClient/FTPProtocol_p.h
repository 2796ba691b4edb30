// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"

#include <string_view>

namespace nsFTP {

/// Such a text would be more than one line of a command.
bool hasLineBreakOrNul(const std::string &text);
/// Whether a text can be a reply at all.
bool startsWithThreeDigits(const std::string &text);
/// The first and the last line of a reply of several lines: "220-hello", "220 ready".
bool opensMultiLine(const std::string &line);
bool closesMultiLine(const std::string &line, const std::string &firstLine);
/// False for a code that answers other commands only: 257, 227, 213. What SITE and HELP are
/// answered is the server's affair.
bool mayAnswer(const CReply &reply, CCommand::TCommandEnum command);

/// What follows the code on a reply's last line, without blanks and line ends around it.
std::string_view valueOf(const CReply &reply);
/// Reads a time in UTC, YYYYMMDDhhmmss and perhaps a fraction of a second, as seconds since
/// 1970-01-01. False, and nothing set, for a text or a date that is none.
bool readTime(std::string_view text, long long &seconds);

} // namespace nsFTP
