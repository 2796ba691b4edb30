// SPDX-License-Identifier: BSD-3-Clause
#include "multiplier_p.h"

int placesOfSuffix(QChar suffix)
{
    switch (suffix.toLower().unicode()) {
    case 'k':
    case 0x043a: // Cyrillic
        return 3;
    case 'm':
    case 0x043c:
        return 6;
    default:
        return 0;
    }
}

QString multiplied(const NumberText &number, int places, const LocaleSymbols &symbols)
{
    const QString fraction = number.fraction().toString();
    QString text =
        number.integer().toString() + fraction.left(places).leftJustified(places, symbols.digit(0));
    while (text.size() > 1 && symbols.digitValue(text.front()) == 0)
        text.remove(0, 1);
    if (fraction.size() > places)
        text += symbols.point() + fraction.mid(places);
    return number.sign().toString() + text;
}
