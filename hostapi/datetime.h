// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QDateTime>
#include <QLocale>
#include <QMetaType>
#include <QString>

/// A date and time: a signed 64-bit count of milliseconds since 1970-01-01 00:00, of which 0
/// means null (so that very moment cannot be stood for). Wall-clock digits are stored as if
/// they were UTC and read back the same way; no time zone ever shifts them.
///
/// Two text forms, both in ASCII digits whatever the default locale is:
/// - the system form, in which values are stored and exchanged: "yyyy.MM.dd HH:mm:ss.zzz";
/// - the locale form, which people read and type: the date format of QLocale::system(), and
///   behind it, where the time is wanted, a space and "HH:mm:ss.zzz".
class HOSTAPI_EXPORT datetime
{
public:
    constexpr datetime() = default;
    /// Reads "yyyy.MM.dd HH:mm:ss.zzz", "yyyy-MM-dd HH:mm:ss", "yyyy.MM.dd" or "yyyy-MM-dd".
    /// Any other text, and a date that the calendar does not have, gives null.
    explicit datetime(const QString &systemText);
    /// Midnight of the date; null for an invalid date.
    explicit datetime(const QDate &date);
    /// Null when either part is invalid.
    datetime(const QDate &date, const QTime &time);
    static constexpr datetime fromMSecs(qint64 msecs) { return datetime(msecs, 0); }
    /// The local wall clock.
    static datetime now();

    /// Null is what no text, and no valid date, gives.
    bool isNull() const { return m_msecs == 0; }
    /// Milliseconds since 1970-01-01 00:00; 0 for null.
    qint64 msecs() const { return m_msecs; }
    /// The parts as they are shown; invalid for null.
    QDate date() const;
    QTime time() const;

    /// The system form, and its time alone, as QDateTime::toString() takes a format.
    static QString defaultFormat();
    static QString timeNoDateFormat();

    /// The system form, empty for null. What lies outside the years 1 to 9999 is written, but
    /// does not read back.
    QString toString() const;
    /// The locale form, empty for null.
    QString toSystemString(bool dateOnly, QLocale::FormatType type) const;
    /// Reads the locale form; null for a text that is none. Native digits count as well, and
    /// direction marks, which no keyboard has, need not be typed. Under a format with a
    /// two-digit year every date lies in 2000 to 2099, on purpose "29.02.00" and "01.01.70" too.
    /// Hours that the local clock skips in spring are read like any other.
    static datetime fromSystemString(const QString &text, bool dateOnly, QLocale::FormatType type);
    /// Reads the locale form of a date with four digits for the year, also where the format has
    /// two; null for a text that is none.
    static datetime fromFullYearString(const QString &text, QLocale::FormatType type);

    /// The same day of another year, 28 February for a 29th that it lacks. Null stays null.
    datetime addYears(int years) const;

    bool operator==(const datetime &other) const { return m_msecs == other.m_msecs; }
    bool operator!=(const datetime &other) const { return m_msecs != other.m_msecs; }
    bool operator<(const datetime &other) const { return m_msecs < other.m_msecs; }

private:
    constexpr datetime(qint64 msecs, int) : m_msecs(msecs) {}

    qint64 m_msecs = 0;
};

Q_DECLARE_TYPEINFO(datetime, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(datetime)
