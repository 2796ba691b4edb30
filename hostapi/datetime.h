// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QDateTime>
#include <QLocale>
#include <QMetaType>
#include <QString>

/// A date and time as a signed 64-bit number of milliseconds since 1970-01-01 00:00. The number 0
/// means null: no date. (So 1970-01-01 00:00 itself cannot be stored.) The date and time on the
/// clock are stored as if they were UTC and read back the same way: no time zone ever shifts them.
///
/// There are two text forms, both in ASCII digits whatever the default locale is:
/// - the system form, in which values are stored and exchanged: "yyyy.MM.dd HH:mm:ss.zzz";
/// - the locale form, which people read and type: the date format of QLocale::system(), with a
///   space and "HH:mm:ss.zzz" after it where the time is wanted.
class HOSTAPI_EXPORT datetime
{
public:
    constexpr datetime() = default;
    /// Reads "yyyy.MM.dd HH:mm:ss.zzz", "yyyy-MM-dd HH:mm:ss", "yyyy.MM.dd" or "yyyy-MM-dd".
    /// Any other text gives null, and so does a date that the calendar does not have.
    explicit datetime(const QString &systemText);
    /// Midnight of the date; null for an invalid date.
    explicit datetime(const QDate &date);
    /// Null when either part is invalid.
    datetime(const QDate &date, const QTime &time);
    static constexpr datetime fromMSecs(qint64 msecs) { return datetime(msecs, 0); }
    /// The local wall clock.
    static datetime now();

    /// True when there is no date.
    bool isNull() const { return m_msecs == 0; }
    /// Milliseconds since 1970-01-01 00:00; 0 for null.
    qint64 msecs() const { return m_msecs; }
    /// Date and time of day; invalid for null.
    QDate date() const;
    QTime time() const;

    /// The formats of the system form, and of its time alone, for QDateTime::toString().
    static QString defaultFormat();
    static QString timeNoDateFormat();

    /// The system form, empty for null. A date outside the years 1 to 9999 is written, but its text
    /// cannot be read again.
    QString toString() const;
    /// The locale form, empty for null.
    QString toSystemString(bool dateOnly, QLocale::FormatType type) const;
    /// Reads the locale form; null for any other text. Native digits are read too. Direction marks,
    /// which no keyboard has, may be missing. If the format has a two-digit year, every date lies
    /// in 2000 to 2099, on purpose also "29.02.00" and "01.01.70". Hours that the local clock skips
    /// in spring are read like any other.
    static datetime fromSystemString(const QString &text, bool dateOnly, QLocale::FormatType type);
    /// Reads the locale form of a date with four digits for the year, also if the format has two;
    /// null for any other text.
    static datetime fromFullYearString(const QString &text, QLocale::FormatType type);

    /// The same day of another year; 28 February in place of a 29 February that the year lacks.
    /// Null stays null.
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
