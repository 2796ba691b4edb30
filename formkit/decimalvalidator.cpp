// SPDX-License-Identifier: BSD-3-Clause
#include "decimalvalidator.h"

#include "numbertext_p.h"

#include <hostapi/localesymbols.h>

#include <QLocale>

namespace {

// With a leading 1 in front, 15 digits always stay within 2^52 - 1 and 16 never do.
constexpr int MaxDigits = 15;

} // namespace

struct DecimalValidator::Private
{
    int digits;
    bool canNegative;
    bool canBeZero;
    QLocale locale; // of the symbols
    LocaleSymbols symbols{locale};
    int numDigits = 0;
};

DecimalValidator::DecimalValidator(int digits, bool canNegative, bool canBeZero, QObject *parent)
    : QValidator(parent), d(new Private{digits, canNegative, canBeZero, locale()})
{
}

DecimalValidator::~DecimalValidator() = default;

void DecimalValidator::setDigits(int digits)
{
    d->digits = digits;
}

int DecimalValidator::getDigits() const
{
    return d->digits;
}

void DecimalValidator::setNumDigits(int numDigits)
{
    d->numDigits = numDigits;
}

int DecimalValidator::getNumDigits() const
{
    return d->numDigits;
}

void DecimalValidator::setCanNegative(bool canNegative)
{
    d->canNegative = canNegative;
}

bool DecimalValidator::getCanNegative() const
{
    return d->canNegative;
}

void DecimalValidator::setCanBeZero(bool canBeZero)
{
    d->canBeZero = canBeZero;
}

bool DecimalValidator::getCanBeZero() const
{
    return d->canBeZero;
}

const LocaleSymbols &DecimalValidator::symbols() const
{
    const QLocale current = locale();
    if (current != d->locale) {
        d->symbols = LocaleSymbols(current);
        d->locale = current;
    }
    return d->symbols;
}

DecimalValidator::Fault DecimalValidator::faultOf(const NumberText &number) const
{
    if (number.shape() == NumberText::NoNumber || !number.isReadable())
        return Fault::NoNumber;
    if (number.shape() == NumberText::Decimal && d->digits <= 0)
        return Fault::Point;
    if (number.isNegative() && !d->canNegative)
        return Fault::Minus;
    const int integerDigits = int(number.integer().size());
    const int fractionDigits = int(number.fraction().size());
    if (d->numDigits > 0 && integerDigits > d->numDigits)
        return Fault::IntegerDigits;
    if (number.shape() == NumberText::Decimal && fractionDigits > d->digits)
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
    return d->canBeZero || !isZero(number.toDouble()) ? Acceptable : Intermediate;
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
