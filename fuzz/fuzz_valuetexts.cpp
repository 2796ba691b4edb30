// SPDX-License-Identifier: BSD-3-Clause
// Any text read as a number and as a date, and put to the validator of numbers: what is said to be
// readable reads, what is read is written so that it reads back equal, sums either fit or throw,
// and an accepted text is left alone the next time.

#include <formkit/decimalvalidator.h>
#include <hostapi/datetime.h>
#include <hostapi/decimal.h>
#include <hostapi/exception.h>
#include <hostapi/localesymbols.h>

#include <QList>

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace {

void demand(bool holds)
{
    if (!holds)
        std::abort();
}

template <typename Make> std::optional<decimal> tried(Make make)
{
    try {
        return make();
    } catch (const Exception &) {
        return {};
    }
}

void checkNumbers(const QString &text, const QLocale &locale)
{
    const LocaleSymbols symbols(locale);
    const auto system = tried([&] { return decimal(text); });
    demand(decimal::canConvert(text, false) == system.has_value());
    demand(decimal::canConvert(text, true) == (system.has_value() || text.isEmpty()));
    const auto local = tried([&] { return decimal::fromLocaleString(text, symbols, 0); });
    demand(decimal::canConvert(text, false, symbols) == local.has_value());
    for (const auto &number : {system, local}) {
        if (!number)
            continue;
        const QString written = number->toString();
        demand(decimal(written) == *number && decimal(written).scale() == number->scale());
        const QString shown = number->toSystemString(symbols);
        demand(decimal::fromLocaleString(shown, symbols, number->scale()) == *number);
        const auto sum = tried([&] { return *number + *number; });
        demand(!sum || *sum - *number == *number);
        for (const short scale : {short(0), short(3), short(18)}) {
            const auto scaled = tried([&] {
                decimal copy = *number;
                copy.setScale(scale);
                return copy;
            });
            demand(!scaled || scaled->scale() == scale);
            demand(!scaled || scale < number->scale() || *scaled == *number);
        }
    }
}

void checkDates(const QString &text)
{
    const datetime system(text);
    demand(system.isNull() || datetime(system.toString()) == system);
    for (const QLocale::FormatType type : {QLocale::ShortFormat, QLocale::LongFormat}) {
        const datetime date = datetime::fromSystemString(text, true, type);
        demand(datetime::fromSystemString(date.toSystemString(true, type), true, type) == date);
        const datetime moment = datetime::fromSystemString(text, false, type);
        demand(datetime::fromSystemString(moment.toSystemString(false, type), false, type) ==
               moment);
    }
}

void checkTyping(const QString &text, const QLocale &locale)
{
    DecimalValidator validator(4, true, true);
    validator.setLocale(locale);
    QString shown = text;
    int caret = text.size() / 2;
    const QValidator::State state = validator.validate(shown, caret);
    QString again = shown;
    int caretAgain = caret;
    demand(state == QValidator::Invalid ||
           (validator.validate(again, caretAgain) == state && again == shown &&
            caretAgain == caret && caret >= 0 && caret <= shown.size()));
    if (state == QValidator::Acceptable)
        demand(validator.textToDecimal(shown) == validator.textToDecimal(text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QList<QLocale> Locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    if (size < 2)
        return 0;
    const QLocale &locale = Locales.at((data[0] << 8 | data[1]) % Locales.size());
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data) + 2, int(size) - 2);
    checkNumbers(text, locale);
    checkDates(text);
    checkTyping(text, locale);
    return 0;
}
