#include <formkit/decimalvalidator.h>
#include <formkit/numbereditor.h>
#include <hostapi/exception.h>

#include <support/datafile.h>
#include <support/stricttest.h>

#include <QApplication>
#include <QClipboard>
#include <QRandomGenerator>

namespace {

// Letters that stand for keys in the tests' texts.
const QString Letters = "<>^$DBWSAZY";
const QStringList Keys =
    QString("Left Right Home End Del Backspace Ctrl+Del Shift+Left Ctrl+A Ctrl+Z Ctrl+Shift+Z")
        .split(' ');

// QTest's keyClicks() knows Latin characters only.
void type(NumberEditor &editor, const QString &text)
{
    for (const QChar c : text) {
        const int key = QKeySequence(Keys.value(Letters.indexOf(c)))[0];
        QKeyEvent press(QEvent::KeyPress, key & ~Qt::KeyboardModifierMask,
                        Qt::KeyboardModifiers(key & Qt::KeyboardModifierMask),
                        key ? QString() : QString(c));
        QApplication::sendEvent(&editor, &press);
    }
}

void paste(NumberEditor &editor, const QString &text)
{
    QApplication::clipboard()->setText(text);
    editor.paste();
}

// The text of an editor with '|' at the caret.
QString seen(const NumberEditor &editor)
{
    return editor.text().insert(editor.cursorPosition(), '|');
}

// A shown text without its group separators.
QString ungrouped(QString text, const QLocale &locale)
{
    for (const QString &alike : {QStringLiteral(" \u00a0\u2009\u202f"), QStringLiteral("'’")}) {
        if (alike.contains(locale.groupSeparator()))
            text.remove(QRegularExpression('[' + alike + ']'));
    }
    return text.remove(locale.groupSeparator());
}

// Reads a shown text without the library: the value that an editor must have.
QString readIndependently(const QString &text, const QLocale &locale)
{
    QString number = ungrouped(text, locale);
    for (QChar &c : number) {
        c = c == locale.negativeSign()                               ? '-'
            : c == locale.positiveSign()                             ? '+'
            : c == locale.decimalPoint()                             ? '.'
            : uint(c.unicode()) - locale.zeroDigit().unicode() <= 9u ? QChar('0' + c.digitValue())
                                                                     : c;
    }
    static const QRegularExpression Form("^([-+]?)(?=.*[0-9])0*([0-9]*)(?:\\.([0-9]*))?$");
    const QRegularExpressionMatch match = Form.match(number);
    if (!match.hasMatch())
        return text;
    QString value = match.captured(2).isEmpty() ? "0" : match.captured(2);
    if (!match.captured(3).isEmpty())
        value += '.' + match.captured(3);
    const bool negative = match.captured(1) == "-" && value.contains(QRegularExpression("[1-9]"));
    return negative ? '-' + value : value;
}

} // namespace

class NumberEditorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void typing();
    void randomEdits();
    void values();
    void verdicts();
    void completeTexts();
};

// In each locale: its point, group separator, minus and zero, what a person types as the
// separator, and whether it groups as in 12,34,567.
void NumberEditorTest::typing()
{
    const QString locales = "en_US .,-0,|ru_RU ,\u00a0-0_|fr_FR ,\u202f-0_|de_DE ,.-0.|"
                            "de_CH .’-0'|sv_SE ,\u00a0−0_|nb_NO ,\u00a0−0_|pl_PL ,\u00a0-0_|"
                            "en_IN .,-0,i|hi_IN .,-0,i|ar_EG ٫٬-٠٬|fa_IR ٫٬-۰٬";
    for (const QString &locale : locales.split('|')) {
        const QString symbols = locale.mid(6).replace('_', ' ');
        const auto localized = [&symbols](QString text) {
            for (QChar &c : text) {
                const int symbol = QStringLiteral(".,-").indexOf(c);
                c = symbol >= 0   ? symbols.at(symbol)
                    : c.isDigit() ? QChar(symbols.at(3).unicode() + c.digitValue())
                                  : c;
            }
            return text;
        };
        NumberEditor editor;
        editor.decimalValidator()->setLocale(QLocale(locale.left(5)));
        for (const DataRow &row : rowsOf("stories/typing.txt")) {
            type(editor, localized(row[0]));
            QVERIFY2(seen(editor) == localized(row[symbols.endsWith('i') ? 2 : 1]),
                     qPrintable(locale + ": " + seen(editor)));
            QCOMPARE(editor.getValue(), row[3]);
        }
        // A whole text with the separators that a person types.
        QString pasted = localized("-9_876_543.21").replace('_', symbols.at(4));
        paste(editor, pasted);
        QCOMPARE(editor.getValue(), QString("-9876543.21"));
        type(editor, "^>>");
        paste(editor, "00");
        QCOMPARE(editor.getValue(), QString("-900876543.21"));
        type(editor, "A-");
        QCOMPARE(editor.getValue(), QString("-"));
    }
}

