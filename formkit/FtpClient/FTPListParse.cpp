// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPListParse.h"

#include "formkit/FtpClient/FTPCalendar_p.h"
#include "formkit/FtpClient/FTPListWalk_p.h"

#include <algorithm>
#include <ctime>

namespace nsFTP {

namespace {

constexpr long long NotInTheFuture = 30240000; // 350 days

// Of the day: what stands after the time on a clock of twelve hours.
bool isHalf(std::string_view text)
{
    return text == "A" || text == "P" || text == "AM" || text == "PM";
}

bool readMSDOSDate(ListWalk &walk, long long &seconds)
{
    long month = 0;
    long day = 0;
    long year = 0;
    const bool monthRead = readNumber(walk.upTo('-'), 1, 12, month);
    walk.skip('-');
    const bool dayRead = readNumber(walk.upTo('-'), 1, 31, day);
    walk.skip('-');
    const bool yearRead = readNumber(walk.upTo(' '), 0, LastYear, year);
    walk.skip(' ');
    if (year < 50)
        year += 2000;
    if (year < 1000)
        year += 1900;
    seconds = Calendar::secondsOf(year, month - 1, day);
    return monthRead && dayRead && yearRead;
}

// Adds the time to the date. A blank may stand before the half of the day, and a clock of 24 hours
// has none.
bool readMSDOSTime(ListWalk &walk, long long &seconds)
{
    long hour = 0;
    long minute = 0;
    const bool hourRead = readNumber(walk.upTo(':'), 0, 99, hour);
    const bool minuteRead = readNumber(walk.digits(), 0, 99, minute);
    std::string_view half = walk.upTo(' ');
    walk.skip(' ');
    if (half.empty() && isHalf(walk.rest().substr(0, walk.rest().find(' ')))) {
        half = walk.upTo(' ');
        walk.skip(' ');
    }
    if (!hourRead || !minuteRead || (!half.empty() && !isHalf(half)))
        return false;
    if (!half.empty())
        hour = (hour == 12 ? 0 : hour) + (half.front() == 'P' ? 12 : 0);
    seconds += hour * 3600 + minute * 60;
    return true;
}

} // namespace

const char *const CFTPListParser::m_Months[12] = {"jan", "feb", "mar", "apr", "may", "jun",
                                                  "jul", "aug", "sep", "oct", "nov", "dec"};

IFileListParser::~IFileListParser() = default;

CFTPListParser::CFTPListParser(Clock clock)
    : m_Clock(clock ? std::move(clock) : [] { return static_cast<long long>(std::time(nullptr)); })
{
    const std::time_t zero = 0;
    std::tm epoch = {};
    ::gmtime_r(&zero, &epoch);
    m_nEpochCorrection = -ToTAI(epoch.tm_year + 1900, epoch.tm_mon, epoch.tm_mday);
}

bool CFTPListParser::Parse(CFTPFileStatus &status, const std::string &line)
{
    status.Reset();
    if (line.size() < 2)
        return false;
    if (IsEPLS(line))
        return ParseEPLF(status, line);
    if (IsUNIXStyleListing(line))
        return ParseUNIXStyleListing(status, line);
    if (IsMultiNetListing(line))
        return ParseMultiNetListing(status, line);
    if (IsMSDOSListing(line))
        return ParseMSDOSListing(status, line);
    return false;
}

bool CFTPListParser::IsEPLS(std::string_view line)
{
    return !line.empty() && line.front() == '+';
}

bool CFTPListParser::IsUNIXStyleListing(std::string_view line)
{
    return !line.empty() &&
           std::string_view("bcdlps-").find(line.front()) != std::string_view::npos;
}

bool CFTPListParser::IsMultiNetListing(std::string_view line)
{
    return line.find(';') != std::string_view::npos;
}

bool CFTPListParser::IsMSDOSListing(std::string_view line)
{
    return !line.empty() && isDigit(line.front());
}

// +i8388621.29609,m824255902,/,<tab>dev
bool CFTPListParser::ParseEPLF(CFTPFileStatus &status, std::string_view line) const
{
    const size_t tab = line.find('\t');
    if (tab == std::string_view::npos)
        return false;
    ListWalk facts(line.substr(1, tab - 1));
    while (!facts.atEnd()) {
        const std::string_view fact = facts.upTo(',');
        if (!facts.good())
            break;
        if (fact.empty())
            continue;
        const std::string_view value = fact.substr(1);
        long seconds = 0;
        switch (fact.front()) {
        case 'i':
            status.idType = CFTPFileStatus::idFull;
            status.id = value;
            break;
        case 'm':
            if (readDigits(value, seconds))
                setTime(status, CFTPFileStatus::timeExact, seconds + m_nEpochCorrection);
            break;
        case 'r':
            status.tryRetrieve = true;
            break;
        case 's':
            status.sizeType = CFTPFileStatus::sizeBytes;
            status.size = sizeOf(value);
            break;
        case '/':
            status.tryCwd = true;
            break;
        default:
            break;
        }
    }
    status.name = line.substr(tab + 1);
    return true;
}

// NOTES.TXT;3         4 17-OCT-2001 08:25 [CLERK] (RWED,RWED,RE,RE)
bool CFTPListParser::ParseMultiNetListing(CFTPFileStatus &status, std::string_view line) const
{
    ListWalk walk(line);
    std::string_view name = walk.upTo(';');
    if (!walk.good())
        return true;
    if (name.size() >= 5 && name.substr(name.size() - 4) == ".DIR") {
        name.remove_suffix(4);
        status.tryCwd = true;
    } else {
        status.tryRetrieve = true;
    }
    status.name = name;

    walk.upTo(' '); // the version
    walk.skip(' ');
    walk.upTo(' '); // the size in blocks
    walk.skip(' ');
    long day = 0;
    long year = 0;
    long hour = 0;
    long minute = 0;
    const bool dayRead = readNumber(walk.upTo('-'), 1, 31, day);
    const std::string_view monthName = walk.upTo('-');
    const long month = GetMonth(monthName.data(), monthName.size());
    const bool yearRead = readNumber(walk.upTo(' '), 0, LastYear, year);
    walk.skip(' ');
    const bool hourRead = readNumber(walk.upTo(':'), 0, 99, hour);
    const bool minuteRead = readNumber(walk.digits(), 0, 99, minute);
    if (!walk.good() || !dayRead || month < 0 || !yearRead || !hourRead || !minuteRead)
        return false;
    setTime(status, CFTPFileStatus::timeMinute,
            ToTAI(year, month, day) + hour * 3600 + minute * 60 + m_nEpochCorrection);
    return true;
}

// 05-12-03  08:17PM       <DIR>          statements
// 05-02-00  01:26PM                  874 fees.htm
bool CFTPListParser::ParseMSDOSListing(CFTPFileStatus &status, std::string_view line) const
{
    if (!IsMSDOSListing(line))
        return false;
    ListWalk walk(line);
    long long seconds = 0;
    if (!readMSDOSDate(walk, seconds) || !readMSDOSTime(walk, seconds))
        return false;
    const std::string_view token = walk.upTo(' ');
    walk.skip(' ');
    if (!walk.good() || token.empty() || walk.atEnd())
        return false;
    if (token.front() == '<') {
        status.tryCwd = true;
    } else {
        status.sizeType = CFTPFileStatus::sizeBytes;
        status.size = sizeOf(token);
        status.tryRetrieve = true;
    }
    status.name = walk.rest();
    setTime(status, CFTPFileStatus::timeMinute, seconds + m_nEpochCorrection);
    return true;
}

int CFTPListParser::GetMonth(const char *text, size_t length)
{
    if (length != 3)
        return -1;
    for (int month = 0; month < 12; ++month) {
        if (CheckMonth(text, m_Months[month]))
            return month;
    }
    return -1;
}

bool CFTPListParser::CheckMonth(const char *text, const char *month)
{
    for (int i = 0; i < 3; ++i) {
        const bool capital = text[i] >= 'A' && text[i] <= 'Z';
        if ((capital ? text[i] - 'A' + 'a' : text[i]) != month[i])
            return false;
    }
    return true;
}

bool CFTPListParser::GetLong(const char *text, size_t length, long &value)
{
    return readDigits({text, length}, value);
}

long long CFTPListParser::ToTAI(long year, long month, long day)
{
    return Calendar::secondsOf(year, month, day);
}

long long CFTPListParser::GuessTAI(long month, long day)
{
    const long long now = m_Clock() - m_nEpochCorrection;
    if (m_nCurrentYear < 0)
        m_nCurrentYear = GetYear(now);
    long long time = 0;
    for (long year = long(m_nCurrentYear) - 1; year < m_nCurrentYear + 100; ++year) {
        time = ToTAI(year, month, day);
        if (now - time < NotInTheFuture)
            break;
    }
    return time;
}

long CFTPListParser::GetYear(long long seconds)
{
    return Calendar::yearOf(seconds);
}

} // namespace nsFTP
