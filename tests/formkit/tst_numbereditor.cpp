#include "support/stricttest.h"

#include <formkit/decimalvalidator.h>
#include <formkit/quantityeditor.h>

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>
#include <QRandomGenerator>

namespace {

// A key that types any character: QTest knows Latin ones only.
void type(QWidget &editor, const QString &text)
{
    for (const QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(&editor, &press);
    }
}

void press(QWidget &editor, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&editor, &event);
}

void paste(QLineEdit &editor, const QString &text)
{
    QApplication::clipboard()->setText(text);
    editor.paste();
}

void compose(QWidget &editor, const QString &text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(&editor, &event);
}

// Drops at the end of the text, which is at the right. (The application would hand the event
// to the target of a real drag.)
void drop(QWidget &editor, const QString &text)
{
    QMimeData data;
    data.setText(text);
    QDropEvent event(QPointF(editor.width() - 2, editor.height() / 2), Qt::CopyAction, &data,
                     Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject &>(editor).event(&event);
}

void enter(NumberEditor &editor, const QString &way, const QString &text)
{
    if (way == "typed")
        type(editor, text);
    else if (way == "pasted")
        paste(editor, text);
    else if (way == "composed")
        compose(editor, text);
    else
        drop(editor, text);
}

// The text of an editor with '|' at the caret.
QString seen(const NumberEditor &editor)
{
    return editor.text().insert(editor.cursorPosition(), '|');
}

// A shown text without its group separators.
QString ungrouped(const QString &text, const QLocale &locale)
{
    static const QString Blanks = QStringLiteral(" \u00a0\u2009\u202f");
    static const QString Apostrophes = QStringLiteral("'’");
    const QChar group = locale.groupSeparator();
    QString rest;
    for (const QChar c : text) {
        if (c != group && !(Blanks.contains(group) && Blanks.contains(c)) &&
            !(Apostrophes.contains(group) && Apostrophes.contains(c)))
            rest += c;
    }
    return rest;
}

// Reads a shown text without the library: the value that an editor must have.
QString readIndependently(const QString &text, const QLocale &locale)
{
    QString number;
    for (const QChar c : ungrouped(text, locale)) {
        number += c == locale.negativeSign()   ? QChar('-')
                  : c == locale.positiveSign() ? QChar('+')
                  : c == locale.decimalPoint() ? QChar('.')
                  : uint(c.unicode()) - locale.zeroDigit().unicode() <= 9u
                      ? QChar('0' + c.digitValue())
                      : c;
    }
    static const QRegularExpression Form("^([-+]?)0*(\\d*?)(?:\\.(\\d*))?$");
    const QRegularExpressionMatch match = Form.match(number);
    if (!match.hasMatch() || !number.contains(QRegularExpression("\\d")))
        return text;
    QString value = match.captured(2).isEmpty() ? "0" : match.captured(2);
    if (!match.captured(3).isEmpty())
        value += '.' + match.captured(3);
    const bool negative = match.captured(1) == "-" && value.contains(QRegularExpression("[1-9]"));
    return negative ? '-' + value : value;
}

QList<QLocale> allLocales()
{
    return QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
}

} // namespace

class NumberEditorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void editing_data();
    void editing();
    void randomEdits();
    void refusedTexts_data();
    void refusedTexts();
    void misplacedGroups_data();
    void misplacedGroups();
    void values_data();
    void values();
    void settingIsSilent();
    void aLocaleThatChanges();
    void quantities();
};

// Below, texts are written with ',' for groups and '.' for the point; `western` shows in
// groups of three, `indian` as in 12,34,567.
void NumberEditorTest::editing_data()
{
    QTest::addColumn<QString>("point");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("typedGroup");
    QTest::addColumn<QString>("minus");
    QTest::addColumn<int>("zero");
    QTest::addColumn<bool>("indian");
    const auto row = [](const char *name, const char *symbols, const char *typedGroup, int zero,
                        bool indian) {
        const QString s = QString::fromUtf8(symbols);
        QTest::newRow(name) << s.mid(0, 1) << s.mid(1, 1) << QString::fromUtf8(typedGroup)
                            << s.mid(2, 1) << zero << indian;
    };
    row("en_US", ".,-", ",", '0', false);
    row("ru_RU", ",\u00a0-", " ", '0', false);
    row("fr_FR", ",\u202f-", " ", '0', false);
    row("de_DE", ",.-", ".", '0', false);
    row("de_CH", ".’-", "'", '0', false);
    row("sv_SE", ",\u00a0−", " ", '0', false);
    row("nb_NO", ",\u00a0−", " ", '0', false);
    row("pl_PL", ",\u00a0-", " ", '0', false);
    row("en_IN", ".,-", ",", '0', true);
    row("hi_IN", ".,-", ",", '0', true);
    row("ar_EG", "٫٬-", "٬", 0x660, false);
    row("fa_IR", "٫٬-", "٬", 0x6f0, false);
}

