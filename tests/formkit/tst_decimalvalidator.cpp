#include "support/stricttest.h"

#include <formkit/decimalvalidator.h>
#include <hostapi/exception.h>

class DecimalValidatorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void judging_data();
    void judging();
    void completeTexts();
    void textsThatAreNoNumbers();
    void everyLocaleReadsWhatItWrites();
};

// The mark '|' in a text is the caret.
void DecimalValidatorTest::judging_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<int>("digits");
    QTest::addColumn<int>("numDigits");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char *name, const char *locale, int digits, int numDigits,
                        const char *flags, const char *typed, int state, const char *shown) {
        QTest::newRow(name) << locale << digits << numDigits << flags << QString::fromUtf8(typed)
                            << state << QString::fromUtf8(shown);
    };
    const int No = QValidator::Invalid, Yet = QValidator::Intermediate,
              Yes = QValidator::Acceptable;
    row("empty", "en_US", 2, 0, "-0", "|", Yet, "|");
    row("lone minus", "en_US", 2, 0, "-0", "-|", Yet, "-|");
    row("lone minus, none allowed", "en_US", 2, 0, "0", "-|", No, "");
    row("minus before a lone point", "en_US", 2, 0, "-0", "-.|", No, "");
    row("lone point", "en_US", 2, 0, "-0", ".|", No, "");
    row("lone separator", "en_US", 2, 0, "-0", ",|", Yet, ",|");
    row("minus behind", "en_US", 2, 0, "-0", "5-|", No, "");
    row("two points", "en_US", 2, 0, "-0", "1.5.|", No, "");
    row("exponent", "en_US", 2, 0, "-0", "1e5|", No, "");
    row("groups", "en_US", 2, 0, "-0", "-12,34567|", Yes, "-1,234,567|");
    row("narrow no-break groups", "fr_FR", 2, 0, "-0", "1234567|", Yes, "1\u202f234\u202f567|");
    row("plain space for a no-break one", "ru_RU", 2, 0, "-0", "1 234 5|67", Yes,
        "1\u00a0234\u00a05|67");
    row("ASCII apostrophe", "de_CH", 2, 0, "-0", "1'234'5|67.5", Yes, "1’234’5|67.5");
    row("ASCII minus", "sv_SE", 2, 0, "-0", "-5|", Yes, "−5|");
    row("ASCII minus, none allowed", "sv_SE", 2, 0, "0", "-5|", No, "");
    row("ASCII minus before the point", "sv_SE", 2, 0, "-0", "-,5|", Yes, "−,5|");
    row("ASCII digits become native", "fa_IR", 3, 0, "-0", "1234٫5|6", Yes, "۱٬۲۳۴٫۵|۶");
    row("native zeros", "ar_EG", 2, 0, "-0", "٠٠٧|", Yes, "٧|");
    row("digits of another script", "en_US", 2, 0, "-0", "५|", No, "");
    row("another script behind the point", "en_US", 2, 0, "-0", "1.५|", No, "");
    row("Indian groups", "en_IN", 2, 0, "-0", "12345678|", Yes, "1,23,45,678|");
    row("leading zeros", "en_US", 2, 0, "-0", "007|", Yes, "7|");
    row("caret among leading zeros", "en_US", 2, 0, "-0", "0|07", Yes, "7|");
    row("lone zero", "en_US", 2, 0, "-0", "0|", Yes, "0|");
    row("zeros before the point", "de_DE", 2, 0, "-0", "00,5|", Yes, "0,5|");
    row("plus falls away", "en_US", 2, 0, "-0", "+5|", Yes, "5|");
    row("plus before the point stays", "en_US", 2, 0, "-0", "+.5|", Yes, "+.5|");
    row("zeros count as digits", "en_US", 2, 2, "-0", "007|", No, "");
    row("integer digits", "en_US", 2, 2, "-0", "12.34|", Yes, "12.34|");
    row("no fraction", "en_US", 0, 0, "-0", "5.|", No, "");
    row("negative limits", "en_US", -1, -1, "-0", "5|", Yes, "5|");
    row("point not followed yet", "en_US", 2, 0, "-0", "5.|", Yes, "5.|");
    row("fraction digits", "en_US", 2, 0, "-0", "1.23|", Yes, "1.23|");
    row("too many fraction digits", "en_US", 2, 0, "-0", "1.234|", No, "");
    row("zero not allowed", "en_US", 2, 0, "-", "0.00|", Yet, "0.00|");
    row("zero allowed", "en_US", 2, 0, "-0", "0.00|", Yes, "0.00|");
    row("as good as zero", "en_US", 14, 0, "-", "0.0000000000001|", Yet, "0.0000000000001|");
    row("fifteen digits", "en_US", 2, 0, "-0", "999999999999999|", Yes, "999,999,999,999,999|");
    row("sixteen digits", "en_US", 2, 0, "-0", "1000000000000000|", No, "");
    row("five behind ten", "en_US", 9, 0, "-0", "1234567890.12345|", Yes, "1,234,567,890.12345|");
    row("six behind ten", "en_US", 9, 0, "-0", "1234567890.123456|", No, "");
    row("eighteen behind nothing", "en_US", 99, 0, "-0", ".123456789012345678|", Yes,
        ".123456789012345678|");
    row("nineteen behind nothing", "en_US", 99, 0, "-0", ".1234567890123456789|", No, "");
}

