#include "datetime.h"

namespace {

bool isDirectionMark(QChar c)
{
    return c == QChar(0x200e) || c == QChar(0x200f) || c == QChar(0x061c);
}

// What a keyboard gives for the text or format: no direction marks, plain blanks, ASCII
// digits.
QString asTyped(const QString &text)
{
    QString typed;
    typed.reserve(text.size());
    for (const QChar c : text) {
        if (isDirectionMark(c))
            continue;
        if (c.digitValue() >= 0)
            typed += QChar('0' + c.digitValue());
        else
            typed += c.isSpace() ? QChar(QLatin1Char(' ')) : c;
    }
    return typed;
}

QString inAsciiDigits(QString text)
{
    for (QChar &c : text) {
        if (c.digitValue() >= 0)
            c = QChar('0' + c.digitValue());
    }
    return text;
}

QString localeFormat(bool dateOnly, QLocale::FormatType type)
{
    QString format = QLocale::system().dateFormat(type);
    if (!dateOnly)
        format += QLatin1Char(' ') + datetime::timeNoDateFormat();
    return format;
}

// QDateTime reads a two-digit year as one of the 1900s, among which there is no leap day for
// year 00.
constexpr int CenturyShift = 100;

QDateTime readLeapDayOfYear00(const QString &text, const QString &format)
{
    const QDateTime time = QLocale::c().toDateTime(text.right(datetime::timeNoDateFormat().size()),
                                                   datetime::timeNoDateFormat());
    for (const QTime &candidate : {QTime(0, 0), time.time()}) {
        const QDateTime leapDay(QDate(2000, 2, 29), candidate, Qt::UTC);
        if (candidate.isValid() && asTyped(QLocale::system().toString(leapDay, format)) == text)
            return leapDay;
    }
    return {};
}

} // namespace

datetime::datetime(const QDateTime &dateTime)
{
    if (dateTime.isValid())
        m_msecs = QDateTime(dateTime.date(), dateTime.time(), Qt::UTC).toMSecsSinceEpoch();
}

datetime::datetime(const QString &systemText)
{
    static const QString formats[] = {
        defaultFormat(),
        QStringLiteral("yyyy-MM-dd HH:mm:ss"),
        QStringLiteral("yyyy.MM.dd"),
        QStringLiteral("yyyy-MM-dd"),
    };
    for (const QString &format : formats) {
        const QDateTime read = QLocale::c().toDateTime(systemText, format);
        if (read.isValid()) {
            *this = datetime(read);
            return;
        }
    }
}

datetime::datetime(const QDate &date) : datetime(date, QTime(0, 0)) {}

datetime::datetime(const QDate &date, const QTime &time)
    : datetime(date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime())
{
}

datetime datetime::now()
{
    return datetime(QDateTime::currentDateTime());
}

QDateTime datetime::toUtc() const
{
    return isNull() ? QDateTime() : QDateTime::fromMSecsSinceEpoch(m_msecs, Qt::UTC);
}

QDate datetime::date() const
{
    return toUtc().date();
}

QTime datetime::time() const
{
    return toUtc().time();
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
    return isNull() ? QString() : QLocale::c().toString(toUtc(), defaultFormat());
}

QString datetime::toSystemString(bool dateOnly, QLocale::FormatType type) const
{
    if (isNull())
        return {};
    return inAsciiDigits(QLocale::system().toString(toUtc(), localeFormat(dateOnly, type)));
}

datetime datetime::fromSystemString(const QString &text, bool dateOnly, QLocale::FormatType type)
{
    const QString format = asTyped(localeFormat(dateOnly, type));
    const QString typed = asTyped(text);
    const QDateTime read = QLocale::system().toDateTime(typed, format);
    if (format.contains(QLatin1String("yyyy")))
        return datetime(read);
    if (!read.isValid())
        return datetime(readLeapDayOfYear00(typed, format));
    return datetime(read.date().addYears(CenturyShift), read.time());
}

datetime datetime::addYears(int years) const
{
    return isNull() ? *this : datetime(date().addYears(years), time());
}
