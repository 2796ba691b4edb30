#pragma once

#include "formkit/FtpClient/FTPListParse.h"

#include <algorithm>
#include <string_view>

namespace nsFTP {

constexpr long LastYear = 9999;

inline bool readNumber(std::string_view text, long lowest, long highest, long &value)
{
    return CFTPListParser::GetLong(text.data(), text.size(), value) && value >= lowest &&
           value <= highest;
}

/// -1 when it is no number.
inline long long sizeOf(std::string_view text)
{
    long value = 0;
    return CFTPListParser::GetLong(text.data(), text.size(), value) ? value : -1;
}

inline void setTime(CFTPFileStatus &status, int type, long long seconds)
{
    status.mtimeType = type;
    status.mtime = seconds;
}

/// Walks over the fields of a line. A field that is missing makes the walk fail from there on.
class ListWalk
{
public:
    explicit ListWalk(std::string_view line) : m_rest(line) {}

    bool good() const { return m_good; }
    std::string_view rest() const { return m_rest; }
    bool atEnd() const { return m_rest.empty(); }
    char next() const { return m_rest.empty() ? '\0' : m_rest.front(); }

    void skip(char c)
    {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(c), m_rest.size()));
    }

    /// The text before a delimiter, which is stepped over too.
    std::string_view upTo(char delimiter)
    {
        const size_t end = m_rest.find(delimiter);
        m_good = m_good && end != std::string_view::npos;
        return m_good ? take(end, 1) : std::string_view();
    }

    std::string_view digits()
    {
        size_t end = 0;
        while (end < m_rest.size() && m_rest[end] >= '0' && m_rest[end] <= '9')
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

} // namespace nsFTP