void NumberEditorTest::editing()
{
    QFETCH(QString, point);
    QFETCH(QString, group);
    QFETCH(QString, typedGroup);
    QFETCH(QString, minus);
    QFETCH(int, zero);
    QFETCH(bool, indian);
    NumberEditor editor;
    editor.decimalValidator()->setLocale(QLocale(QTest::currentDataTag()));
    const auto shows = [&](const char *western, const char *asIndian) {
        QString wanted;
        for (const QChar c : QString(indian ? asIndian : western))
            wanted += c == ','      ? group
                      : c == '.'    ? point
                      : c == '-'    ? minus
                      : c.isDigit() ? QString(QChar(zero + c.digitValue()))
                                    : QString(c);
        if (seen(editor) != wanted)
            qDebug() << seen(editor) << "instead of" << wanted;
        return seen(editor) == wanted;
    };

    type(editor, "1234567" + point + "89");
    QVERIFY(shows("1,234,567.89|", "12,34,567.89|"));
    QCOMPARE(editor.getValue(), QString("1234567.89"));
    press(editor, Qt::Key_Home);
    press(editor, Qt::Key_Delete);
    QVERIFY(shows("|234,567.89", "|2,34,567.89"));
    editor.setCursorPosition(indian ? 3 : 2);
    type(editor, QString(QChar(zero + 9)));
    QVERIFY(shows("2,39|4,567.89", "23,9|4,567.89"));
    press(editor, Qt::Key_Right);
    press(editor, Qt::Key_Delete);
    QVERIFY(shows("2,394,|567.89", "23,94,|567.89"));
    QCOMPARE(editor.getValue(), QString("2394567.89"));
    press(editor, Qt::Key_Delete);
    QVERIFY(shows("239,4|67.89", "2,39,4|67.89"));
    press(editor, Qt::Key_Backspace);
    QVERIFY(shows("23,9|67.89", "23,9|67.89"));
    press(editor, Qt::Key_Left);
    press(editor, Qt::Key_Backspace);
    QVERIFY(shows("23|,967.89", "23|,967.89"));
    press(editor, Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(editor.text().left(2), QString(QChar(zero + 2)) + QChar(zero + 3));
    QCOMPARE(editor.getValue(), readIndependently(editor.text(), QLocale(QTest::currentDataTag())));
    QVERIFY(editor.getValue() != "23967.89");

    editor.selectAll();
    paste(editor, "-9" + typedGroup + "876" + typedGroup + "543" + point + "21");
    QVERIFY(shows("-9,876,543.21|", "-98,76,543.21|"));
    QCOMPARE(editor.getValue(), QString("-9876543.21"));
    editor.setCursorPosition(2);
    paste(editor, "00");
    QVERIFY(shows("-900|,876,543.21", "-90,0|8,76,543.21"));
    QCOMPARE(editor.getValue(), QString("-900876543.21"));
    editor.selectAll();
    press(editor, Qt::Key_Delete);
    QCOMPARE(editor.getValue(), QString());
    type(editor, "-");
    QCOMPARE(seen(editor), QString("-|"));
    QCOMPARE(editor.getDecimal(), decimal::zero);
}

// Whatever is done to it, an editor's value is what an independent reading of its text gives.
// What is typed leaves the caret in front of the same characters, unless some fall away.
void NumberEditorTest::randomEdits()
{
    const quint32 seed = 20240229;
    qDebug() << "seed" << seed;
    QRandomGenerator random(seed);
    const int keys[] = {Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Left,
                        Qt::Key_Right,     Qt::Key_Home,   Qt::Key_End};
    const Qt::KeyboardModifiers modifiers[] = {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier,
                                               Qt::ControlModifier};
    for (const QLocale &locale : allLocales()) {
        NumberEditor editor(nullptr, 4);
        editor.decimalValidator()->setLocale(locale);
        const QString alphabet = QString(locale.groupSeparator()) + locale.decimalPoint() +
                                 locale.decimalPoint() + locale.negativeSign() +
                                 "0123456789012345678901234567-+ 'x";
        const auto someText = [&](int size) {
            QString text;
            while (size-- > 0) {
                const QChar c = alphabet.at(random.bounded(alphabet.size()));
                const bool native = c.isDigit() && random.bounded(2);
                text += native ? QChar(locale.zeroDigit().unicode() + c.digitValue()) : c;
            }
            return text;
        };
        for (int edit = 0; edit < 166; ++edit) {
            const QString before = seen(editor);
            const int sizeBefore = ungrouped(editor.text(), locale).size();
            const QString tail = ungrouped(editor.text().mid(editor.cursorPosition()), locale);
            const int what = editor.hasSelectedText() ? random.bounded(8) : random.bounded(20);
            if (what < 2)
                enter(editor, what ? "pasted" : "composed", someText(random.bounded(8)));
            else if (what == 2)
                random.bounded(2) ? editor.undo() : editor.redo();
            else if (what == 3)
                editor.setValue(decimal(random.bounded(2000000) - 1000000, random.bounded(7)));
            else if (what < 7)
                press(editor, keys[random.bounded(6)], modifiers[random.bounded(4)]);
            else
                type(editor, someText(1));

            const QString story =
                locale.name() + ": " + before + " -> " + seen(editor) + " = " + editor.getValue();
            QVERIFY2(editor.getValue() == readIndependently(editor.text(), locale),
                     qPrintable(story));
            if (what > 7 && ungrouped(editor.text(), locale).size() == sizeBefore + 1)
                QVERIFY2(ungrouped(editor.text().mid(editor.cursorPosition()), locale) == tail,
                         qPrintable(story));
        }
    }
}

// Each way of entering text meets an editor that shows what its validator refuses.
void NumberEditorTest::refusedTexts_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("changes");
    QTest::newRow("garbage stays garbage") << "abc"
                                           << "5"
                                           << "abc" << 0;
    QTest::newRow("no digit behind too many") << "1.2345"
                                              << "6"
                                              << "1.2345" << 0;
    QTest::newRow("no letters") << "-1234.567"
                                << "x"
                                << "-1,234.567" << 0;
    QTest::newRow("not read as fifteen") << "1,5"
                                         << "0"
                                         << "1,5" << 0;
    QTest::newRow("beyond fifteen digits") << "12345678901234567"
                                           << "8"
                                           << "12,345,678,901,234,567" << 0;
    QTest::newRow("a group's blank") << "1 000"
                                     << "0"
                                     << "1 000" << 0;
    QTest::newRow("within the limits all is usual") << "1.2"
                                                    << "3"
                                                    << "1.23" << 1;
}