void DecimalValidatorTest::judging()
{
    QFETCH(QString, locale);
    QFETCH(int, digits);
    QFETCH(int, numDigits);
    QFETCH(QString, flags);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    DecimalValidator validator(digits, flags.contains('-'), flags.contains('0'));
    validator.setNumDigits(numDigits);
    validator.setLocale(QLocale(locale));

    int pos = typed.indexOf('|');
    QString text = typed.remove('|');
    const QValidator::State state = validator.validate(text, pos);

    QTEST(int(state), "state");
    if (state != QValidator::Invalid)
        QCOMPARE(text.insert(pos, '|'), shown);
}

// Where validate() has a limit on digits, the judge of complete texts has none; it does not
// mind a minus either.
void DecimalValidatorTest::completeTexts()
{
    DecimalValidator validator(0, false, false);
    validator.setLocale(QLocale("de_DE"));
    QCOMPARE(validator.validateParsedString("-1.234.567.890.123.456,78"), QValidator::Acceptable);
    QCOMPARE(validator.validateParsedString("0,00"), QValidator::Intermediate);
    for (const char *text : {"", "-", ",", "1,2,3", "12345678901234567890", "abc"})
        QCOMPARE(validator.validateParsedString(text), QValidator::Invalid);
    validator.setCanBeZero(true);
    QCOMPARE(validator.validateParsedString("0,00"), QValidator::Acceptable);
}

void DecimalValidatorTest::textsThatAreNoNumbers()
{
    const DecimalValidator validator(2, true, true);
    for (const char *text : {"abc", "1.2.3", "1-", "--1"}) {
        try {
            validator.textToDecimal(text);
            QFAIL(text);
        } catch (const QString &error) {
            QCOMPARE(error, QLatin1String("Invalid string for decimal: ") + text);
        }
    }
    for (const char *text : {"", "-", ".", "1.0000000000000000000", "99999999999999999999"})
        QVERIFY_EXCEPTION_THROWN(validator.textToDecimal(text), Exception);
}

void DecimalValidatorTest::everyLocaleReadsWhatItWrites()
{
    DecimalValidator validator(4, true, true);
    const decimal numbers[] = {decimal(u"-123456789012345.678"), decimal(u"90071992547409.93"),
                               decimal(u"0.5000"), decimal(u"-0.05"), decimal(u"1234")};
    for (const QLocale &locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        validator.setLocale(locale);
        for (const decimal &number : numbers) {
            QString text = validator.decimalToText(number);
            const decimal readBack = validator.textToDecimal(text);
            QVERIFY2(readBack.toString() == number.toString(), qPrintable(locale.name() + text));
            const QString written = text;
            int pos = text.size();
            const bool fits = number.toString().remove('-').size() <= 16;
            QCOMPARE(validator.validate(text, pos),
                     fits ? QValidator::Acceptable : QValidator::Invalid);
            if (fits)
                QVERIFY2(text == written && pos == text.size(), qPrintable(locale.name() + text));
        }
    }
}

QTEST_GUILESS_MAIN(DecimalValidatorTest)

#include "tst_decimalvalidator.moc"
