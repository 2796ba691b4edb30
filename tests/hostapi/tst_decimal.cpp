#include "support/stricttest.h"

#include <hostapi/decimal.h>
#include <hostapi/exception.h>
#include <hostapi/localesymbols.h>

#include <functional>
#include <limits>

namespace {

__extension__ typedef __int128 Wide;

constexpr qint64 Max = std::numeric_limits<qint64>::max();
constexpr qint64 Min = std::numeric_limits<qint64>::min();

const QList<QLocale> everyLocale =
    QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);

Wide atScale18(const decimal &number)
{
    Wide wide = number.word();
    for (int scale = number.scale(); scale < decimal::MaxScale; ++scale)
        wide *= 10;
    return wide;
}

// What an operation gives, or what it throws.
QString outcome(const std::function<decimal()> &operation)
{
    try {
        return operation().toString();
    } catch (const Exception &failure) {
        return failure.text();
    }
}

} // namespace

class DecimalTest : public StrictTest
{
    Q_OBJECT

private slots:
    void texts();
    void arithmetic();
    void writesLikeEveryLocale();
};

// What comes of a text of the locale (of the system form where none is named) at a scale.
void DecimalTest::texts()
{
    using Row = std::tuple<QString, QString, int, QString>;
    const QString refused = "Can't convert from '%1'' to decimal";
    QVector<Row> rows = {
        {"", "-0.00", 2, "0.00"},
        {"", "05.", 0, "5"},
        {"", "9.223372036854775807", 18, "9.223372036854775807"},
        {"", "2.5", 0, "3"},
        {"", "-2.5", 0, "-3"},
        {"", "-0.500000000000000000", 0, "-1"},
        {"", "-922337203685477580", 1, "-922337203685477580.0"},
        {"", "-922337203685477581", 1, "Decimal overflow."},
        {"", "1", 19, "Decimal scale 19 is outside 0 to 18."},
        {"fr_FR", "1 234,5", 1, "1234.5"},
        {"en_US", "1'234", 0, refused},
        {"en_US", "1,5", 1, "15.0"}, // a comma groups there
        {"en_US", "\u22125", 0, refused},
        {"ar_EG", "1\u0662\u066b5", 1, "12.5"},
        {"ar_EG", "\u06f1", 0, refused}, // a digit of Persian
        {"de_DE", ",", 1, refused},
        {"de_DE", ".-5", 0, refused},
    };
    const QString garbage = "|-|.|-.|1e5|inf|nan| 1|1 |1,5|--1|1-|1.2.|٣|−5|%1%2|1\u200e|²|"
                            "9223372036854775808|-92233720368547758.09|0.1234567890123456789";
    for (const QString &garbled : garbage.split('|'))
        rows << Row{"", garbled, 0, refused};
    for (const auto &[locale, text, scale, result] : qAsConst(rows)) {
        const bool system = locale.isEmpty();
        const LocaleSymbols symbols{QLocale(locale)};
        QCOMPARE(system ? decimal::canConvert(text, false)
                        : decimal::canConvert(text, false, symbols),
                 result != refused);
        const auto read = [&, system, text = text, scale = scale] {
            if (!system)
                return decimal::fromLocaleString(text, symbols, scale);
            decimal number(text);
            number.setScale(short(scale));
            return number;
        };
        QCOMPARE(outcome(read), QString(result).replace("%1", text));
    }
    QVERIFY(decimal::canConvert(u"", true));
}

void DecimalTest::arithmetic()
{
    const QString overflow = "Decimal overflow.";
    QCOMPARE(outcome([] { return decimal(Max, 0) + 1; }), overflow);
    QCOMPARE(outcome([] { return -decimal(Min); }), overflow);
    QCOMPARE(outcome([] { return decimal(10) + decimal(1, 18); }), overflow);
    std::vector<decimal> numbers;
    for (const short scale : {0, 1, 2, 9, 17, 18}) {
        for (const qint64 word : {Min, Min + 1, qint64(-1500), qint64(0), qint64(15), Max})
            numbers.emplace_back(word, scale);
    }
    for (const decimal &a : numbers) {
        for (const decimal &b : numbers) {
            const Wide difference = atScale18(a) - atScale18(b);
            QCOMPARE(a.compare(b), difference < 0 ? -1 : difference > 0 ? 1 : 0);
            try {
                QVERIFY(atScale18(a + b) == atScale18(a) + atScale18(b));
                QVERIFY(atScale18(a - b) == difference);
            } catch (const Exception &failure) {
                QCOMPARE(failure.text(), overflow);
            }
        }
    }
}

void DecimalTest::writesLikeEveryLocale()
{
    for (QLocale locale : everyLocale) {
        locale.setNumberOptions(QLocale::DefaultNumberOptions);
        for (const qint64 word :
             {Min, Q_INT64_C(-1234567890), Q_INT64_C(-107), Q_INT64_C(0), Max}) {
            const int cents = int(qAbs(word % 100));
            const QString shown = locale.toString(word / 100) + locale.decimalPoint() +
                                  locale.toString(cents / 10) + locale.toString(cents % 10);
            const decimal price(word, 2);
            const QString keyed = price.toString().replace('.', locale.decimalPoint());
            QCOMPARE(decimal(word).toSystemString(locale), locale.toString(word));
            QCOMPARE(price.toSystemString(locale), shown);
            for (const QString &text : {shown, keyed})
                QCOMPARE(decimal::fromLocaleString(text, locale, 2).word(), word);
        }
    }
}

QTEST_GUILESS_MAIN(DecimalTest)
#include "tst_decimal.moc"
