// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"

#include <optional>
#include <string_view>

namespace nsFTP {

/// What a command line begins with: one of CCommand's commands or, beyond its table, a name.
class Verb
{
public:
    Verb(const CCommand &command) : m_command(command), m_name(command.AsString()) {}
    Verb(CCommand::TCommandEnum command) : Verb(CCommand(command)) {}
    /// In upper case, unless observers are to see it otherwise.
    Verb(std::string name) : m_name(std::move(name)) {}
    Verb(const char *name) : m_name(name) {}

    const std::optional<CCommand> &known() const { return m_command; }
    const std::string &name() const { return m_name; }
    /// As CCommand::AsString() for a command of the table.
    std::string line(const CArg &arguments) const;
    bool sends() const { return m_command && m_command->IsDatachannelWriteCommand(); }
    bool operator==(CCommand::TCommandEnum command) const
    {
        return m_command && *m_command == command;
    }

private:
    std::optional<CCommand> m_command;
    std::string m_name;
};

/// The next line of a text without its line end, which is taken off the text.
std::string_view nextLine(std::string_view &text);
std::string_view trimmed(std::string_view text);
/// Of ASCII's letters.
std::string upper(std::string_view text);
std::string lower(std::string_view text);

/// A text with one of these would be sent as several commands.
bool hasLineBreakOrNul(const std::string &text);
/// Without three digits at its start a text is no reply.
bool startsWithThreeDigits(const std::string &text);
/// The first and the last line of a reply of several lines: "220-hello", "220 ready".
bool opensMultiLine(const std::string &line);
bool closesMultiLine(const std::string &line, const std::string &firstLine);
/// False for a 257, 227 or 213 to a command that these do not answer. SITE and HELP may be answered
/// by any code, and so may commands that CCommand does not know.
bool mayAnswer(const CReply &reply, const Verb &verb);

/// What follows the code on a reply's last line, without blanks and line ends around it.
std::string_view valueOf(const CReply &reply);
/// Reads a time in UTC (YYYYMMDDhhmmss, perhaps with a fraction of a second) as seconds since
/// 1970-01-01. False, and nothing is set, for another text and for a date that does not exist.
bool readTime(std::string_view text, long long &seconds, long *nanoseconds = nullptr);
/// The same for sending: "20240229120001". Empty for years that have not four digits.
std::string timeText(long long seconds);

} // namespace nsFTP
