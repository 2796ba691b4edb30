// SPDX-License-Identifier: BSD-3-Clause
#include "pastednumber_p.h"

#include "multiplier_p.h"
#include "numberrules_p.h"

#include <QSet>

#include <algorithm>
#include <numeric>

namespace {

// Blanks, tabs, line ends, and the marks of writing direction that text brings along.
bool isInvisible(QChar c)
{
    return c.isSpace() || c.category() == QChar::Other_Format;
}

QStringView trimmed(QStringView text)
{
    while (!text.isEmpty() && isInvisible(text.front()))
        text = text.mid(1);
    while (!text.isEmpty() && isInvisible(text.back()))
        text.chop(1);
    return text;
}

const QSet<QString> &currencyCodes()
{
    static const QSet<QString> codes = [] {
        QSet<QString> found;
        for (const QLocale &locale : QLocale::matchingLocales(
                 QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry))
            found += locale.currencySymbol(QLocale::CurrencyIsoCode);
        return found;
    }();
    return codes;
}

// How many characters the text's currency has, in front or at the end.
int currencySize(QStringView text, bool inFront)
{
    constexpr int CodeSize = 3;
    if (text.isEmpty())
        return 0;
    if ((inFront ? text.front() : text.back()).category() == QChar::Symbol_Currency)
        return 1;
    const QStringView code = inFront ? text.left(CodeSize) : text.right(CodeSize);
    const bool isCode = std::all_of(code.begin(), code.end(), [](QChar c) { return c.isUpper(); });
    return isCode && code.size() == CodeSize && currencyCodes().contains(code.toString()) ? CodeSize
                                                                                          : 0;
}

QStringView withoutCurrency(QStringView text)
{
    const int before = currencySize(text, true);
    if (before > 0)
        return trimmed(text.mid(before));
    return trimmed(text.left(text.size() - currencySize(text, false)));
}

// Digits of the unit and of the number must not meet: "lots of 105" is not 5 lots of 10.
QStringView withoutUnit(QStringView text, const QString &unit)
{
    const int size = unit.size();
    const int rest = int(text.size()) - size;
    const auto meet = [](QChar a, QChar b) { return a.isDigit() && b.isDigit(); };
    if (size == 0 || rest <= 0)
        return text;
    if (text.startsWith(unit, Qt::CaseInsensitive) && !meet(unit.back(), text.at(size)))
        return trimmed(text.mid(size));
    if (text.endsWith(unit, Qt::CaseInsensitive) && !meet(text.at(rest - 1), unit.front()))
        return trimmed(text.left(rest));
    return text;
}

} // namespace

PastedNumber::PastedNumber(QStringView text, const QLocale &locale, const LocaleSymbols &symbols,
                           const NumberRules &rules, bool isWhole)
    : m_symbols(symbols)
{
    QStringView number = trimmed(text);
    bool hasSign = readSign(&number);
    number = rules.hasUnit() ? withoutUnit(withoutUnit(number, rules.suffix), rules.prefix)
                             : withoutCurrency(number);
    if (!hasSign)
        hasSign = readSign(&number);
    const int places =
        rules.multipliers && isWhole && !number.isEmpty() ? placesOfSuffix(number.back()) : 0;
    if (places > 0)
        number = trimmed(number.left(number.size() - 1));
    const bool hasDigit = std::any_of(number.begin(), number.end(),
                                      [&](QChar c) { return symbols.digitValue(c) >= 0; });
    const int foreign = foreignPoint(number, locale);
    if (!hasDigit)
        m_reason = tr("There is no number to take over");
    else if (!refuseOthers(number) && foreign >= 0)
        readForeign(number, foreign);
    else if (m_reason.isEmpty())
        readGroups(number);
    if (!m_reason.isEmpty())
        m_number.clear();
    else if (places > 0)
        m_number = multiplied(NumberText(m_number, symbols), places, symbols);
}

bool PastedNumber::isForeignPoint(QChar c, const QLocale &locale, const LocaleSymbols &symbols)
{
    if (c == symbols.point())
        return false;
    const bool isArabic = symbols.point() == QChar(0x066b) ||
                          locale.language() == QLocale::Arabic ||
                          locale.language() == QLocale::Persian;
    return c == QLatin1Char('.') || c == QLatin1Char(',') || (isArabic && c == QLatin1Char('/'));
}

QString PastedNumber::wordOf(QChar c, const LocaleSymbols &symbols)
{
    const bool groups = symbols.kindOf(c) == LocaleSymbols::Group;
    if (groups && c.isSpace())
        return tr("A blank groups digits here; the decimal point is '%1'").arg(symbols.point());
    if (groups)
        return tr("'%1' groups digits here; the decimal point is '%2'").arg(c).arg(symbols.point());
    if (c.isSpace())
        return tr("A blank does not belong there in a number");
    return tr("'%1' does not belong there in a number").arg(c);
}

bool PastedNumber::readSign(QStringView *text)
{
    if (text->isEmpty())
        return false;
    const QChar sign = withoutDash(text->front(), m_symbols);
    const LocaleSymbols::Kind kind = m_symbols.kindOf(sign);
    if (kind != LocaleSymbols::Minus && kind != LocaleSymbols::Plus)
        return false;
    m_number += sign;
    *text = trimmed(text->mid(1));
    return true;
}

