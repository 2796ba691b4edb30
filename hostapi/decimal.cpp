// SPDX-License-Identifier: BSD-3-Clause
#include "decimal.h"

#include "exception.h"
#include "localesymbols.h"

#include <limits>
#include <optional>

namespace {

constexpr qint64 Largest = std::numeric_limits<qint64>::max();
constexpr qint64 Smallest = std::numeric_limits<qint64>::min();

qint64 powerOfTen(int exponent)
{
    qint64 power = 1;
    while (exponent-- > 0)
        power *= 10;
    return power;
}

[[noreturn]] void failOverflow()
{
    throw Exception(QStringLiteral("Decimal overflow."));
}

[[noreturn]] void failRead(QStringView text)
{
    throw Exception(QStringLiteral("Can't convert from '%1'' to %2")
                        .arg(text.toString(), QStringLiteral("decimal")));
}

void checkScale(int scale)
{
    if (scale < 0 || scale > decimal::MaxScale)
        throw Exception(QStringLiteral("Decimal scale %1 is outside 0 to %2.")
                            .arg(scale)
                            .arg(decimal::MaxScale));
}

qint64 multiplied(qint64 word, qint64 factor)
{
    if (word > Largest / factor || word < Smallest / factor)
        failOverflow();
    return word * factor;
}

// The system form's characters; unlike a locale it has no group separator.
struct SystemSymbols
{
    LocaleSymbols::Kind kindOf(QChar c) const
    {
        if (digitValue(c) >= 0)
            return LocaleSymbols::Digit;
        switch (c.unicode()) {
        case '.':
            return LocaleSymbols::Point;
        case '-':
            return LocaleSymbols::Minus;
        case '+':
            return LocaleSymbols::Plus;
        default:
            return LocaleSymbols::Other;
        }
    }
    int digitValue(QChar c) const
    {
        const ushort code = c.unicode();
        return code >= '0' && code <= '9' ? code - '0' : -1;
    }
};

// Reads sign, digits and point; nothing if the text is no number or does not fit. The digits are
// added up below zero, as the smallest number has no positive counterpart.
template <typename Symbols>
std::optional<decimal> readNumber(QStringView text, const Symbols &symbols)
{
    bool negative = false;
    bool signMayFollow = true;
    bool anyDigit = false;
    bool afterPoint = false;
    qint64 word = 0;
    short scale = 0;
    for (int i = 0; i < text.size(); ++i) {
        const LocaleSymbols::Kind kind = symbols.kindOf(text.at(i));
        switch (kind) {
        case LocaleSymbols::Digit: {
            const int digit = symbols.digitValue(text.at(i));
            if (word < (Smallest + digit) / 10 || (afterPoint && ++scale > decimal::MaxScale))
                return {};
            word = word * 10 - digit;
            anyDigit = true;
            break;
        }
        case LocaleSymbols::Point:
            if (afterPoint)
                return {};
            afterPoint = true;
            break;
        case LocaleSymbols::Group:
        case LocaleSymbols::Mark:
            break;
        case LocaleSymbols::Minus:
            negative = true;
            [[fallthrough]];
        case LocaleSymbols::Plus:
            if (!signMayFollow)
                return {};
            break;
        case LocaleSymbols::Other:
            return {};
        }
        signMayFollow = signMayFollow && LocaleSymbols::isSkipped(kind);
    }
    if (!anyDigit || (!negative && word == Smallest))
        return {};
    return decimal(negative ? word : -word, scale);
}

// The digits of the word without its sign, with at least one before the point.
QString digitsOf(qint64 word, int scale)
{
    const quint64 magnitude = word < 0 ? 0 - quint64(word) : quint64(word);
    return QString::number(magnitude).rightJustified(scale + 1, QLatin1Char('0'));
}

} // namespace

const decimal decimal::zero;

decimal::decimal(qint64 word, short scale) : m_word(word), m_scale(scale)
{
    checkScale(scale);
}

decimal::decimal(QStringView systemText)
{
    const std::optional<decimal> number = readNumber(systemText, SystemSymbols());
    if (!number)
        failRead(systemText);
    *this = *number;
}

