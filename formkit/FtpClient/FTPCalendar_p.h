// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// The calendar of all years, without the system's limits. Months run from 0 to 11, days from 1;
/// times are seconds since 1970-01-01.
namespace nsFTP::Calendar {

/// A date at 00:00. A day past the month's end runs into the next month.
long long secondsOf(long year, long month, long day);
long yearOf(long long seconds);
long daysInMonth(long year, long month);

} // namespace nsFTP::Calendar
