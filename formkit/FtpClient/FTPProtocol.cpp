// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPProtocol_p.h"

#include "formkit/FtpClient/FTPCalendar_p.h"
#include "formkit/FtpClient/FTPListParse.h"

#include <algorithm>
#include <ctime>

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

// Of what follows the seconds: ".25" is a quarter of a second. Digits past the ninth are dropped.
long fractionOf(std::string_view text)
{
    long nanoseconds = 0;
    if (text.empty() || text.front() != '.')
        return 0;
    long unit = 100000000;
    for (size_t i = 1; i < text.size() && isDigit(text[i]); ++i, unit /= 10)
        nanoseconds += unit * (text[i] - '0');
    return nanoseconds;
}

} // namespace

std::string Verb::line(const CArg &arguments) const
{
    if (m_command)
        return m_command->AsString(arguments);
    std::string text = m_name;
    for (const std::string &argument : arguments)
        text += argument.empty() ? "" : " " + argument;
    return text;
}

std::string_view nextLine(std::string_view &text)
{
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

std::string_view trimmed(std::string_view text)
{
    const size_t begin = std::min(text.find_first_not_of(' '), text.size());
    const size_t end = text.find_last_not_of(' ') + 1; // 0 for none
    return text.substr(begin, std::max(begin, end) - begin);
}

std::string upper(std::string_view text)
{
    std::string result(text);
    for (char &c : result)
        c = c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
    return result;
}

std::string lower(std::string_view text)
{
    std::string result(text);
    for (char &c : result)
        c = c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
    return result;
}

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

bool mayAnswer(const CReply &reply, const Verb &command)
{
    using C = CCommand;
    const std::string &code = reply.Code().Value();
    if (!command.known() || command == C::SITE || command == C::HELP)
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

bool readTime(std::string_view text, long long &seconds, long *nanoseconds)
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
    if (nanoseconds)
        *nanoseconds = fractionOf(text);
    return true;
}

std::string timeText(long long seconds)
{
    const std::time_t time = seconds;
    std::tm parts = {};
    char text[32] = {};
    const bool known = ::gmtime_r(&time, &parts) && parts.tm_year + 1900 >= 1000;
    if (known && parts.tm_year + 1900 <= 9999)
        std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &parts);
    return text;
}

} // namespace nsFTP
