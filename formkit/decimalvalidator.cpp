// SPDX-License-Identifier: BSD-3-Clause
#include "decimalvalidator.h"

#include "numbertext_p.h"

namespace {

// With a leading 1 in front, 15 digits always stay within 2^52 - 1 and 16 never do.
constexpr int MaxDigits = 15;

} // namespace

DecimalValidator::DecimalValidator(int digits, bool canNegative, bool canBeZero, QObject *parent)
    : QValidator(parent)
    , m_digits(digits)
    , m_canNegative(canNegative)
    , m_canBeZero(canBeZero)
    , m_symbolsLocale(locale())
    , m_symbols(m_symbolsLocale)
{
}

const LocaleSymbols &DecimalValidator::symbols() const
{
    const QLocale current = locale();
    if (current != m_symbolsLocale) {
        m_symbols = LocaleSymbols(current);
        m_symbolsLocale = current;
    }
    return m_symbols;
}

DecimalValidator::Fault DecimalValidator::faultOf(const NumberText &number) const
{
    if (number.shape() == NumberText::NoNumber || !number.isReadable())
        return Fault::NoNumber;
    if (number.shape() == NumberText::Decimal && m_digits <= 0)
        return Fault::Point;
    if (number.isNegative() && !m_canNegative)
        return Fault::Minus;
    const int integerDigits = int(number.integer().size());
    const int fractionDigits = int(number.fraction().size());
    if (m_numDigits > 0 && integerDigits > m_numDigits)
        return Fault::IntegerDigits;
    if (number.shape() == NumberText::Decimal && fractionDigits > m_digits)
        return Fault::FractionDigits;
    // Without integer digits only decimal is the bound.
    const int most = integerDigits > 0 ? MaxDigits : decimal::MaxScale;
    return integerDigits + fractionDigits > most ? Fault::Digits : Fault::None;
}

QValidator::State DecimalValidator::validate(QString &input, int &pos) const
{
    const LocaleSymbols &symbols = this->symbols();
    const NumberText number(input, symbols);
    if (faultOf(number) != Fault::None)
        return Invalid;
    if (number.shape() == NumberText::Integer && !number.hasDigits())
        return Intermediate;
    const int count =
        countUngrouped(QStringView(input).left(qBound(0, pos, input.size())), symbols);
    const QString text = number.written();
    if (text != input)
        input = text;
    pos = placeAfter(count, input, symbols);
    if (!number.hasDigits())
        return Intermediate;
    return judge(decimal::fromLocaleString(number.text(), symbols, int(number.fraction().size())));
}

QValidator::State DecimalValidator::judge(const decimal &number) const
{
    return m_canBeZero || !isZero(number.toDouble()) ? Acceptable : Intermediate;
}

QValidator::State DecimalValidator::validateParsedString(const QString &text) const
{
    const LocaleSymbols &symbols = this->symbols();
    if (!decimal::canConvert(text, false, symbols))
        return Invalid;
    const int scale = int(NumberText(text, symbols).fraction().size());
    return judge(decimal::fromLocaleString(text, symbols, scale));
}

decimal DecimalValidator::textToDecimal(const QString &text) const
{
    const LocaleSymbols &symbols = this->symbols();
    const NumberText number(text, symbols);
    if (number.shape() == NumberText::NoNumber)
        throw QString(QStringLiteral("Invalid string for decimal: ") + text);
    return decimal::fromLocaleString(text, symbols, int(number.fraction().size()));
}

QString DecimalValidator::decimalToText(decimal value) const
{
    return value.toSystemString(symbols());
}
