// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QLocale>
#include <QString>

#include <array>

/// The characters with which a locale writes numbers, and what a typed character stands for among
/// them. Number options of the locale do not count: integers are always grouped as
/// QLocale::toString(qlonglong) groups them (1,234,567 or 12,34,567; in Spanish, with Qt 6, 1234
/// and 12.345). A locale whose digits take two characters each, as some have with Qt 6, has ASCII
/// digits here.
class HOSTAPI_EXPORT LocaleSymbols
{
public:
    /// What a character stands for in a number.
    enum Kind : uchar {
        Other,
        Digit,
        Minus,
        Plus,
        Point,
        Group,
        Mark ///< a direction mark beside the locale's signs, which nobody sees and reading skips
    };

    /// Reads the locale, which may change afterwards.
    explicit LocaleSymbols(const QLocale &locale);

    /// What the character stands for. Keyboards lack most of a locale's characters, so others count
    /// too: ASCII digits beside the locale's own; '-' and '+' beside its signs; any blank (U+0020,
    /// U+00A0, U+2009, U+202F) for a group separator that is a blank; either apostrophe (U+0027,
    /// U+2019) for one that is an apostrophe.
    Kind kindOf(QChar c) const
    {
        return c.unicode() < m_asciiKinds.size() ? m_asciiKinds[c.unicode()] : readKindOf(c);
    }
    /// What separates or marks and is no part of the number itself.
    static bool isSkipped(Kind kind) { return kind == Group || kind == Mark; }
    /// 0 to 9 for a digit of the locale or an ASCII one, -1 for anything else.
    int digitValue(QChar c) const
    {
        const uint ascii = uint(c.unicode()) - '0';
        const uint own = uint(c.unicode()) - m_zero;
        return ascii <= 9 ? int(ascii) : own <= 9 ? int(own) : -1;
    }
    /// The locale's digit for a value of 0 to 9.
    QChar digit(int value) const { return QChar(m_zero + value); }

    /// The decimal point and the group separator, as the locale writes them.
    QChar point() const { return m_point; }
    QChar group() const { return m_group; }
    /// The minus sign. In some locales of Qt 6 direction marks are part of it, on one side or on
    /// both.
    const QString &minus() const { return m_minus; }

    /// The number of digits after the last separator; 0 if the locale does not group.
    int lastGroupSize() const { return m_lastGroup; }
    /// True when a separator belongs in front of the last `last` digits of an integer that has
    /// `digits` digits, and more than `last`.
    bool separatorBefore(int last, int digits) const
    {
        return size_t(digits) < m_separators.size() && (m_separators[size_t(digits)] >> last & 1);
    }
    /// Inserts the group separators into a string of digits.
    QString grouped(const QString &digits) const;

private:
    Kind readKindOf(QChar c) const;
    bool isGroup(QChar c) const;

    QChar m_point;
    QChar m_group;
    QString m_minus;
    QChar m_minusSign;
    QChar m_plusSign;
    ushort m_zero;
    int m_lastGroup = 0;
    /// For an integer of each number of digits, a bit for each number of digits after a separator.
    std::array<quint32, 20> m_separators{};
    /// A table, since validators ask for every character of a text after every key.
    std::array<Kind, 128> m_asciiKinds;
};