void NumberEditorTest::refusedTexts()
{
    QFETCH(QString, given);
    QFETCH(QString, entered);
    QFETCH(QString, shown);
    QFETCH(int, changes);
    for (const char *way : {"typed", "pasted", "composed", "dropped"}) {
        NumberEditor editor;
        editor.setValue(given);
        QSignalSpy changed(&editor, &NumberEditor::changedValue);
        QCOMPARE(editor.getValue(), given);
        enter(editor, way, entered);
        QVERIFY2(editor.text() == shown, way);
        QCOMPARE(changed.count(), changes);
        // Text goes away character by character, comes back, and makes room for a number.
        press(editor, Qt::Key_Backspace);
        QCOMPARE(changed.count(), changes + 1);
        editor.undo();
        enter(editor, way, "x");
        QVERIFY(!editor.text().contains('x'));
        editor.selectAll();
        type(editor, "7");
        QCOMPARE(editor.getValue(), QString("7"));
        enter(editor, way, "x");
        QCOMPARE(editor.text(), QString("7"));
    }
}

// No amount comes out that was not meant when more than a key's worth is entered at once.
void NumberEditorTest::misplacedGroups_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("value");
    QTest::newRow("a point for a comma") << "de_DE"
                                         << "1.50"
                                         << "7";
    QTest::newRow("a comma for a point") << "en_US"
                                         << "1,5"
                                         << "7";
    QTest::newRow("both turned round") << "en_US"
                                       << "1.234,56"
                                       << "7";
    QTest::newRow("too long a group") << "en_US"
                                      << "1,2345"
                                      << "7";
    QTest::newRow("right groups") << "de_DE"
                                  << "-1.234.567,5"
                                  << "-1234567.5";
    QTest::newRow("western groups in India") << "en_IN"
                                             << "1,234,567"
                                             << "1234567";
    QTest::newRow("blanks around") << "ru_RU"
                                   << " 1 234,5 "
                                   << "1234.5";
    QTest::newRow("cut off behind a separator") << "en_US"
                                                << "1,234,"
                                                << "1234";
}

