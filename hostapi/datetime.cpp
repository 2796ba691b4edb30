// SPDX-License-Identifier: BSD-3-Clause
#include "datetime.h"

namespace {

constexpr qint64 FirstDay = 2440588; // 1970-01-01, as Julian days are counted
constexpr qint64 DayLength = 24 * 60 * 60 * 1000;

// Days before the first one count from midnight too.
qint64 dayOf(qint64 msecs)
{
    return msecs >= 0 ? msecs / DayLength : (msecs + 1) / DayLength - 1;
}

bool isDirectionMark(QChar c)
{
    return c == QChar(0x200e) || c == QChar(0x200f) || c == QChar(0x061c);
}

// Some digits take two characters each.
QString inAsciiDigits(const QString &text)
{
    QString ascii;
    ascii.reserve(text.size());
    for (const char32_t code : text.toUcs4()) {
        if (QChar::isDigit(code))
            ascii += QChar('0' + QChar::digitValue(code));
        else
            ascii += QString::fromUcs4(&code, 1);
    }
    return ascii;
}

// The text or format as a keyboard types it: without direction marks, with plain blanks and ASCII
// digits.
QString asTyped(const QString &text)
{
    QString typed;
    for (const QChar c : inAsciiDigits(text)) {
        if (!isDirectionMark(c))
            typed += c.isSpace() ? QChar(QLatin1Char(' ')) : c;
    }
    return typed;
}

// True when the text has an ASCII digit for each letter of the form and equals it in the rest.
// QDateTime does not read these forms: it reads local time and refuses the hours that the local
// clock skips in spring.
bool fits(QStringView text, QStringView form)
{
    if (text.size() != form.size())
        return false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (form.at(i).isLetter() ? c < QLatin1Char('0') || c > QLatin1Char('9') : c != form.at(i))
            return false;
    }
    return true;
}

// The number that digits at a place of the text write; 0 if the text ends before them.
int numberAt(QStringView text, int from, int count)
{
    int number = 0;
    for (int i = from; i < from + count && i < text.size(); ++i)
        number = number * 10 + text.at(i).digitValue();
    return number;
}

QTime timeAt(QStringView text, int from)
{
    return QTime(numberAt(text, from, 2), numberAt(text, from + 3, 2), numberAt(text, from + 6, 2),
                 numberAt(text, from + 9, 3));
}

// Cuts " HH:mm:ss.zzz" off the end and returns that time. An invalid time if the text has another
// end.
QTime takeTime(QString &text)
{
    const int place = text.size() - datetime::timeNoDateFormat().size();
    if (place < 1 || text.at(place - 1) != QLatin1Char(' ') ||
        !fits(QStringView(text).mid(place), datetime::timeNoDateFormat()))
        return {};
    const QTime time = timeAt(text, place);
    text.truncate(place - 1);
    return time;
}

// QDate reads a two-digit year as one of the 1900s.
constexpr int CenturyShift = 100;

// QDate takes year 00 for 1900, which had no leap day, so it refuses 29 February. It accepts that
// day in year 04.
QDate readLeapDayOfYear00(const QString &text, const QString &format)
{
    const int year = text.indexOf(QLatin1String("00"));
    if (year < 0)
        return {};
    const QString other = QString(text).replace(year, 2, QLatin1String("04"));
    const bool leapDay = QLocale::system().toDate(other, format) == QDate(1904, 2, 29);
    return leapDay ? QDate(2000, 2, 29) : QDate();
}

// Puts a number in the place of the longest of `count` names that the text has, and says which
// that is; 0 without one.
template <typename NameOf> int takeName(QString *text, int count, NameOf nameOf)
{
    int found = 0;
    QString longest;
    for (int i = 1; i <= count; ++i) {
        const QString name = asTyped(nameOf(i));
        if (name.size() > longest.size() && text->contains(name)) {
            found = i;
            longest = name;
        }
    }
    if (found > 0)
        text->replace(text->indexOf(longest), longest.size(), QString::number(found));
    return found;
}

