// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPListParse.h"
#include "formkit/FtpClient/FTPListWalk_p.h"

namespace nsFTP {

namespace {

enum Column { Permissions, Links, Owner, GroupOrSize, Month, Day, YearOrTime, Name };

struct Date
{
    std::string_view month;
    std::string_view day;
    std::string_view yearOrTime;
};

// Stores the token of one column; gives the column of the next token.
Column take(std::string_view token, Column column, CFTPFileStatus &status, Date &date)
{
    switch (column) {
    case Permissions:
        status.attributes = token;
        break;
    case Links:
        status.links = token;
        if (token.size() == 6 && token.front() == 'f') // "folder": no owner follows
            return GroupOrSize;
        break;
    case Owner:
        status.owner = token;
        break;
    case GroupOrSize:
        status.size = sizeOf(token);
        if (status.size < 0)
            status.group = token;
        break;
    case Month:
        date.month = token;
        if (CFTPListParser::GetMonth(token.data(), token.size()) < 0) {
            status.size = sizeOf(token);
            return Month;
        }
        break;
    case Day:
        date.day = token;
        break;
    default:
        date.yearOrTime = token;
    }
    return Column(column + 1);
}

// The name in what follows the date. Three blanks before it belong to the form of the line when the
// kind is one letter, and a link's target is no part of it.
std::string_view nameOf(std::string_view line, std::string_view rest)
{
    const bool oneLetterKind = line.size() > 1 && (line[1] == ' ' || line[1] == '[');
    if (oneLetterKind && rest.substr(0, 3) == "   ")
        rest.remove_prefix(3);
    return line.front() == 'l' ? rest.substr(0, rest.find(" -> ")) : rest;
}

} // namespace

// -rw-r--r--   1 clerk    desk         731 Feb 11 07:42 NOTES
// drwxrwxr-x               folder        6 Jul 19  2007 trades
// -------r--         412   870033   870445 Aug 30  2006 Blotter.dat
// d [R----F--] backoffice            768       Jan 22 16:08    ledger
bool CFTPListParser::ParseUNIXStyleListing(CFTPFileStatus &status, std::string_view line)
{
    if (!IsUNIXStyleListing(line))
        return false;
    const char kind = line.front();
    status.tryCwd = kind == 'd' || kind == 'l';
    status.tryRetrieve = kind == '-' || kind == 'l';

    Column column = Permissions;
    Date date;
    ListWalk walk(line);
    while (column != Name) {
        walk.skip(' ');
        const std::string_view token = walk.upTo(' ');
        if (!walk.good())
            return false;
        column = take(token, column, status, date);
    }
    if (!readDate(date.month, date.day, date.yearOrTime, status))
        return false;
    status.sizeType = CFTPFileStatus::sizeBytes;
    status.name = nameOf(line, walk.rest());
    return true;
}

bool CFTPListParser::readDate(std::string_view month, std::string_view day,
                              std::string_view yearOrTime, CFTPFileStatus &status)
{
    const long monthNumber = GetMonth(month.data(), month.size());
    long dayNumber = 0;
    if (!readNumber(day, 1, 31, dayNumber) || yearOrTime.size() < 4)
        return false;
    const size_t colon = yearOrTime.size() - 3;
    if (yearOrTime.size() <= 5 && yearOrTime[colon] == ':') {
        long hour = 0;
        long minute = 0;
        if (!readNumber(yearOrTime.substr(0, colon), 0, 99, hour) ||
            !readNumber(yearOrTime.substr(colon + 1), 0, 99, minute))
            return false;
        setTime(status, CFTPFileStatus::timeMinute,
                GuessTAI(monthNumber, dayNumber) + hour * 3600 + minute * 60 + m_nEpochCorrection);
        return true;
    }
    long year = 0;
    if (!readNumber(yearOrTime, 0, LastYear, year))
        return false;
    setTime(status, CFTPFileStatus::timeDay,
            ToTAI(year, monthNumber, dayNumber) + m_nEpochCorrection);
    return true;
}

} // namespace nsFTP