// Names the first character that no number has, a blank only if there is nothing else.
bool PastedNumber::refuseOthers(QStringView number)
{
    QChar other;
    for (const QChar c : number) {
        const LocaleSymbols::Kind kind = m_symbols.kindOf(c);
        const bool belongs = kind == LocaleSymbols::Digit || kind == LocaleSymbols::Point ||
                             LocaleSymbols::isSkipped(kind) || c == QLatin1Char('.') ||
                             c == QLatin1Char(',') || c == QLatin1Char('/');
        if (!belongs && (other.isNull() || other.isSpace()))
            other = c;
    }
    if (!other.isNull())
        m_reason = wordOf(other, m_symbols);
    return !m_reason.isEmpty();
}

// The place of a mark that may be a point other than the locale's, if it is the only one; or -1.
int PastedNumber::foreignPoint(QStringView number, const QLocale &locale) const
{
    int place = -1;
    for (int i = 0; i < number.size(); ++i) {
        const bool isForeign = isForeignPoint(number.at(i), locale, m_symbols);
        if ((isForeign && place >= 0) || m_symbols.kindOf(number.at(i)) == LocaleSymbols::Point)
            return -1;
        if (isForeign)
            place = i;
    }
    return place;
}

// Three digits after it and one to three in front may be a group; if they are one here, they are.
void PastedNumber::readForeign(QStringView number, int place)
{
    const QStringView integer = number.left(place);
    const QStringView fraction = number.mid(place + 1);
    const int before = countUngrouped(integer, m_symbols);
    const bool isZero = before == 1 && m_symbols.digitValue(integer.front()) == 0;
    const bool mayGroup = before > 0 && before <= 3 && !isZero && fraction.size() == 3;
    const bool groups = m_symbols.kindOf(number.at(place)) == LocaleSymbols::Group;
    if (mayGroup && groups && fitsInGroups(number, m_symbols)) {
        append(number, -1);
    } else if (mayGroup) {
        const auto written = [&](const QString &mark) {
            const QString text = integer.toString() + mark + fraction.toString();
            return NumberText(text, m_symbols).written();
        };
        m_reason = tr("'%1' may be %2 or %3")
                       .arg(number.toString(), written({}), written(m_symbols.point()));
    } else if (!fitsInGroups(integer, m_symbols)) {
        m_reason = wordOf(m_symbols.group(), m_symbols);
    } else {
        append(number, place);
    }
}

void PastedNumber::readGroups(QStringView number)
{
    int point = -1;
    for (int i = 0; i < number.size(); ++i) {
        const LocaleSymbols::Kind kind = m_symbols.kindOf(number.at(i));
        const bool isPoint = kind == LocaleSymbols::Point;
        if (isPoint && point >= 0)
            m_reason = tr("A number has one decimal point");
        else if (isPoint)
            point = i;
        else if (kind == LocaleSymbols::Other)
            m_reason = wordOf(number.at(i), m_symbols);
        else if (kind == LocaleSymbols::Group && !fitsInGroups(number, m_symbols))
            m_reason = wordOf(number.at(i), m_symbols);
        if (!m_reason.isEmpty())
            return;
    }
    append(number, point);
}

void PastedNumber::append(QStringView number, int point)
{
    for (int i = 0; i < number.size(); ++i) {
        if (i == point)
            m_number += m_symbols.point();
        else if (m_symbols.kindOf(number.at(i)) == LocaleSymbols::Digit)
            m_number += number.at(i);
    }
}

bool fitsInGroups(QStringView number, const LocaleSymbols &symbols)
{
    QVector<int> sizes{0};
    bool isZeroFirst = false;
    bool isAfterPoint = false;
    for (const QChar c : number) {
        const LocaleSymbols::Kind kind = symbols.kindOf(c);
        if (kind == LocaleSymbols::Group && isAfterPoint)
            return false;
        if (kind == LocaleSymbols::Group)
            sizes << 0;
        else if (kind == LocaleSymbols::Point)
            isAfterPoint = true;
        else if (kind == LocaleSymbols::Digit && !isAfterPoint && sizes.last()++ == 0 &&
                 sizes.size() == 1)
            isZeroFirst = symbols.digitValue(c) == 0;
    }
    return sizes.size() == 1 || (!isZeroFirst && fitsInGroups(sizes, symbols, false));
}

// Whether the first group may be so long: some locales put no separator behind a single digit.
static bool isFirstGroup(int size, int digits, const LocaleSymbols &symbols)
{
    for (int behind = digits - size + 1; size > symbols.lastGroupSize() && behind < digits;
         ++behind) {
        if (symbols.separatorBefore(behind, digits))
            return false;
    }
    return size >= 1 && symbols.lastGroupSize() > 0;
}

bool fitsInGroups(const QVector<int> &sizes, const LocaleSymbols &symbols, bool mayGrow)
{
    const int size = symbols.lastGroupSize();
    const bool mayBePairs =
        symbols.group() == QLatin1Char(',') || symbols.separatorBefore(size + 2, 2 * size);
    const auto inner = [&](int digits) { return digits == size || (mayBePairs && digits == 2); };
    const int digits = std::accumulate(sizes.begin(), sizes.end(), 0);
    return sizes.size() == 1 || (isFirstGroup(sizes.first(), digits, symbols) &&
                                 std::all_of(sizes.begin() + 1, sizes.end() - 1, inner) &&
                                 (sizes.last() == size || (mayGrow && sizes.last() < size)));
}
