#include "formkit/FtpClient/FTPListParse.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <tuple>

namespace nsFTP {

namespace {

constexpr long long SecondsPerDay = 86400;
constexpr long long FirstOfMarch2000 = 951868800;
constexpr long DaysIn4Years = 1461;
constexpr long DaysIn100Years = 36524;
constexpr long DaysIn400Years = 146097;
constexpr long long NotInTheFuture = 30240000; // 350 days
constexpr long LastYear = 9999;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool number(std::string_view text, long &value)
{
    return CFTPListParser::GetLong(text.data(), text.size(), value);
}

bool number(std::string_view text, long lowest, long highest, long &value)
{
    return number(text, value) && value >= lowest && value <= highest;
}

long long sizeOf(std::string_view text)
{
    long value = 0;
    return number(text, value) ? value : -1;
}

// Walks over the fields of a line. A field that is missing makes the walk fail from there on.
class Walk
{
public:
    explicit Walk(std::string_view line) : m_rest(line) {}

    bool good() const { return m_good; }
    std::string_view rest() const { return m_rest; }
    bool atEnd() const { return m_rest.empty(); }
    char next() const { return m_rest.empty() ? '\0' : m_rest.front(); }

    void skip(char c)
    {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(c), m_rest.size()));
    }

    // The text before a delimiter, which is stepped over too.
    std::string_view upTo(char delimiter)
    {
        const size_t end = m_rest.find(delimiter);
        m_good = m_good && end != std::string_view::npos;
        return m_good ? take(end, 1) : std::string_view();
    }

    std::string_view digits()
    {
        size_t end = 0;
        while (end < m_rest.size() && isDigit(m_rest[end]))
            ++end;
        return take(end, 0);
    }

    void step() { take(m_rest.empty() ? 0 : 1, 0); }

private:
    std::string_view take(size_t length, size_t delimiter)
    {
        const std::string_view taken = m_rest.substr(0, length);
        m_rest.remove_prefix(length + delimiter);
        return taken;
    }

    std::string_view m_rest;
    bool m_good = true;
};

void setTime(CFTPFileStatus &status, int type, long long seconds)
{
    status.mtimeType = type;
    status.mtime = seconds;
}

} // namespace

const char *const CFTPListParser::m_Months[12] = {"jan", "feb", "mar", "apr", "may", "jun",
                                                  "jul", "aug", "sep", "oct", "nov", "dec"};

void CFTPFileStatus::Reset()
{
    // Cleared in place: strings keep their memory for the next line.
    for (std::string *text : {&name, &path, &attributes, &owner, &group, &links, &id})
        text->clear();
    tryCwd = false;
    tryRetrieve = false;
    sizeType = sizeUnknown;
    size = -1;
    mtimeType = timeUnknown;
    mtime = 0;
    idType = idUnknown;
}

bool CFTPFileStatus::operator==(const CFTPFileStatus &other) const
{
    const auto fields = [](const CFTPFileStatus &s) {
        return std::tie(s.name, s.path, s.tryCwd, s.tryRetrieve, s.sizeType, s.size, s.mtimeType,
                        s.mtime, s.attributes, s.owner, s.group, s.links, s.idType, s.id);
    };
    return fields(*this) == fields(other);
}

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
    Walk facts(line.substr(1, tab - 1));
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
            if (number(value, seconds))
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
    Walk walk(line);
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
    std::string_view name = walk.rest();
    const bool oneLetterKind = line.size() > 1 && (line[1] == ' ' || line[1] == '[');
    if (oneLetterKind && name.substr(0, 3) == "   ")
        name.remove_prefix(3);
    if (kind == 'l')
        name = name.substr(0, name.find(" -> "));
    status.name = name;
    return true;
}

bool CFTPListParser::readDate(std::string_view month, std::string_view day,
                              std::string_view yearOrTime, CFTPFileStatus &status)
{
    const long monthNumber = GetMonth(month.data(), month.size());
    long dayNumber = 0;
    if (!number(day, 1, 31, dayNumber) || yearOrTime.size() < 4)
        return false;
    const size_t colon = yearOrTime.size() - 3;
    if (yearOrTime.size() <= 5 && yearOrTime[colon] == ':') {
        long hour = 0;
        long minute = 0;
        if (!number(yearOrTime.substr(0, colon), hour) ||
            !number(yearOrTime.substr(colon + 1), minute))
            return false;
        setTime(status, CFTPFileStatus::timeMinute,
                GuessTAI(monthNumber, dayNumber) + hour * 3600 + minute * 60 + m_nEpochCorrection);
        return true;
    }
    long year = 0;
    if (!number(yearOrTime, 0, LastYear, year))
        return false;
    setTime(status, CFTPFileStatus::timeDay,
            ToTAI(year, monthNumber, dayNumber) + m_nEpochCorrection);
    return true;
}

