// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/localesymbols.h>

#include <QVarLengthArray>

/// A text without its group separators and direction marks, divided into sign, integer digits,
/// point and fraction digits, each of which may be missing. Digits of any script pass, so that only
/// what stands in the place of a digit decides about the shape. The symbols must outlive it.
class NumberText
{
public:
    enum Shape { NoNumber, Integer, Decimal };

    NumberText(QStringView text, const LocaleSymbols &symbols);

    Shape shape() const { return m_shape; }
    bool isNegative() const { return m_negative; }
    bool hasDigits() const { return !integer().isEmpty() || !fraction().isEmpty(); }
    /// False when a digit belongs to another script than the locale's and ASCII.
    bool isReadable() const;
    QStringView text() const { return QStringView(m_text.data(), m_text.size()); }
    QStringView sign() const { return text().left(m_sign); }
    QStringView integer() const { return text().mid(m_sign, m_point - m_sign); }
    QStringView fraction() const
    {
        return m_shape == Decimal ? text().mid(m_point + 1) : QStringView();
    }
    /// How many zeros in front mean nothing: one digit counts in any case.
    int leadingZeros() const;
    /// The number as the locale writes it. A text without integer digits keeps its plus: there
    /// is no integer part yet that would be rewritten.
    QString written() const;

private:
    void append(QChar c, LocaleSymbols::Kind kind);

    const LocaleSymbols &m_symbols;
    QVarLengthArray<QChar, 64> m_text;
    Shape m_shape = Integer;
    int m_sign = 0;
    int m_point = 0;
    bool m_negative = false;
};

/// The locale's minus for the typographic minus and for a dash, any other character as it is.
QChar withoutDash(QChar c, const LocaleSymbols &symbols);
/// How many characters of the text are neither group separators nor direction marks.
int countUngrouped(QStringView text, const LocaleSymbols &symbols);
/// The place after as many such characters as `count` says, and after the marks that follow.
int placeAfter(int count, QStringView text, const LocaleSymbols &symbols);