void NumberEditorTest::misplacedGroups()
{
    QFETCH(QString, locale);
    QFETCH(QString, pasted);
    for (const char *way : {"pasted", "composed"}) {
        NumberEditor editor;
        editor.decimalValidator()->setLocale(QLocale(locale));
        type(editor, "7");
        editor.selectAll();
        enter(editor, way, pasted);
        QTEST(editor.getValue(), "value");
    }
    // Over a selection that begins like what is pasted.
    NumberEditor editor;
    editor.setValue("1500");
    editor.selectAll();
    paste(editor, "1,50");
    QCOMPARE(editor.getValue(), QString("1500"));
}

void NumberEditorTest::values_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("number");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<bool>("validIfNotZero");
    QTest::newRow("none") << ""
                          << "0" << false << false;
    QTest::newRow("lone sign") << "-"
                               << "0" << true << false;
    QTest::newRow("garbage") << "abc"
                             << "0" << true << false;
    QTest::newRow("not a number") << "nan"
                                  << "0" << true << false;
    QTest::newRow("zero") << "0"
                          << "0" << true << false;
    QTest::newRow("zeros") << "0.00"
                           << "0.00" << true << false;
    QTest::newRow("as good as zero") << "0.0000000000001"
                                     << "0.0000000000001" << true << false;
    QTest::newRow("a price") << "-12.50"
                             << "-12.50" << true << true;
    QTest::newRow("too large") << "99999999999999999999"
                               << "0" << true << true;
}

void NumberEditorTest::values()
{
    QFETCH(QString, value);
    QFETCH(QString, number);
    NumberEditor editor;
    editor.setValue(value);
    QCOMPARE(editor.getValue(), value);
    QCOMPARE(editor.getDecimal().toString(), number);
    QTEST(editor.isValid(), "valid");
    editor.setCanBeZero(false);
    QTEST(editor.isValid(), "validIfNotZero");
    QCOMPARE(editor.getDecimal().toString(), editor.isValid() ? number : QString("0"));
}

void NumberEditorTest::settingIsSilent()
{
    NumberEditor editor;
    QSignalSpy changed(&editor, &NumberEditor::changedValue);
    QCOMPARE(editor.metaObject()->userProperty().name(), "Value");
    editor.setProperty("Value", "1234.5");
    editor.setValue(decimal(u"-1234.50"));
    QCOMPARE(editor.text(), QString("-1,234.50"));
    QCOMPARE(changed.count(), 0);

    press(editor, Qt::Key_Backspace);
    press(editor, Qt::Key_Backspace);
    QCOMPARE(editor.text(), QString("-1,234."));
    QCOMPARE(changed.takeLast().first().toString(), QString("-1234"));
    const int changes = changed.count();
    editor.setCursorPosition(2);
    editor.setValue("-1234");
    press(editor, Qt::Key_End);
    press(editor, Qt::Key_Backspace);
    QCOMPARE(editor.text(), QString("-1,234"));
    QCOMPARE(changed.count(), changes);

    // A setting that outlaws the text leaves it to the user to shorten it.
    editor.setValue("12.34");
    editor.setDigits(1);
    type(editor, "5");
    QCOMPARE(editor.text(), QString("12.34"));
    press(editor, Qt::Key_Backspace);
    QCOMPARE(editor.getValue(), QString("12.3"));
}

void NumberEditorTest::aLocaleThatChanges()
{
    NumberEditor editor;
    editor.setValue("1234.5");
    QSignalSpy changed(&editor, &NumberEditor::changedValue);
    editor.decimalValidator()->setLocale(QLocale("de_DE"));
    QCOMPARE(editor.text(), QString("1.234,5"));
    type(editor, "6");
    QCOMPARE(changed.takeFirst().first().toString(), QString("1234.56"));
}

void NumberEditorTest::quantities()
{
    QuantityEditor editor;
    type(editor, "-1.5");
    QCOMPARE(editor.getValue(), QString("15"));
    paste(editor, ".0");
    QCOMPARE(editor.getValue(), QString("15"));
    editor.setCanBeZero(false);
    editor.setValue("0");
    QVERIFY(!editor.isValid());
    QVERIFY(!editor.hasAcceptableInput());
}

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale("en_US"));
    QApplication application(argc, argv);
    NumberEditorTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_numbereditor.moc"
