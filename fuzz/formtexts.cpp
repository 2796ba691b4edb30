#include "formtexts.h"

#include <QDate>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace {

const QString largest = QStringLiteral("9223372036854775807");

struct Symbols
{
    QString groups; // the first is the one that is shown
    QChar point;
};

Symbols symbolsOf(const QString &locale)
{
    if (locale == QLatin1String("de_DE"))
        return {QStringLiteral("."), QLatin1Char(',')};
    if (locale == QLatin1String("fr_FR"))
        return {QStringLiteral("\u202f\u00a0 "), QLatin1Char(',')};
    return {QStringLiteral(","), QLatin1Char('.')};
}

// The parts of a number, without leading zeros; no digits at all for what is no number.
struct Number
{
    bool isNegative = false;
    QString integer;
    QString fraction;

    bool isNull() const { return integer.isEmpty(); }
    QString text() const
    {
        const QString point = fraction.isEmpty() ? QString() : QStringLiteral(".");
        return (isNegative ? "-" : "") + integer + point + fraction;
    }
};

Number parse(const QString &text)
{
    static const QRegularExpression shape(
        QRegularExpression::anchoredPattern("([+-]?)([0-9]*)(?:\\.([0-9]*))?"));
    const QRegularExpressionMatch match = shape.match(text);
    if (!match.hasMatch() || (match.captured(2) + match.captured(3)).isEmpty())
        return {};
    Number number{match.captured(1) == "-", match.captured(2), match.captured(3)};
    while (number.integer.startsWith('0'))
        number.integer.remove(0, 1);
    QString digits = number.integer + number.fraction;
    while (digits.startsWith('0'))
        digits.remove(0, 1);
    const bool fits =
        digits.size() < largest.size() || (digits.size() == largest.size() && digits <= largest);
    if (!fits || number.fraction.size() > 18)
        return {};
    number.isNegative = number.isNegative && !digits.isEmpty();
    if (number.integer.isEmpty())
        number.integer = QStringLiteral("0");
    return number;
}

QString systemText(QString shown, const Symbols &symbols)
{
    for (const QChar group : symbols.groups)
        shown.remove(group);
    const bool isOdd = symbols.point != '.' && shown.contains('.');
    return isOdd ? QString() : shown.replace(symbols.point, QLatin1Char('.'));
}

} // namespace

QStringList FormTexts::locales()
{
    return {QStringLiteral("en_US"), QStringLiteral("de_DE"), QStringLiteral("fr_FR")};
}

QString FormTexts::canonical(const QString &systemText)
{
    const Number number = parse(systemText);
    return number.isNull() ? systemText : number.text();
}

bool FormTexts::isNumber(const QString &systemText)
{
    return !parse(systemText).isNull();
}

QString FormTexts::read(const QString &shown, const QString &locale)
{
    const Number number = parse(systemText(shown, symbolsOf(locale)));
    return number.isNull() ? shown : number.text();
}

QString FormTexts::readStrictly(const QString &shown, const QString &locale)
{
    QString plain = shown;
    for (const QChar group : symbolsOf(locale).groups)
        plain.replace(group, QLatin1Char('\''));
    static const QRegularExpression grouped(
        "^[+-]?([0-9]*|[0-9]{1,3}('[0-9]{3})+)([^0-9'][0-9]*)?$");
    return grouped.match(plain).hasMatch() ? read(shown, locale) : shown;
}

QString FormTexts::write(const QString &value, const QString &locale)
{
    const Number number = parse(value);
    if (number.isNull())
        return value;
    const Symbols symbols = symbolsOf(locale);
    Number shown = number;
    for (int at = shown.integer.size() - 3; at > 0; at -= 3)
        shown.integer.insert(at, '\'');
    return shown.text().replace('.', symbols.point).replace('\'', symbols.groups.front());
}

bool FormTexts::isTidy(const QString &shown, const QString &locale)
{
    const QChar point = symbolsOf(locale).point;
    const QString value = read(shown, locale);
    QString digits = shown;
    digits.remove(QRegularExpression("^[+-]"));
    if (!isNumber(value) || digits.startsWith(point))
        return true;
    if (digits.endsWith(point))
        digits.chop(1);
    return digits == write(value, locale).remove('-');
}

QString FormTexts::sum(const QString &summand, const QString &addendum)
{
    const Number parts[] = {parse(summand), parse(addendum)};
    if (parts[0].isNull() || parts[1].isNull())
        return summand;
    const int scale = std::max(parts[0].fraction.size(), parts[1].fraction.size());
    qint64 total = 0;
    for (const Number &part : parts) {
        bool fits = false;
        const qint64 word = QString(Number{part.isNegative, part.integer, {}}.text() +
                                    part.fraction.leftJustified(scale, '0'))
                                .toLongLong(&fits);
        if (!fits || __builtin_add_overflow(total, word, &total))
            return summand;
    }
    QString digits = QString::number(total).remove('-').rightJustified(scale + 1, '0');
    if (scale > 0)
        digits.insert(digits.size() - scale, '.');
    return total < 0 ? '-' + digits : digits;
}

QString FormTexts::date(const QString &systemText)
{
    static const QRegularExpression shapes(QRegularExpression::anchoredPattern(
        "([0-9]{4})(?:\\.([0-9]{2})\\.([0-9]{2})(?: [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3})?"
        "|-([0-9]{2})-([0-9]{2})(?: [0-9]{2}:[0-9]{2}:[0-9]{2})?)"));
    const QRegularExpressionMatch match = shapes.match(systemText);
    const auto part = [&match](int a, int b) {
        return (match.captured(a) + match.captured(b)).toInt();
    };
    const QDate day(match.captured(1).toInt(), part(2, 4), part(3, 5));
    return day.isValid() ? day.toString("yyyy.MM.dd") + " 00:00:00.000" : QString();
}

QString FormTexts::readDate(const QString &shown)
{
    static const QRegularExpression shape(
        QRegularExpression::anchoredPattern("([0-9]{2})\\.([0-9]{2})\\.([0-9]{2})"));
    const QRegularExpressionMatch match = shape.match(shown);
    return match.hasMatch()
               ? date("20" + match.captured(3) + '.' + match.captured(2) + '.' + match.captured(1))
               : QString();
}

QString FormTexts::writeDate(const QString &systemText)
{
    return systemText.isEmpty()
               ? QString()
               : systemText.mid(8, 2) + '.' + systemText.mid(5, 2) + '.' + systemText.mid(2, 2);
}