// Whatever is done to it, an editor's value is what an independent reading of its text gives.
// What is typed leaves the caret in front of the same characters, unless some fall away.
void NumberEditorTest::randomEdits()
{
    QRandomGenerator random(20240229);
    const QString keys = "<>^$DBWSAZY<>SSSDBDB";
    for (const QLocale &locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        NumberEditor editor(nullptr, 4);
        editor.decimalValidator()->setLocale(locale);
        const QString digits = "01234567890123456789-+ 'x" + QString(locale.groupSeparator()) +
                               locale.decimalPoint() + locale.decimalPoint() +
                               locale.negativeSign();
        const auto digit = [&] {
            const QChar c = digits.at(random.bounded(digits.size()));
            const bool native = c.isDigit() && random.bounded(2);
            return native ? QChar(locale.zeroDigit().unicode() + c.digitValue()) : c;
        };
        for (int edit = 0; edit < 166; ++edit) {
            const QString before = seen(editor);
            const bool selected = editor.hasSelectedText();
            const int size = ungrouped(editor.text(), locale).size();
            const QString tail = ungrouped(editor.text().mid(editor.cursorPosition()), locale);
            const int what = random.bounded(16);
            if (what < 2) {
                QString text;
                for (int i = random.bounded(8); i > 0; --i)
                    text += digit();
                paste(editor, text);
            } else if (what == 2) {
                editor.setValue(decimal(random.bounded(2000000) - 1000000, random.bounded(7)));
            } else {
                type(editor, what < 9 ? QChar(digit()) : keys.at(random.bounded(keys.size())));
            }
            const QString story =
                locale.name() + ": " + before + " -> " + seen(editor) + " = " + editor.getValue();
            QVERIFY2(editor.getValue() == readIndependently(editor.text(), locale),
                     qPrintable(story));
            if (what > 2 && what < 9 && !selected &&
                ungrouped(editor.text(), locale).size() == size + 1)
                QVERIFY2(ungrouped(editor.text().mid(editor.cursorPosition()), locale) == tail,
                         qPrintable(story));
        }
    }
}

void NumberEditorTest::values()
{
    for (const DataRow &row : rowsOf("stories/values.txt")) {
        NumberEditor editor;
        editor.setValue(row[0]);
        for (const bool canBeZero : {true, false}) {
            editor.setCanBeZero(canBeZero);
            const QString verdict = editor.isValid() ? "valid" : "invalid";
            QCOMPARE(verdict + ' ' + editor.getDecimal().toString(), row[canBeZero ? 1 : 2]);
        }
    }
}

// Where validate() has a limit on digits, the judge of complete texts has none; it does not
// mind a minus either.
void NumberEditorTest::completeTexts()
{
    DecimalValidator validator(0, false, false);
    validator.setLocale(QLocale("de_DE"));
    QCOMPARE(validator.validateParsedString("-1.234.567.890.123.456,78"), QValidator::Acceptable);
    QCOMPARE(validator.validateParsedString("0,00"), QValidator::Intermediate);
    for (const char *text : {"", "-", ",", "1,2,3", "12345678901234567890", "abc"})
        QCOMPARE(validator.validateParsedString(text), QValidator::Invalid);
    validator.setLocale(QLocale("en_US"));
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

void NumberEditorTest::verdicts()
{
    for (const DataRow &row : rowsOf("stories/decimals.txt")) {
        DecimalValidator validator(row[1].toInt(), row[3].contains('-'), row[3].contains('0'));
        validator.setNumDigits(row[2].toInt());
        validator.setLocale(QLocale(row[0]));
        int pos = row[4].indexOf('|');
        QString text = QString(row[4]).remove('|');
        const QString verdict = QStringList({"No", "Yet", "Yes"})[validator.validate(text, pos)];
        QVERIFY2(verdict == row[5], qPrintable(row[4]));
        if (verdict != "No")
            QCOMPARE(text.insert(pos, '|').replace(QChar::Nbsp, '_'), row[6]);
    }
}

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale("en_US"));
    QApplication application(argc, argv);
    NumberEditorTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_numbereditor.moc"
