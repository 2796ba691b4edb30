// Any text, caret, locale and limits put to the validator: what it accepts it leaves alone the
// next time, the caret stays behind as many characters, and the value is what the text says.

#include <formkit/decimalvalidator.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

namespace {

void demand(bool holds)
{
    if (!holds)
        std::abort();
}

// Half of the texts are made of what the locale writes numbers with.
QString textFrom(FuzzedDataProvider &input, const QLocale &locale, const LocaleSymbols &symbols)
{
    if (input.ConsumeBool())
        return QString::fromStdString(input.ConsumeRemainingBytesAsString());
    const QString alphabet = QString("0123456789+-., '") + symbols.digit(0) + symbols.digit(7) +
                             symbols.point() + symbols.group() + symbols.minus() +
                             locale.positiveSign();
    QString text;
    while (input.remaining_bytes() > 0)
        text += alphabet.at(input.ConsumeIntegralInRange<int>(0, alphabet.size() - 1));
    return text;
}

QString ungrouped(const QString &text, const LocaleSymbols &symbols)
{
    QString rest;
    for (const QChar c : text) {
        if (symbols.kindOf(c) != LocaleSymbols::Group)
            rest += c;
    }
    return rest;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QList<QLocale> Locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    FuzzedDataProvider input(data, size);
    const QLocale &locale = Locales.at(input.ConsumeIntegralInRange(0, Locales.size() - 1));
    const LocaleSymbols symbols(locale);
    const int digits = input.ConsumeIntegralInRange(-1, 17);
    const bool canNegative = input.ConsumeBool();
    DecimalValidator validator(digits, canNegative, input.ConsumeBool());
    validator.setLocale(locale);
    validator.setNumDigits(input.ConsumeIntegralInRange(-1, 17));
    const int caret = input.ConsumeIntegralInRange(-3, 40);
    const QString typed = textFrom(input, locale, symbols);

    QString shown = typed;
    int pos = caret;
    const QValidator::State state = validator.validate(shown, pos);
    if (state == QValidator::Invalid)
        return 0;
    demand(ungrouped(typed, symbols).isEmpty() || !ungrouped(shown, symbols).isEmpty());

    QString again = shown;
    int posAgain = pos;
    demand(validator.validate(again, posAgain) == state && again == shown && posAgain == pos);

    const bool isNumber = std::any_of(shown.begin(), shown.end(),
                                      [&](QChar c) { return symbols.digitValue(c) >= 0; });
    if (!isNumber) {
        demand(state == QValidator::Intermediate && shown.size() <= std::max(typed.size(), 2));
        return 0;
    }
    const int before = ungrouped(typed.left(qBound(0, caret, typed.size())), symbols).size();
    demand(shown.size() <= 40 && pos >= 0 && pos <= shown.size());
    demand(ungrouped(shown.left(pos), symbols).size() ==
           std::min(before, ungrouped(shown, symbols).size()));

    const decimal value = validator.textToDecimal(shown);
    demand(value == validator.textToDecimal(typed));
    demand(value.scale() <= std::max(digits, 0) && (canNegative || value.word() >= 0));
    QString written = validator.decimalToText(value);
    demand(validator.textToDecimal(written) == value);
    demand(state == QValidator::Acceptable || DecimalValidator::isZero(value.toDouble()));
    demand(validator.validateParsedString(shown) == state);
    return 0;
}
