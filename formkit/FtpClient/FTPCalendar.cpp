// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPCalendar_p.h"

#include <algorithm>

namespace nsFTP::Calendar {

namespace {

constexpr long long SecondsPerDay = 86400;
constexpr long long FirstOfMarch2000 = 951868800;
constexpr long DaysIn4Years = 1461;
constexpr long DaysIn100Years = 36524;
constexpr long DaysIn400Years = 146097;

} // namespace

long long secondsOf(long year, long month, long day)
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

long yearOf(long long seconds)
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

long daysInMonth(long year, long month)
{
    const long long next = month == 11 ? secondsOf(year + 1, 0, 1) : secondsOf(year, month + 1, 1);
    return long((next - secondsOf(year, month, 1)) / SecondsPerDay);
}

} // namespace nsFTP::Calendar