// NOTES.TXT;3         4 17-OCT-2001 08:25 [CLERK] (RWED,RWED,RE,RE)
bool CFTPListParser::ParseMultiNetListing(CFTPFileStatus &status, std::string_view line) const
{
    Walk walk(line);
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
    const bool dayRead = number(walk.upTo('-'), 1, 31, day);
    const std::string_view monthName = walk.upTo('-');
    const long month = GetMonth(monthName.data(), monthName.size());
    const bool yearRead = number(walk.upTo(' '), 0, LastYear, year);
    walk.skip(' ');
    const bool hourRead = number(walk.upTo(':'), 0, 99, hour);
    const bool minuteRead = number(walk.digits(), 0, 99, minute);
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
    Walk walk(line);
    long month = 0;
    long day = 0;
    long year = 0;
    long hour = 0;
    long minute = 0;
    const bool monthRead = number(walk.upTo('-'), 1, 12, month);
    walk.skip('-');
    const bool dayRead = number(walk.upTo('-'), 1, 31, day);
    walk.skip('-');
    const bool yearRead = number(walk.upTo(' '), 0, LastYear, year);
    walk.skip(' ');
    const bool hourRead = number(walk.upTo(':'), 0, 99, hour);
    const bool minuteRead = number(walk.digits(), 0, 99, minute);
    if (!monthRead || !dayRead || !yearRead || !hourRead || !minuteRead)
        return false;
    if (year < 50)
        year += 2000;
    if (year < 1000)
        year += 1900;
    const char half = walk.next();
    if (half == 'A' || half == 'P') {
        hour = (hour == 12 ? 0 : hour) + (half == 'P' ? 12 : 0);
        walk.step();
        if (walk.next() == 'M')
            walk.step();
    }
    if (walk.next() != ' ')
        return false;
    walk.skip(' ');
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
    setTime(status, CFTPFileStatus::timeMinute,
            ToTAI(year, month - 1, day) + hour * 3600 + minute * 60 + m_nEpochCorrection);
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
    constexpr long Largest = std::numeric_limits<long>::max();
    long result = 0;
    for (size_t i = 0; i < length; ++i) {
        if (!isDigit(text[i]))
            return false;
        const long digit = text[i] - '0';
        // Eighteen digits always fit.
        if (i >= 18 && result > (Largest - digit) / 10)
            return false;
        result = result * 10 + digit;
    }
    if (length > 0)
        value = result;
    return length > 0;
}

long long CFTPListParser::ToTAI(long year, long month, long day)
{
    // Years begin in March here, so that a leap day is a year's last.
    const long shiftedMonth = month >= 2 ? month - 2 : month + 10;
    long years = month >= 2 ? year - 2000 : year - 2001;
    long days = (306 * shiftedMonth + 10 * day - 5) / 10;
    long centuries4 = years / 400;
    years %= 400;
    if (years < 0) {
        years += 400;
        --centuries4;
    }
    days += centuries4 * DaysIn400Years;
    days += years / 100 * DaysIn100Years;
    years %= 100;
    days += years / 4 * DaysIn4Years + years % 4 * 365;
    return days * SecondsPerDay + FirstOfMarch2000;
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
    long long days = (seconds - FirstOfMarch2000) / SecondsPerDay;
    if ((seconds - FirstOfMarch2000) % SecondsPerDay < 0)
        --days;
    long long year = 2000 + days / DaysIn400Years * 400;
    days %= DaysIn400Years;
    if (days < 0) {
        days += DaysIn400Years;
        year -= 400;
    }
    // The last day of a long cycle is a leap day that the shorter ones do not count.
    const long long centuries = std::min(days / DaysIn100Years, 3LL);
    days -= centuries * DaysIn100Years;
    const long long leaps = days / DaysIn4Years;
    days -= leaps * DaysIn4Years;
    const long long years = std::min(days / 365, 3LL);
    days -= years * 365;
    year += centuries * 100 + leaps * 4 + years;
    // January begins 306 days after March.
    return long(days >= 306 ? year + 1 : year);
}

} // namespace nsFTP
