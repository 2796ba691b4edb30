// SPDX-License-Identifier: BSD-3-Clause
#include "localesymbols.h"

#include <QStringList>

namespace {

bool isBlank(QChar c)
{
    switch (c.unicode()) {
    case 0x0020:
    case 0x00a0:
    case 0x2009:
    case 0x202f:
        return true;
    default:
        return false;
    }
}

bool isApostrophe(QChar c)
{
    return c == QLatin1Char('\'') || c == QChar(0x2019);
}

// The sign itself: some locales have direction marks in front of it.
QChar lastOf(const QString &sign, char otherwise)
{
    return sign.isEmpty() ? QLatin1Char(otherwise) : sign.back();
}

} // namespace

LocaleSymbols::LocaleSymbols(const QLocale &locale)
    : m_point(lastOf(QString(locale.decimalPoint()), '.'))
    , m_group(lastOf(QString(locale.groupSeparator()), ','))
    , m_minus(QString(locale.negativeSign()))
    , m_minusSign(lastOf(m_minus, '-'))
    , m_plusSign(lastOf(QString(locale.positiveSign()), '+'))
    , m_zero(lastOf(QString(locale.zeroDigit()), '0').unicode())
{
    QLocale grouping(locale);
    grouping.setNumberOptions(QLocale::DefaultNumberOptions);
    const QStringList groups = grouping.toString(qlonglong(1111111111111111111)).split(m_group);
    if (groups.size() > 1) {
        m_primary = groups.last().size();
        m_secondary = groups.at(groups.size() - 2).size();
    }
    for (size_t code = 0; code < m_asciiKinds.size(); ++code)
        m_asciiKinds[code] = readKindOf(QChar(ushort(code)));
}

bool LocaleSymbols::isGroup(QChar c) const
{
    return c == m_group || (isBlank(c) && isBlank(m_group)) ||
           (isApostrophe(c) && isApostrophe(m_group));
}

LocaleSymbols::Kind LocaleSymbols::readKindOf(QChar c) const
{
    if (digitValue(c) >= 0)
        return Digit;
    if (c == m_point)
        return Point;
    if (isGroup(c))
        return Group;
    if (c == m_minusSign || c == QLatin1Char('-'))
        return Minus;
    if (c == m_plusSign || c == QLatin1Char('+'))
        return Plus;
    return Other;
}

QString LocaleSymbols::grouped(const QString &digits) const
{
    QString text;
    text.reserve(digits.size() * 4 / 3 + 1);
    for (int i = 0; i < digits.size(); ++i) {
        if (i > 0 && separatorBefore(digits.size() - i))
            text += m_group;
        text += digits.at(i);
    }
    return text;
}
