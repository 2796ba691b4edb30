// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>
#include <hostapi/decimal.h>

#include <QValidator>

#include <memory>

class LocaleSymbols;
class NumberText;

/// Checks and regroups, keystroke by keystroke, the text of a line edit that holds a decimal
/// number: limits its digits, inserts the group separators of the locale, drops leading zeros
/// and a leading plus, and keeps the caret behind as many characters as before, separators not
/// counted.
///
/// The locale is QValidator::locale(): the default locale of the time of construction, or what
/// setLocale() says. Every locale of QLocale works. Typed characters stand for those that
/// keyboards lack (see LocaleSymbols: '-' for the locale's minus, any blank for a blank group
/// separator, an ASCII apostrophe for the typographic one, ASCII digits for native ones); the
/// text that comes out is in the locale's own characters. Group separators are skipped wherever
/// they stand; a validator sees no difference between typing and pasting.
///
/// At most 15 digits are accepted, integer and fraction together, so that a validated number
/// also survives as a double. (A text without integer digits, ".5", is bound by decimal alone.)
///
/// A lone sign, a lone point and a sign before a lone point are no numbers, but on their way to
/// one, and Intermediate: were the point of a typed ".5" refused, the 5 would stand there as
/// another amount. ".5" and "5." are numbers.
///
/// To be used in one thread at a time: the characters of the locale are kept between calls.
class FORMKIT_EXPORT DecimalValidator : public QValidator
{
    Q_OBJECT

public:
    /// digits: see setDigits(). canNegative: whether a minus may lead the text. canBeZero:
    /// whether a zero is Acceptable. The number of integer digits is not limited at first.
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

    /// Judges the text and regroups it. An empty text and a lone sign are Intermediate and left
    /// as they are; so is a point without digits, in the locale's own characters. What happened
    /// to an Invalid text and its caret is of no use.
    State validate(QString &input, int &pos) const override;
    /// Judges a complete text, without a limit on its digits and without changing it.
    State validateParsedString(const QString &text) const;

    /// Reads a text of the locale; the scale is the number of fraction digits in it. Throws a
    /// QString, "Invalid string for decimal: " and the text, when the text has another shape
    /// than sign, digits, point, digits; and Exception when it has the shape and yet is no
    /// decimal (no digit at all, too many of them, digits of another script).
    decimal textToDecimal(const QString &text) const;
    /// Writes the number in the locale, grouped: textToDecimal() reads it back equal.
    QString decimalToText(decimal value) const;

    /// What counts as a zero everywhere in number entry: less than about 1e-12 in size, and what
    /// is no number at all.
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
