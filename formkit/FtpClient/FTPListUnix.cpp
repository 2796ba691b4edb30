#include "formkit/FtpClient/FTPListParse.h"
#include "formkit/FtpClient/FTPListWalk_p.h"

namespace nsFTP {

namespace {

// What stands in the line after the date, without what is not the name.
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

    enum { Permissions = 1, Links, Owner, GroupOrSize, Month, Day, YearOrTime, Name };
    int state = Permissions;
    std::string_view month;
    std::string_view day;
    long long size = -1;
    ListWalk walk(line);
    while (state != Name) {
        walk.skip(' ');
        const std::string_view token = walk.upTo(' ');
        if (!walk.good())
            return false;
        switch (state++) {
        case Permissions:
            status.attributes = token;
            break;
        case Links:
            status.links = token;
            if (token.size() == 6 && token.front() == 'f')
                state = GroupOrSize;
            break;
        case Owner:
            status.owner = token;
            break;
        case GroupOrSize:
            size = sizeOf(token);
            if (size < 0)
                status.group = token;
            break;
        case Month:
            month = token;
            if (GetMonth(token.data(), token.size()) < 0) {
                size = sizeOf(token);
                state = Month;
            }
            break;
        case Day:
            day = token;
            break;
        default:
            if (!readDate(month, day, token, status))
                return false;
        }
    }
    status.sizeType = CFTPFileStatus::sizeBytes;
    status.size = size;
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
