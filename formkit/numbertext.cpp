// SPDX-License-Identifier: BSD-3-Clause
#include "numbertext_p.h"

#include <algorithm>

NumberText::NumberText(QStringView text, const LocaleSymbols &symbols) : m_symbols(symbols)
{
    for (const QChar c : text) {
        const LocaleSymbols::Kind kind = symbols.kindOf(c);
        if (!LocaleSymbols::isSkipped(kind))
            append(c, kind);
    }
    if (m_shape == Integer)
        m_point = m_text.size();
}

void NumberText::append(QChar c, LocaleSymbols::Kind kind)
{
    const bool isSign = kind == LocaleSymbols::Minus || kind == LocaleSymbols::Plus;
    if (isSign && m_text.isEmpty()) {
        m_sign = 1;
        m_negative = kind == LocaleSymbols::Minus;
    } else if (kind == LocaleSymbols::Point && m_shape == Integer) {
        m_shape = Decimal;
        m_point = m_text.size();
    } else if (kind != LocaleSymbols::Digit && !c.isDigit()) {
        m_shape = NoNumber;
    }
    m_text.append(c);
}

bool NumberText::isReadable() const
{
    const auto isKnown = [this](QChar c) { return m_symbols.digitValue(c) >= 0; };
    const QStringView before = integer();
    const QStringView after = fraction();
    return std::all_of(before.begin(), before.end(), isKnown) &&
           std::all_of(after.begin(), after.end(), isKnown);
}

int NumberText::leadingZeros() const
{
    const QStringView digits = integer();
    int zeros = 0;
    while (zeros + 1 < digits.size() && m_symbols.digitValue(digits.at(zeros)) == 0)
        ++zeros;
    return zeros;
}

QString NumberText::written() const
{
    QString out;
    out.reserve(int(text().size()) * 4 / 3 + 2);
    const auto appendDigit = [&](QChar c) {
        const int value = m_symbols.digitValue(c);
        out += value < 0 ? c : m_symbols.digit(value);
    };
    const QStringView digits = integer().mid(leadingZeros());
    if (m_negative)
        out += m_symbols.minus();
    else if (digits.isEmpty())
        out.append(sign().data(), int(sign().size()));
    const int size = int(digits.size());
    for (int i = 0; i < size; ++i) {
        if (i > 0 && m_symbols.separatorBefore(size - i, size))
            out += m_symbols.group();
        appendDigit(digits.at(i));
    }
    if (m_shape == Decimal) {
        out += m_symbols.point();
        for (const QChar c : fraction())
            appendDigit(c);
    }
    return out;
}

QChar withoutDash(QChar c, const LocaleSymbols &symbols)
{
    constexpr ushort Hyphen = 0x2010, LongDash = 0x2014, Minus = 0x2212;
    const bool isDash = c == QChar(Minus) || (c >= QChar(Hyphen) && c <= QChar(LongDash));
    if (!isDash)
        return c;
    const auto isSign = [&](QChar sign) { return symbols.kindOf(sign) == LocaleSymbols::Minus; };
    const QString &minus = symbols.minus();
    const auto sign = std::find_if(minus.begin(), minus.end(), isSign);
    return sign == minus.end() ? c : *sign;
}

int countUngrouped(QStringView text, const LocaleSymbols &symbols)
{
    return int(std::count_if(text.begin(), text.end(), [&symbols](QChar c) {
        return !LocaleSymbols::isSkipped(symbols.kindOf(c));
    }));
}

int placeAfter(int count, QStringView text, const LocaleSymbols &symbols)
{
    if (count <= 0)
        return 0;
    int pos = 0;
    for (; count > 0 && pos < text.size(); ++pos) {
        if (!LocaleSymbols::isSkipped(symbols.kindOf(text.at(pos))))
            --count;
    }
    while (pos < text.size() && symbols.kindOf(text.at(pos)) == LocaleSymbols::Mark)
        ++pos;
    return pos;
}
