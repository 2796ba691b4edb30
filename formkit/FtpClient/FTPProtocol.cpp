// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPProtocol_p.h"

#include "formkit/FtpClient/FTPCalendar_p.h"
#include "formkit/FtpClient/FTPListParse.h"

#include <algorithm>

namespace nsFTP {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The decimal digits at the start of a line; -1 when there are none.
int leadingNumber(const std::string &line)
{
    int value = -1;
    for (size_t i = 0; i < 3 && i < line.size() && isDigit(line[i]); ++i)
        value = std::max(value, 0) * 10 + (line[i] - '0');
    return value;
}

} // namespace

bool hasLineBreakOrNul(const std::string &text)
{
    return text.find_first_of(std::string("\r\n\0", 3)) != std::string::npos;
}

bool startsWithThreeDigits(const std::string &text)
{
    return text.size() >= 3 && std::all_of(text.begin(), text.begin() + 3, isDigit);
}

bool opensMultiLine(const std::string &line)
{
    return line.size() >= 4 && line[3] == '-';
}

bool closesMultiLine(const std::string &line, const std::string &firstLine)
{
    return line.size() >= 4 && line[3] == ' ' && leadingNumber(line) == leadingNumber(firstLine);
}

bool mayAnswer(const CReply &reply, CCommand::TCommandEnum command)
{
    using C = CCommand;
    const std::string &code = reply.Code().Value();
    if (command == C::SITE || command == C::HELP)
        return true;
    if (code == "257")
        return command == C::PWD || command == C::MKD;
    if (code == "227")
        return command == C::PASV;
    return code != "213" || command == C::SIZE || command == C::MDTM || command == C::STAT;
}

std::string_view valueOf(const CReply &reply)
{
    std::string_view text = reply.Value();
    const size_t end = text.find_last_not_of(" \r\n");
    text = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
    const size_t lastLine = text.rfind('\n');
    text.remove_prefix(lastLine == std::string_view::npos ? 0 : lastLine + 1);
    text.remove_prefix(std::min<size_t>(text.size(), 4));
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

bool readTime(std::string_view text, long long &seconds)
{
    long parts[6] = {};
    constexpr size_t lengths[6] = {4, 2, 2, 2, 2, 2};
    constexpr long highest[6] = {9999, 12, 31, 23, 59, 60};
    for (int i = 0; i < 6; ++i) {
        if (text.size() < lengths[i] ||
            !CFTPListParser::GetLong(text.data(), lengths[i], parts[i]) || parts[i] > highest[i])
            return false;
        text.remove_prefix(lengths[i]);
    }
    const bool goesOn = !text.empty() && isDigit(text.front());
    if (goesOn || parts[1] == 0 || parts[2] == 0 ||
        parts[2] > Calendar::daysInMonth(parts[0], parts[1] - 1))
        return false;
    seconds = Calendar::secondsOf(parts[0], parts[1] - 1, parts[2]) + parts[3] * 3600 +
              parts[4] * 60 + parts[5];
    return true;
}

} // namespace nsFTP