// QLocale takes a name that begins with another one for that, and then reads nothing.
QDate readNames(QString text, QString format)
{
    const QLocale system = QLocale::system();
    int day = 0;
    if (format.contains(QLatin1String("dddd"))) {
        day = takeName(&text, 7, [&](int i) { return system.dayName(i); });
        format.replace(QLatin1String("dddd"), QStringLiteral("'%1'").arg(day));
    }
    if (format.contains(QLatin1String("MMMM"))) {
        takeName(&text, 12, [&](int i) { return system.monthName(i); });
        format.replace(QLatin1String("MMMM"), QLatin1String("M"));
    }
    const QDate read = system.toDate(text, format);
    return day == 0 || read.dayOfWeek() == day ? read : QDate();
}

QDate readDate(const QString &text, const QString &format)
{
    // QLocale accepts a plus in front of a number.
    if (text.contains(QLatin1Char('+')))
        return {};
    QDate read = QLocale::system().toDate(text, format);
    if (!read.isValid() && format.contains(QLatin1String("MMMM")))
        read = readNames(text, format);
    if (format.contains(QLatin1String("yyyy")))
        return read;
    return read.isValid() ? read.addYears(CenturyShift) : readLeapDayOfYear00(text, format);
}

} // namespace

datetime::datetime(const QString &systemText)
{
    static const QString forms[] = {
        defaultFormat(),
        QStringLiteral("yyyy-MM-dd HH:mm:ss"),
        QStringLiteral("yyyy.MM.dd"),
        QStringLiteral("yyyy-MM-dd"),
    };
    for (const QString &form : forms) {
        if (fits(systemText, form)) {
            *this = datetime(QDate(numberAt(systemText, 0, 4), numberAt(systemText, 5, 2),
                                   numberAt(systemText, 8, 2)),
                             timeAt(systemText, 11));
            return;
        }
    }
}

datetime::datetime(const QDate &date) : datetime(date, QTime(0, 0)) {}

datetime::datetime(const QDate &date, const QTime &time)
{
    if (date.isValid() && time.isValid())
        m_msecs = (date.toJulianDay() - FirstDay) * DayLength + time.msecsSinceStartOfDay();
}

datetime datetime::now()
{
    const QDateTime now = QDateTime::currentDateTime();
    return datetime(now.date(), now.time());
}

QDate datetime::date() const
{
    return isNull() ? QDate() : QDate::fromJulianDay(FirstDay + dayOf(m_msecs));
}

QTime datetime::time() const
{
    return isNull() ? QTime()
                    : QTime::fromMSecsSinceStartOfDay(int(m_msecs - dayOf(m_msecs) * DayLength));
}

QString datetime::defaultFormat()
{
    return QStringLiteral("yyyy.MM.dd HH:mm:ss.zzz");
}

QString datetime::timeNoDateFormat()
{
    return QStringLiteral("HH:mm:ss.zzz");
}

QString datetime::toString() const
{
    if (isNull())
        return {};
    return QLocale::c().toString(date(), QStringLiteral("yyyy.MM.dd ")) +
           QLocale::c().toString(time(), timeNoDateFormat());
}

QString datetime::toSystemString(bool dateOnly, QLocale::FormatType type) const
{
    if (isNull())
        return {};
    const QLocale system = QLocale::system();
    const QString text = inAsciiDigits(system.toString(date(), system.dateFormat(type)));
    const QString clock = QLocale::c().toString(time(), timeNoDateFormat());
    return dateOnly ? text : text + QLatin1Char(' ') + clock;
}

datetime datetime::fromSystemString(const QString &text, bool dateOnly, QLocale::FormatType type)
{
    QString typed = asTyped(text);
    const QTime time = dateOnly ? QTime(0, 0) : takeTime(typed);
    return datetime(readDate(typed, asTyped(QLocale::system().dateFormat(type))), time);
}

datetime datetime::fromFullYearString(const QString &text, QLocale::FormatType type)
{
    QString format = asTyped(QLocale::system().dateFormat(type));
    if (!format.contains(QLatin1String("yyyy")))
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    return datetime(readDate(asTyped(text), format));
}

datetime datetime::addYears(int years) const
{
    return isNull() ? *this : datetime(date().addYears(years), time());
}
