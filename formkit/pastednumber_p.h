// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "numbertext_p.h"

#include <QCoreApplication>

struct NumberRules;

/// Reads a number that comes at one go, as a spreadsheet's cell or a message brings it: with
/// blanks around it, one currency sign or ISO 4217 code in front or after, and groups. What could
/// be two amounts is none, and the reason says so. In a field with a unit, that one may stand where
/// a currency may elsewhere; where suffixes multiply, a number that comes alone may end in one.
class PastedNumber
{
    Q_DECLARE_TR_FUNCTIONS(NumberEditor)

public:
    /// The locale is that of the symbols. `isWhole` says that nothing else will stand in the field.
    PastedNumber(QStringView text, const QLocale &locale, const LocaleSymbols &symbols,
                 const NumberRules &rules, bool isWhole);

    /// The sign, digits and point that the text says, without groups; empty when there is a
    /// reason. It may lack what stands in front of a point, and may be far too long.
    const QString &number() const { return m_number; }
    const QString &reason() const { return m_reason; }

    /// Whether people write a decimal point so where the locale does not: '.' and ',', and '/' on
    /// Arabic and Persian keyboards.
    static bool isForeignPoint(QChar c, const QLocale &locale, const LocaleSymbols &symbols);
    /// What the user has to know about a character that groups, or that belongs in no number.
    static QString wordOf(QChar c, const LocaleSymbols &symbols);

private:
    bool readSign(QStringView *text);
    bool refuseOthers(QStringView number);
    int foreignPoint(QStringView number, const QLocale &locale) const;
    void readForeign(QStringView number, int place);
    void readGroups(QStringView number);
    void append(QStringView number, int point);

    const LocaleSymbols &m_symbols;
    QString m_number;
    QString m_reason;
};

/// Whether separators stand where the locale groups, or there are none: 1 to as many digits as a
/// group has in front of the first, not beginning with a zero; as many between two, or 2 where a
/// comma groups (India and its neighbours write 12,34,567); and exactly as many after the last.
/// Signs do not count, and no separator may follow the point.
bool fitsInGroups(QStringView number, const LocaleSymbols &symbols);
/// The same for the digits between the separators of an integer. With `mayGrow` it is enough that
/// the last group comes to fit when more digits follow.
bool fitsInGroups(const QVector<int> &sizes, const LocaleSymbols &symbols, bool mayGrow);