bool decimal::canConvert(QStringView systemText, bool emptyToo)
{
    return systemText.isEmpty() ? emptyToo : readNumber(systemText, SystemSymbols()).has_value();
}

bool decimal::canConvert(QStringView localeText, bool emptyToo, const LocaleSymbols &symbols)
{
    return localeText.isEmpty() ? emptyToo : readNumber(localeText, symbols).has_value();
}

decimal decimal::fromLocaleString(const QString &text, const QLocale &locale, int scale)
{
    return fromLocaleString(text, LocaleSymbols(locale), scale);
}

decimal decimal::fromLocaleString(QStringView text, const LocaleSymbols &symbols, int scale)
{
    checkScale(scale);
    std::optional<decimal> number = readNumber(text, symbols);
    if (!number)
        failRead(text);
    number->setScale(short(scale));
    return *number;
}

QString decimal::toString() const
{
    QString text = digitsOf(m_word, m_scale);
    if (m_scale > 0)
        text.insert(text.size() - m_scale, QLatin1Char('.'));
    if (m_word < 0)
        text.prepend(QLatin1Char('-'));
    return text;
}

QString decimal::toSystemString(const QLocale &locale) const
{
    return toSystemString(LocaleSymbols(locale));
}

QString decimal::toSystemString(const LocaleSymbols &symbols) const
{
    QString digits = digitsOf(m_word, m_scale);
    for (QChar &c : digits)
        c = symbols.digit(c.digitValue());
    QString text = symbols.grouped(digits.left(digits.size() - m_scale));
    if (m_scale > 0)
        text += symbols.point() + digits.right(m_scale);
    if (m_word < 0)
        text.prepend(symbols.minus());
    return text;
}

double decimal::toDouble() const
{
    return double(m_word) / double(powerOfTen(m_scale));
}

void decimal::setScale(short scale)
{
    checkScale(scale);
    if (scale > m_scale) {
        m_word = multiplied(m_word, powerOfTen(scale - m_scale));
    } else if (scale < m_scale) {
        const qint64 divisor = powerOfTen(m_scale - scale);
        const qint64 rest = m_word % divisor;
        m_word /= divisor;
        if (rest >= divisor - divisor / 2)
            ++m_word;
        else if (rest <= divisor / 2 - divisor)
            --m_word;
    }
    m_scale = scale;
}

int decimal::compare(const decimal &other) const
{
    if (m_scale == other.m_scale)
        return m_word < other.m_word ? -1 : m_word > other.m_word ? 1 : 0;
    const qint64 power = powerOfTen(m_scale);
    const qint64 otherPower = powerOfTen(other.m_scale);
    const qint64 whole = m_word / power;
    const qint64 otherWhole = other.m_word / otherPower;
    if (whole != otherWhole)
        return whole < otherWhole ? -1 : 1;
    // The fractions: brought to one scale they always fit.
    const int scale = qMax(m_scale, other.m_scale);
    const qint64 fraction = m_word % power * powerOfTen(scale - m_scale);
    const qint64 otherFraction = other.m_word % otherPower * powerOfTen(scale - other.m_scale);
    return fraction < otherFraction ? -1 : fraction > otherFraction ? 1 : 0;
}

decimal decimal::operator+(const decimal &other) const
{
    decimal sum(*this);
    decimal addend(other);
    const short scale = qMax(m_scale, other.m_scale);
    sum.setScale(scale);
    addend.setScale(scale);
    if (addend.m_word > 0 ? sum.m_word > Largest - addend.m_word
                          : sum.m_word < Smallest - addend.m_word)
        failOverflow();
    sum.m_word += addend.m_word;
    return sum;
}

decimal decimal::operator-(const decimal &other) const
{
    decimal difference(*this);
    decimal subtrahend(other);
    const short scale = qMax(m_scale, other.m_scale);
    difference.setScale(scale);
    subtrahend.setScale(scale);
    if (subtrahend.m_word > 0 ? difference.m_word < Smallest + subtrahend.m_word
                              : difference.m_word > Largest + subtrahend.m_word)
        failOverflow();
    difference.m_word -= subtrahend.m_word;
    return difference;
}

decimal decimal::operator-() const
{
    return zero - *this;
}
