// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPListParse.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace nsFTP {

constexpr long LastYear = 9999;

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// What CFTPListParser::GetLong() does, inline: each line has several numbers.
inline bool readDigits(std::string_view text, long &value)
{
    constexpr long Largest = std::numeric_limits<long>::max();
    long result = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (!isDigit(text[i]))
            return false;
        const long digit = text[i] - '0';
        /// Eighteen digits always fit.
        if (i >= 18 && result > (Largest - digit) / 10)
            return false;
        result = result * 10 + digit;
    }
    if (!text.empty())
        value = result;
    return !text.empty();
}

inline bool readNumber(std::string_view text, long lowest, long highest, long &value)
{
    return readDigits(text, value) && value >= lowest && value <= highest;
}

/// -1 when it is no number.
inline long long sizeOf(std::string_view text)
{
    long value = 0;
    return readDigits(text, value) ? value : -1;
}

inline void setTime(CFTPFileStatus &status, int type, long long seconds)
{
    status.mtimeType = type;
    status.mtime = seconds;
}

/// Reads the fields of a line one after the other. From the first missing field on, good() is
/// false.
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

    /// The text before a delimiter; goes on after that.
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
