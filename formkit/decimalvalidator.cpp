#include "decimalvalidator.h"

#include <QVarLengthArray>

#include <algorithm>

namespace {

// With a leading 1 in front, 15 digits always stay within 2^52 - 1 and 16 never do.
constexpr int MaxDigits = 15;

using Buffer = QVarLengthArray<QChar, 64>;

QStringView viewOf(const Buffer &buffer)
{
    return QStringView(buffer.data(), buffer.size());
}

// A text without its group separators, cut into sign, integer digits, point and fraction digits,
// each of which may be missing. Digits of any script pass here, so that only what stands in the
// place of a digit decides about the shape.
class Cut
{
public:
    enum Shape { NoNumber, Integer, Decimal };

    Cut(QStringView text, const LocaleSymbols &symbols)
    {
        for (const QChar c : text) {
            const LocaleSymbols::Kind kind = symbols.kindOf(c);
            if (kind != LocaleSymbols::Group)
                append(c, kind);
        }
        if (m_shape == Integer)
            m_point = m_text.size();
    }

    Shape shape() const { return m_shape; }
    bool isNegative() const { return m_negative; }
    QStringView text() const { return viewOf(m_text); }
    QStringView sign() const { return text().left(m_sign); }
    QStringView integer() const { return text().mid(m_sign, m_point - m_sign); }
    QStringView fraction() const
    {
        return m_shape == Decimal ? text().mid(m_point + 1) : QStringView();
    }

private:
    void append(QChar c, LocaleSymbols::Kind kind)
    {
        const bool isSign = kind == LocaleSymbols::Minus || kind == LocaleSymbols::Plus;
        if (isSign && m_text.isEmpty()) {
            m_sign = 1;
            m_negative = kind == LocaleSymbols::Minus;
        } else if (kind == LocaleSymbols::Point && m_shape == Integer) {
            m_shape = Decimal;
            m_point = m_text.size();
        } else if (kind != LocaleSymbols::Digit && !c.isDigit()) {
            m_shape = NoNumber;
        }
        m_text.append(c);
    }

    Buffer m_text;
    Shape m_shape = Integer;
    int m_sign = 0;
    int m_point = 0;
    bool m_negative = false;
};

bool isReadable(QStringView digits, const LocaleSymbols &symbols)
{
    return std::all_of(digits.begin(), digits.end(),
                       [&symbols](QChar c) { return symbols.digitValue(c) >= 0; });
}

void append(Buffer &out, QStringView text)
{
    out.append(text.data(), int(text.size()));
}

void appendDigits(Buffer &out, QStringView digits, const LocaleSymbols &symbols)
{
    for (const QChar c : digits) {
        const int value = symbols.digitValue(c);
        out.append(value < 0 ? c : symbols.digit(value));
    }
}

// Without leading zeros, but with one digit at least.
void appendGrouped(Buffer &out, QStringView digits, const LocaleSymbols &symbols)
{
    while (digits.size() > 1 && symbols.digitValue(digits.front()) == 0)
        digits = digits.mid(1);
    for (int i = 0; i < digits.size(); ++i) {
        if (i > 0 && symbols.separatorBefore(int(digits.size()) - i))
            out.append(symbols.group());
        out.append(symbols.digit(symbols.digitValue(digits.at(i))));
    }
}

// The number as the locale writes it. A text without integer digits keeps the plus that was
// typed: there is no integer part yet that would be rewritten.
void rewrite(QString &input, const Cut &cut, const LocaleSymbols &symbols)
{
    Buffer out;
    if (cut.isNegative())
        append(out, symbols.minus());
    else if (cut.integer().isEmpty())
        append(out, cut.sign());
    if (!cut.integer().isEmpty())
        appendGrouped(out, cut.integer(), symbols);
    if (cut.shape() == Cut::Decimal) {
        out.append(symbols.point());
        appendDigits(out, cut.fraction(), symbols);
    }
    if (viewOf(out) != input)
        input.setUnicode(out.data(), out.size());
}

int countUngrouped(QStringView text, const LocaleSymbols &symbols)
{
    return int(std::count_if(text.begin(), text.end(), [&symbols](QChar c) {
        return symbols.kindOf(c) != LocaleSymbols::Group;
    }));
}

// The place behind as many characters as `count` says, separators not counted.
int placeBehind(int count, const QString &text, const LocaleSymbols &symbols)
{
    int pos = 0;
    for (; count > 0 && pos < text.size(); ++pos) {
        if (symbols.kindOf(text.at(pos)) != LocaleSymbols::Group)
            --count;
    }
    return pos;
}

} // namespace

