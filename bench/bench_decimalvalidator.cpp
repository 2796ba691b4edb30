// SPDX-License-Identifier: BSD-3-Clause
// DecimalValidator beside QDoubleValidator on the same twelve-digit texts: one that is grouped
// already, and one whose groups must move because the last digit was just typed.
#include <formkit/decimalvalidator.h>

#include <QDoubleValidator>

#include <benchmark/benchmark.h>

namespace {

const QString Grouped = QStringLiteral("123,456,789,012");
const QString JustTyped = QStringLiteral("12,345,678,9012");

void run(benchmark::State &state, QValidator &validator, const QString &text)
{
    validator.setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    for (auto _ : state) {
        QString input = text;
        int pos = input.size();
        benchmark::DoNotOptimize(validator.validate(input, pos));
        benchmark::DoNotOptimize(input);
    }
}

void decimalValidator(benchmark::State &state, const QString &text)
{
    DecimalValidator validator(2, true, true);
    run(state, validator, text);
}

void doubleValidator(benchmark::State &state, const QString &text)
{
    QDoubleValidator validator(-1e15, 1e15, 2);
    validator.setNotation(QDoubleValidator::StandardNotation);
    run(state, validator, text);
}

} // namespace

BENCHMARK_CAPTURE(decimalValidator, grouped, Grouped);
BENCHMARK_CAPTURE(doubleValidator, grouped, Grouped);
BENCHMARK_CAPTURE(decimalValidator, regrouping, JustTyped);
BENCHMARK_CAPTURE(doubleValidator, regrouping, JustTyped);

BENCHMARK_MAIN();
