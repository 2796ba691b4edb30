#include "support/stricttest.h"

#include <formkit/decimalvalidator.h>
#include <formkit/quantityeditor.h>

#include <QApplication>
#include <QClipboard>
#include <QRandomGenerator>

namespace {

// Letters that stand for keys in the tests' texts.
const QString Letters = "<>^$DBWSAZY";
const int Keys[] = {Qt::Key_Left,
                    Qt::Key_Right,
                    Qt::Key_Home,
                    Qt::Key_End,
                    Qt::Key_Delete,
                    Qt::Key_Backspace,
                    Qt::CTRL + Qt::Key_Delete,
                    Qt::SHIFT + Qt::Key_Left,
                    Qt::CTRL + Qt::Key_A,
                    Qt::CTRL + Qt::Key_Z,
                    Qt::CTRL + Qt::SHIFT + Qt::Key_Z};

// QTest's keyClicks() knows Latin characters only.
void type(NumberEditor &editor, const QString &text)
{
    for (const QChar c : text) {
        const int letter = Letters.indexOf(c);
        const int key = letter < 0 ? 0 : Keys[letter];
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

void compose(NumberEditor &editor, const QString &text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(&editor, &event);
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
    void editing_data();
    void editing();
    void randomEdits();
    void refusedTexts();
    void values();
    void settingIsSilent();
    void questions();
    void settingsThatChange();
};

// Per locale: its point, group separator, minus and zero, what a person types as the separator,
// and whether it groups as in 12,34,567.
void NumberEditorTest::editing_data()
{
    QTest::addColumn<QString>("symbols");
    const QString rows = "en_US .,-0,|ru_RU ,\u00a0-0_|fr_FR ,\u202f-0_|de_DE ,.-0.|de_CH .’-0'|"
                         "sv_SE ,\u00a0−0_|nb_NO ,\u00a0−0_|pl_PL ,\u00a0-0_|en_IN .,-0,i|"
                         "hi_IN .,-0,i|ar_EG ٫٬-٠٬|fa_IR ٫٬-۰٬";
    for (const QString &row : rows.split('|'))
        QTest::newRow(qPrintable(row.left(5))) << row.mid(6).replace('_', ' ');
}

void NumberEditorTest::editing()
{
    QFETCH(QString, symbols);
    NumberEditor editor;
    editor.decimalValidator()->setLocale(QLocale(QTest::currentDataTag()));
    const auto localized = [&symbols](QString text) {
        for (QChar &c : text) {
            const int symbol = QStringLiteral(".,-").indexOf(c);
            c = symbol >= 0   ? symbols.at(symbol)
                : c.isDigit() ? QChar(symbols.at(3).unicode() + c.digitValue())
                              : c;
        }
        return text;
    };
    const auto check = [&](const QString &keys, const char *western, const char *indian,
                           const QString &value) {
        type(editor, localized(keys));
        QCOMPARE(seen(editor), localized(symbols.endsWith('i') ? indian : western));
        QCOMPARE(editor.getValue(), value);
    };
    check("1234567.89", "1,234,567.89|", "12,34,567.89|", "1234567.89");
    check("^D", "|234,567.89", "|2,34,567.89", "234567.89");
    check(">9", "2,9|34,567.89", "29|,34,567.89", "2934567.89");
    check("$<<<<<<<D", "2,934,|567.89", "29,34,|567.89", "2934567.89");
    check("D", "293,4|67.89", "2,93,4|67.89", "293467.89");
    check("B", "29,3|67.89", "29,3|67.89", "29367.89");
    check("<B", "29|,367.89", "29|,367.89", "29367.89");
    type(editor, "W");
    QVERIFY(QStringList({"29", "29.89"}).contains(editor.getValue()));
    type(editor, "A");
    const QString group = symbols.mid(4, 1);
    paste(editor, "-9" + group + "876" + group + "543" + symbols.at(0) + "21");
    check("", "-9,876,543.21|", "-98,76,543.21|", "-9876543.21");
    type(editor, "^>>");
    paste(editor, "00");
    check("", "-900|,876,543.21", "-90,0|8,76,543.21", "-900876543.21");
    check("AD", "|", "|", "");
    type(editor, "-");
    QCOMPARE(editor.getValue(), QString("-"));
    QCOMPARE(editor.getDecimal(), decimal::zero);
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
                what ? paste(editor, text) : compose(editor, text);
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

// Where the editor shows what its validator refuses, and where more than a key's worth is entered
// in place of what is shown, no amount comes out that was not meant: the locale, the value that
// is set, the keys that prepare it, what is entered, and what is shown then.
void NumberEditorTest::refusedTexts()
{
    const QStringList rows[] = {
        {"en_US", "abc", "", "5", "abc"},
        {"en_US", "1.234567", "", "6", "1.234567"},
        {"en_US", "-1234.567", "", "x", "-1,234.567"},
        {"en_US", "1,5", "", "0", "1,5"},
        {"en_US", "1234567890123456", "", "7", "1,234,567,890,123,456"},
        {"en_US", "1.2", "", "3", "1.23"},
        {"de_DE", "1500", "A", "1.50", "1.500"},
        {"en_US", "1500", "A", "1.234,56", "1,500"},
        {"en_US", "1500", "A", "1,2345", "1,500"},
        {"de_DE", "1500", "A", "-1.234.567,5", "-1.234.567,5"},
        {"en_IN", "1500", "A", "1,234,567", "12,34,567"},
        {"ru_RU", "1500", "A", " 1 234,5 ", "1\u00a0234,5"},
        {"en_US", "1500", "A", "1,234,", "1,234"},
    };
    for (const auto enter : {type, paste, compose}) {
        for (const QStringList &row : rows) {
            NumberEditor editor(nullptr, 5);
            editor.decimalValidator()->setLocale(QLocale(row[0]));
            editor.setValue(row[1]);
            QCOMPARE(editor.getValue(), row[1]);
            if (enter == type && !row[2].isEmpty())
                continue;
            QSignalSpy changed(&editor, &NumberEditor::changedValue);
            type(editor, row[2]);
            enter(editor, row[3]);
            QCOMPARE(editor.text(), row[4]);
            QCOMPARE(changed.count(), int(editor.getValue() != row[1]));
            // Text goes away character by character, comes back, and makes room for a number.
            changed.clear();
            type(editor, "$B");
            QCOMPARE(changed.count(), 1);
            type(editor, "Z");
            enter(editor, "x");
            QVERIFY(!editor.text().contains('x'));
            type(editor, "A7");
            enter(editor, "x");
            QCOMPARE(editor.getValue(), QString("7"));
            // A key is never taken for more, whatever had been selected.
            editor.selectAll();
            editor.setValue("4321");
            type(editor, "5");
            QCOMPARE(editor.getValue(), QString("43215"));
        }
    }
}

// A value as a number, and whether it is valid where zero is allowed and where it is not.
void NumberEditorTest::values()
{
    const std::tuple<QString, QString, bool, bool> rows[] = {
        {"", "0", false, false},
        {"-", "0", true, false},
        {"nan", "0", true, false},
        {"0.00", "0.00", true, false},
        {"0.0000000000001", "0.0000000000001", true, false},
        {"-12.50", "-12.50", true, true},
        {"99999999999999999999", "0", true, true},
    };
    for (const auto &[value, number, valid, validIfNotZero] : rows) {
        NumberEditor editor;
        editor.setValue(value);
        QCOMPARE(editor.getDecimal().toString(), number);
        QVERIFY2(editor.isValid() == valid, qPrintable(value));
        editor.setCanBeZero(false);
        QVERIFY2(editor.isValid() == validIfNotZero, qPrintable(value));
        QCOMPARE(editor.getDecimal().toString(), validIfNotZero ? number : QString("0"));
    }
}

void NumberEditorTest::settingIsSilent()
{
    NumberEditor editor;
    QSignalSpy changed(&editor, &NumberEditor::changedValue);
    editor.setProperty("Value", "1234.5");
    editor.setValue(decimal(u"-1234.50"));
    QCOMPARE(editor.text(), QString("-1,234.50"));
    QCOMPARE(changed.count(), 0);
    // A point without digits is no change, and an equal value does not take it away.
    type(editor, "BB");
    QCOMPARE(changed.takeLast().first().toString(), QString("-1234"));
    changed.clear();
    editor.setValue("-1234");
    QCOMPARE(seen(editor), QString("-1,234.|"));
    editor.setValue("0012");
    type(editor, ".");
    QCOMPARE(editor.getValue(), QString("0012"));
    QCOMPARE(changed.count(), 0);
}

void NumberEditorTest::settingsThatChange()
{
    QuantityEditor editor;
    type(editor, "-12.34");
    QCOMPARE(editor.getValue(), QString("1234"));
    editor.decimalValidator()->setLocale(QLocale("de_DE"));
    QCOMPARE(editor.text(), QString("1.234"));
    // A setting that outlaws the text leaves it to the user to shorten it.
    editor.setNumDigits(2);
    type(editor, "5B");
    QCOMPARE(editor.getValue(), QString("123"));
    editor.setCanBeZero(false);
    type(editor, "A0");
    QVERIFY(!editor.hasAcceptableInput());
}

// What is asked about the text that is shown changes nothing, whatever is selected.
void NumberEditorTest::questions()
{
    NumberEditor editor;
    type(editor, "12345.6");
    editor.setSelection(1, 4);
    QVERIFY(editor.hasAcceptableInput());
    editor.setValue("1,5");
    QVERIFY(!editor.hasAcceptableInput());
    type(editor, "0");
    QCOMPARE(editor.text(), QString("1,5"));
}

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale("en_US"));
    QApplication application(argc, argv);
    NumberEditorTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_numbereditor.moc"
