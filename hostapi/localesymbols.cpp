// SPDX-License-Identifier: BSD-3-Clause
#include "localesymbols.h"

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

// The sign itself, without the direction marks that a locale may have beside it.
QChar visibleOf(const QString &sign, char otherwise)
{
    for (const QChar c : sign) {
        if (c.category() != QChar::Other_Format)
            return c;
    }
    return QLatin1Char(otherwise);
}

// The locale's zero if it is one character.
QChar zeroOf(const QLocale &locale)
{
    const QString zero(locale.zeroDigit());
    return zero.size() == 1 ? zero.front() : QLatin1Char('0');
}

quint32 separatorsIn(const QString &integer, QChar group)
{
    quint32 separators = 0;
    int digits = 0;
    for (int i = int(integer.size()) - 1; i >= 0; --i) {
        if (integer.at(i) == group)
            separators |= 1u << digits;
        else if (!integer.at(i).isHighSurrogate())
            ++digits;
    }
    return separators;
}

} // namespace

LocaleSymbols::LocaleSymbols(const QLocale &locale)
    : m_point(visibleOf(QString(locale.decimalPoint()), '.'))
    , m_group(visibleOf(QString(locale.groupSeparator()), ','))
    , m_minus(QString(locale.negativeSign()))
    , m_minusSign(visibleOf(m_minus, '-'))
    , m_plusSign(visibleOf(QString(locale.positiveSign()), '+'))
    , m_zero(zeroOf(locale).unicode())
{
    QLocale grouping(locale);
    grouping.setNumberOptions(QLocale::DefaultNumberOptions);
    qulonglong power = 1;
    for (size_t digits = 1; digits < m_separators.size(); ++digits, power *= 10)
        m_separators[digits] = separatorsIn(grouping.toString(power), m_group);
    const quint32 most = m_separators.back();
    while (most != 0 && !(most >> m_lastGroup & 1))
        ++m_lastGroup;
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
    return m_minus.contains(c) ? Mark : Other;
}

QString LocaleSymbols::grouped(const QString &digits) const
{
    QString text;
    text.reserve(digits.size() * 4 / 3 + 1);
    const int size = int(digits.size());
    for (int i = 0; i < size; ++i) {
        if (i > 0 && separatorBefore(size - i, size))
            text += m_group;
        text += digits.at(i);
    }
    return text;
}