DecimalValidator::DecimalValidator(int digits, bool canNegative, bool canBeZero, QObject *parent)
    : QValidator(parent)
    , m_digits(digits)
    , m_canNegative(canNegative)
    , m_canBeZero(canBeZero)
    , m_symbolsLocale(locale())
    , m_symbols(m_symbolsLocale)
{
}

const LocaleSymbols &DecimalValidator::symbols() const
{
    const QLocale current = locale();
    if (current != m_symbolsLocale) {
        m_symbols = LocaleSymbols(current);
        m_symbolsLocale = current;
    }
    return m_symbols;
}

QValidator::State DecimalValidator::validate(QString &input, int &pos) const
{
    const LocaleSymbols &symbols = this->symbols();
    const int count =
        countUngrouped(QStringView(input).left(qBound(0, pos, input.size())), symbols);
    const Cut cut(input, symbols);
    if (cut.shape() == Cut::NoNumber || (cut.shape() == Cut::Decimal && m_digits <= 0))
        return Invalid;
    if (cut.isNegative() && !m_canNegative)
        return Invalid;
    const int integerDigits = int(cut.integer().size());
    if (cut.shape() == Cut::Integer && integerDigits == 0)
        return Intermediate;

    if (integerDigits > MaxDigits || !isReadable(cut.integer(), symbols))
        return Invalid;
    rewrite(input, cut, symbols);
    if (m_numDigits > 0 && integerDigits > m_numDigits)
        return Invalid;
    pos = placeBehind(count, input, symbols);

    const int fractionDigits = int(cut.fraction().size());
    if (integerDigits + fractionDigits == 0)
        return Intermediate;
    if (integerDigits > 0 && integerDigits + fractionDigits > MaxDigits)
        return Invalid;
    if (cut.shape() == Cut::Decimal && fractionDigits > m_digits)
        return Invalid;
    return judge(cut.text(), fractionDigits);
}

void DecimalValidator::regroup(QString &input, int &pos) const
{
    const LocaleSymbols &symbols = this->symbols();
    const Cut cut(input, symbols);
    const bool isSign = cut.shape() == Cut::Integer && cut.integer().isEmpty();
    if (cut.shape() == Cut::NoNumber || isSign || !isReadable(cut.integer(), symbols))
        return;
    const int count =
        countUngrouped(QStringView(input).left(qBound(0, pos, input.size())), symbols);
    rewrite(input, cut, symbols);
    pos = placeBehind(count, input, symbols);
}

QValidator::State DecimalValidator::judge(QStringView number, int scale) const
{
    if (!decimal::canConvert(number, false, m_symbols))
        return Invalid;
    const decimal value = decimal::fromLocaleString(number, m_symbols, scale);
    return m_canBeZero || !isZero(value.toDouble()) ? Acceptable : Intermediate;
}

QValidator::State DecimalValidator::validateParsedString(const QString &text) const
{
    const LocaleSymbols &symbols = this->symbols();
    return judge(text, int(Cut(text, symbols).fraction().size()));
}

decimal DecimalValidator::textToDecimal(const QString &text) const
{
    const LocaleSymbols &symbols = this->symbols();
    const Cut cut(text, symbols);
    if (cut.shape() == Cut::NoNumber)
        throw QString(QStringLiteral("Invalid string for decimal: ") + text);
    return decimal::fromLocaleString(text, symbols, int(cut.fraction().size()));
}

QString DecimalValidator::decimalToText(decimal value) const
{
    return value.toSystemString(symbols());
}
