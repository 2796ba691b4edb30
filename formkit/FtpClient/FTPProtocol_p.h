// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"

#include <string_view>

namespace nsFTP {

/// A text with one of these would be sent as several commands.
bool hasLineBreakOrNul(const std::string &text);
/// Without three digits at its start a text is no reply.
bool startsWithThreeDigits(const std::string &text);
/// The first and the last line of a reply of several lines: "220-hello", "220 ready".
bool opensMultiLine(const std::string &line);
bool closesMultiLine(const std::string &line, const std::string &firstLine);
/// False for a 257, 227 or 213 to a command that these do not answer. SITE and HELP may be answered
/// by any code.
bool mayAnswer(const CReply &reply, CCommand::TCommandEnum command);

/// What follows the code on a reply's last line, without blanks and line ends around it.
std::string_view valueOf(const CReply &reply);
/// Reads a time in UTC (YYYYMMDDhhmmss, perhaps with a fraction of a second) as seconds since
/// 1970-01-01. False, and nothing is set, for another text and for a date that does not exist.
bool readTime(std::string_view text, long long &seconds);

} // namespace nsFTP
