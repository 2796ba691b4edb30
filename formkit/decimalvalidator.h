// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>
#include <hostapi/decimal.h>

#include <QValidator>

#include <memory>

class LocaleSymbols;
class NumberText;

/// Checks and regroups the text of a line edit that holds a decimal number, after every key:
/// limits its digits, inserts the locale's group separators, drops leading zeros and a leading
/// plus, and keeps the caret after the same number of characters, separators not counted.
///
/// - The locale is QValidator::locale(): the default locale at the time of construction, or what
///   setLocale() says. Every locale of QLocale works.
/// - Keyboards lack some characters of a locale. What stands for them is accepted (see
///   LocaleSymbols) and replaced by the locale's own.
/// - Group separators are skipped wherever they stand: a validator cannot tell typing from pasting.
/// - At most 15 digits are accepted, integer and fraction together, so that the number survives as
///   a double too. A text without integer digits (".5") may have as many as a decimal.
/// - It is used in one thread at a time: the locale's characters are kept between calls.
class FORMKIT_EXPORT DecimalValidator : public QValidator
{
    Q_OBJECT

public:
    /// Takes the values of setDigits(), setCanNegative() and setCanBeZero(). The number of integer
    /// digits is not limited at first.
    DecimalValidator(int digits, bool canNegative, bool canBeZero, QObject *parent = nullptr);
    ~DecimalValidator() override;

    /// The greatest number of fraction digits. At 0 and below no decimal point is accepted.
    void setDigits(int digits);
    int getDigits() const;

    /// The greatest number of integer digits, leading zeros counted as typed; 0 and below: any.
    void setNumDigits(int numDigits);
    int getNumDigits() const;

    /// Whether a minus may lead the text; without it a minus is Invalid.
    void setCanNegative(bool canNegative);
    bool getCanNegative() const;

    /// Whether a zero is Acceptable; without it a zero is Intermediate.
    void setCanBeZero(bool canBeZero);
    bool getCanBeZero() const;

    /// Judges the text and regroups it. Text and caret of an Invalid text are of no use afterwards.
    ///
    /// An empty text and a lone sign are Intermediate and stay as they are. A point without digits,
    /// with or without a sign, is Intermediate too: if the point of ".5" were refused while it is
    /// typed, the 5 would be another amount. ".5" and "5." are numbers.
    State validate(QString &input, int &pos) const override;
    /// Judges a complete text, without a limit on its digits and without changing it.
    State validateParsedString(const QString &text) const;

    /// Reads a text of the locale; the scale is the number of fraction digits in it. A text of
    /// another shape than sign, digits, point, digits throws a QString, "Invalid string for
    /// decimal: " and the text. One of that shape that is no decimal (no digits, too many of them,
    /// digits of another script) throws Exception.
    decimal textToDecimal(const QString &text) const;
    /// Writes the number in the locale, grouped: textToDecimal() reads it back equal.
    QString decimalToText(decimal value) const;

    /// Whether a number counts as zero wherever numbers are entered: if its size is less than about
    /// 1e-12, or if it is NaN.
    static bool isZero(double number) { return qIsNaN(number) || qFuzzyCompare(number + 1.0, 1.0); }

private:
    friend class EditGuard;
    struct Private;
    /// What keeps a text from being accepted.
    enum class Fault { None, NoNumber, Point, Minus, IntegerDigits, FractionDigits, Digits };

    const LocaleSymbols &symbols() const;
    Fault faultOf(const NumberText &number) const;
    State judge(const decimal &number) const;

    std::unique_ptr<Private> d;
};
