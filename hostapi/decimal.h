// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QLocale>
#include <QMetaType>
#include <QString>
#include <QStringView>

class LocaleSymbols;

/// A fixed-point number: a signed 64-bit word and a scale, the number of its fraction digits (0 to
/// 18). 12.50 is the word 1250 with the scale 2. No operation but toDouble() uses a double. A
/// result that does not fit throws Exception; nothing wraps.
///
/// There are two text forms:
/// - the system form, in which values are stored and exchanged: an optional sign, ASCII
///   digits, '.', no grouping ("-1234.50");
/// - the locale form, which people read and type: the locale's digits, signs, decimal point
///   and group separators. Reading skips group separators wherever they stand and accepts what
///   keyboards have in place of these characters (see LocaleSymbols).
///
/// Either form may lack the integer digits or the fraction digits (".5", "5."), but not both. A
/// lone sign or point, blanks around the number, exponents and the empty text are no numbers.
class HOSTAPI_EXPORT decimal
{
public:
    /// The most fraction digits: 10^18 is the last power of ten in 64 bits.
    static constexpr short MaxScale = 18;
    /// 0, with no fraction digits.
    static const decimal zero;

    constexpr decimal() = default;
    /// Whole numbers: their scale is 0.
    constexpr decimal(int value) : m_word(value) {}
    constexpr decimal(qint64 value) : m_word(value) {}
    /// The number word / 10^scale. Throws for a scale outside 0 to MaxScale.
    decimal(qint64 word, short scale);
    /// Reads the system form; the scale is the number of fraction digits. Throws for a text
    /// that is no number or has too many digits.
    explicit decimal(QStringView systemText);
    explicit decimal(const char *systemText) : decimal(QStringView(QString::fromUtf8(systemText)))
    {
    }

    /// True when decimal(systemText) does not throw. With `emptyToo` an empty text, which makes a
    /// cell null, counts too.
    static bool canConvert(QStringView systemText, bool emptyToo);
    /// The same for the locale form and fromLocaleString().
    static bool canConvert(QStringView localeText, bool emptyToo, const LocaleSymbols &symbols);

    /// Reads the locale form and brings it to the scale (see setScale()).
    static decimal fromLocaleString(const QString &text, const QLocale &locale, int scale);
    static decimal fromLocaleString(QStringView text, const LocaleSymbols &symbols, int scale);

    /// The system form, with as many fraction digits as the scale says.
    QString toString() const;
    /// The locale form, grouped, as an editor shows it. An editor passes the locale of its
    /// validator: there the text reads back equal.
    QString toSystemString(const QLocale &locale = QLocale()) const;
    QString toSystemString(const LocaleSymbols &symbols) const;
    /// The nearest double, or one next to it.
    double toDouble() const;

    /// The parts of the number.
    qint64 word() const { return m_word; }
    short scale() const { return m_scale; }
    /// Changes the count of fraction digits. Digits that fall away are rounded, halves away
    /// from zero. Throws when the number does not fit or the scale is outside 0 to MaxScale.
    void setScale(short scale);

    /// -1, 0 or 1, by value: 1.5 equals 1.50.
    int compare(const decimal &other) const;

    /// A sum has the larger of the two scales. Throws if one of the numbers does not fit that
    /// scale, or the sum does not fit.
    decimal operator+(const decimal &other) const;
    decimal operator-(const decimal &other) const;
    decimal operator-() const;

    bool operator==(const decimal &other) const { return compare(other) == 0; }
    bool operator!=(const decimal &other) const { return compare(other) != 0; }
    bool operator<(const decimal &other) const { return compare(other) < 0; }
    bool operator>(const decimal &other) const { return compare(other) > 0; }
    bool operator<=(const decimal &other) const { return compare(other) <= 0; }
    bool operator>=(const decimal &other) const { return compare(other) >= 0; }

private:
    qint64 m_word = 0;
    short m_scale = 0;
};

Q_DECLARE_TYPEINFO(decimal, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(decimal)
