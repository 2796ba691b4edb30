#include "support/stricttest.h"

#include <formkit/decimalvalidator.h>
#include <hostapi/exception.h>

class DecimalValidatorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void judging();
    void completeTexts();
    void textsThatAreNoNumbers();
};

// The limits of digits, whether a minus and a zero are allowed, what is typed, the verdict, and
// what is shown then. The mark '|' in a text is the caret.
void DecimalValidatorTest::judging()
{
    const auto No = QValidator::Invalid, Yet = QValidator::Intermediate,
               Yes = QValidator::Acceptable;
    using Row = std::tuple<QString, int, int, QString, QString, QValidator::State, QString>;
    const Row rows[] = {
        {"en_US", 2, 0, "-0", "|", Yet, "|"},
        {"en_US", 2, 0, "-0", "-|", Yet, "-|"},
        {"en_US", 2, 0, "0", "-|", No, ""},
        {"en_US", 2, 0, "-0", "-.|", No, ""},
        {"en_US", 2, 0, "-0", ",|", Yet, ",|"},
        {"en_US", 2, 0, "-0", "1.5.|", No, ""},
        {"en_US", 2, 0, "-0", "-12,34567|", Yes, "-1,234,567|"},
        {"ru_RU", 2, 0, "-0", "1 234 5|67", Yes, "1\u00a0234\u00a05|67"},
        {"sv_SE", 2, 0, "-0", "-,5|", Yes, "−,5|"},
        {"ar_EG", 2, 0, "-0", "٠٠٧|", Yes, "٧|"},
        {"fa_IR", 3, 0, "-0", "1234٫5|6", Yes, "۱٬۲۳۴٫۵|۶"},
        {"en_US", 2, 0, "-0", "५|", No, ""},
        {"en_US", 2, 0, "-0", "1.५|", No, ""},
        {"en_US", 2, 0, "-0", "0|07", Yes, "7|"},
        {"en_US", 2, 0, "-0", "0|", Yes, "0|"},
        {"de_DE", 2, 0, "-0", "00,5|", Yes, "0,5|"},
        {"en_US", 2, 0, "-0", "+5|", Yes, "5|"},
        {"en_US", 2, 0, "-0", "+.5|", Yes, "+.5|"},
        {"en_US", 2, 2, "-0", "007|", No, ""},
        {"en_US", 0, 0, "-0", "5.|", No, ""},
        {"en_US", 2, 0, "-0", "5.|", Yes, "5.|"},
        {"en_US", 2, 0, "-0", "1.234|", No, ""},
        {"en_US", 2, 0, "-", "0.00|", Yet, "0.00|"},
        {"en_US", 14, 0, "-", "0.0000000000001|", Yet, "0.0000000000001|"},
        {"en_US", 2, 0, "-0", "999999999999999|", Yes, "999,999,999,999,999|"},
        {"en_US", 2, 0, "-0", "1000000000000000|", No, ""},
        {"en_US", 9, 0, "-0", "1234567890.12345|", Yes, "1,234,567,890.12345|"},
        {"en_US", 9, 0, "-0", "1234567890.123456|", No, ""},
        {"en_US", 99, 0, "-0", ".123456789012345678|", Yes, ".123456789012345678|"},
    };
    for (const auto &[locale, digits, numDigits, flags, typed, state, shown] : rows) {
        DecimalValidator validator(digits, flags.contains('-'), flags.contains('0'));
        validator.setNumDigits(numDigits);
        validator.setLocale(QLocale(locale));
        int pos = typed.indexOf('|');
        QString text = QString(typed).remove('|');
        QVERIFY2(validator.validate(text, pos) == state, qPrintable(typed));
        if (state != No)
            QCOMPARE(text.insert(pos, '|'), shown);
    }
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
        QString error;
        try {
            validator.textToDecimal(text);
        } catch (const QString &thrown) {
            error = thrown;
        }
        QCOMPARE(error, QLatin1String("Invalid string for decimal: ") + text);
    }
    for (const char *text : {"", "-", ".", "99999999999999999999"})
        QVERIFY_EXCEPTION_THROWN(validator.textToDecimal(text), Exception);
}

QTEST_GUILESS_MAIN(DecimalValidatorTest)
#include "tst_decimalvalidator.moc"
