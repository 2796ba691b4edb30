// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include <formkit/decimalvalidator.h>
#include <formkit/numbereditor.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>

#include <QAccessible>
#include <QApplication>
#include <QProxyStyle>
#include <QRandomGenerator>
#include <QToolTip>

Q_DECLARE_METATYPE(DataRow)

namespace {

// What is seen of a text: no direction marks.
QString visible(QString text)
{
    return text.remove(QRegularExpression("\\p{Cf}"));
}

// What is seen of a shown text without its group separators.
QString ungrouped(const QString &shown, const QLocale &locale)
{
    QString text = visible(shown);
    for (const QString &alike : {QStringLiteral(" \u00a0\u2009\u202f"), QStringLiteral("'’")}) {
        if (alike.contains(locale.groupSeparator()))
            text.remove(QRegularExpression('[' + alike + ']'));
    }
    return text.remove(locale.groupSeparator());
}

// Digits that take two characters are not shown.
ushort zeroOf(const QLocale &locale)
{
    const QString zero(locale.zeroDigit());
    return zero.size() == 1 ? zero.at(0).unicode() : ushort('0');
}

// Reads a shown text without the library: the value that an editor must have.
QString readIndependently(const QString &text, const QLocale &locale)
{
    QString number = ungrouped(text, locale);
    number.replace(visible(QString(locale.negativeSign())), "-")
        .replace(visible(QString(locale.positiveSign())), "+")
        .replace(QString(locale.decimalPoint()), ".");
    for (QChar &c : number) {
        if (uint(c.unicode()) - zeroOf(locale) <= 9u)
            c = QChar('0' + c.digitValue());
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

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale("en_US")); }
    void edits_data();
    void edits();
    void typing_data();
    void typing();
    void refusals();
    void randomEdits();
    void everyLocale();
    void values();
    void verdicts();
    void completeTexts();
};

void NumberEditorTest::edits_data()
{
    QTest::addColumn<DataRow>("row");
    for (const DataRow &row : rowsOf("stories/edits.txt"))
        QTest::addRow("%d: %s", row.line, qPrintable(row[0] + ' ' + row[1])) << row;
}

void NumberEditorTest::edits()
{
    QFETCH(DataRow, row);
    TestHost host;
    StoryPlayer player(&host, "numbers");
    auto *const editor = qobject_cast<NumberEditor *>(player.control("price"));
    QStringList said;
    connect(editor, &NumberEditor::refused, this, [&](const QString &reason) { said << reason; });
    player.act("locale " + row[0] + "; " + row[1]);
    QCOMPARE(player.answer("edited"), row[2]);
    QCOMPARE(editor->isValid() ? editor->getValue() : "invalid", row[3]);
    QVERIFY(editor->isValid() || !editor->hasAcceptableInput());
    QCOMPARE(said.join('/'), row[4]);
}

void NumberEditorTest::typing_data()
{
    QTest::addColumn<DataRow>("characters");
    for (const DataRow &row : rowsOf("stories/typing.txt")) {
        if (row[0] == "in")
            QTest::newRow(qPrintable(row[1])) << row;
    }
}

void NumberEditorTest::typing()
{
    QFETCH(DataRow, characters);
    const auto spelt = [&](QString text) {
        for (QChar &c : text) {
            const int place = QString(",.-").indexOf(c);
            if (place >= 0)
                c = (characters[2 + place] + '-').at(0);
            else if (c.isDigit())
                c = QChar(characters[5].front().unicode() + c.digitValue());
        }
        return text;
    };
    DataRow story = StoryFile("typing").stories.constFirst();
    static const QRegularExpression Typed("(?:edited=|type |paste )([^ ;]+)");
    for (int i = 1; i < story.size(); ++i) {
        const QString line = story[i];
        for (auto match = Typed.globalMatch(line); match.hasNext();) {
            const QRegularExpressionMatch text = match.next();
            story[i].replace(text.capturedStart(1), text.capturedLength(1),
                             spelt(text.captured(1)));
        }
    }
    TestHost host;
    StoryPlayer player(&host, "typing");
    player.act("locale " + characters[1]);
    player.play(story);
}

// A tool tip until the next key, a flash of the frame that is not repeated at once, and a frame as
// long as there is a doubt; no flash where the style animates nothing. The program can have it all
// to itself.
void NumberEditorTest::refusals()
{
    TestHost host;
    StoryPlayer player(&host, "numbers");
    auto *const editor = qobject_cast<NumberEditor *>(player.control("price"));
    auto *const frame = editor->findChild<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    const QString reason = "A number has one decimal point";
    player.act("type -");
    for (const auto toMenu : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
        QFocusEvent leave(QEvent::FocusOut, toMenu);
        QApplication::sendEvent(editor, &leave);
        QCOMPARE(editor->text(), QString("-"));
    }
    player.act("press Ctrl+A; type 1.5.");
    QCOMPARE(QToolTip::text(), reason);
    QCOMPARE(QAccessible::queryAccessibleInterface(frame)->text(QAccessible::Name), reason);
    QVERIFY(frame->isVisible());
    QTRY_VERIFY(!frame->isVisible());
    player.act("type .");
    QVERIFY(QToolTip::isVisible() && !frame->isVisible());
    player.act("type 2");
    QTRY_VERIFY(!QToolTip::isVisible());

    struct Still : QProxyStyle
    {
        int styleHint(StyleHint, const QStyleOption *, const QWidget *,
                      QStyleHintReturn *) const override
        {
            return 0;
        }
    } still;
    editor->setStyle(&still);
    QTest::qWait(1000);
    player.act("type .");
    QVERIFY(QToolTip::isVisible() && !frame->isVisible());

    player.act("set Value x");
    QVERIFY(frame->isVisible());
    QHelpEvent hover(QEvent::ToolTip, {2, 2}, editor->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(editor, &hover);
    QCOMPARE(QToolTip::text(), QString("'x' is no number"));
    editor->setShowsRefusals(false);
    QVERIFY(!frame->isVisible());
    const QSignalSpy refused(editor, &NumberEditor::refused);
    QToolTip::hideText();
    player.act("type y");
    QCOMPARE(refused.size(), 1);
    QTRY_VERIFY(!QToolTip::isVisible());
}

// Whatever is done to it, an editor has the value that an independent reading of its text gives,
// or none. What is typed leaves the caret in front of the same characters, unless some fall away.
void NumberEditorTest::randomEdits()
{
    TestHost host;
    StoryPlayer player(&host, "numbers");
    player.act("set digits 4; set Step 0.25; set Multipliers true; set SignToggle true");
    const auto *const editor = qobject_cast<NumberEditor *>(player.control("price"));
    QRandomGenerator random(20240229);
    const QStringList keys = QString("Left Right Home End Del Backspace Ctrl+Del Shift+Left Ctrl+A "
                                     "Ctrl+Z Ctrl+Shift+Z Left Right Shift+Left Del Backspace "
                                     "Up PgDown Ctrl+X Ctrl+V")
                                 .split(' ');
    for (const QLocale &locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        editor->decimalValidator()->setLocale(locale);
        const QString characters = "01234567890123456789-+. ,xkm" +
                                   QString(locale.groupSeparator()) + locale.decimalPoint() +
                                   locale.decimalPoint() + locale.negativeSign() +
                                   QChar(zeroOf(locale) + 4);
        for (int edit = 0; edit < 66; ++edit) {
            const QString before = player.answer("edited");
            const bool selected = editor->hasSelectedText();
            const auto tail = [&](int from) { return ungrouped(editor->text().mid(from), locale); };
            const int size = tail(0).size();
            const QString behind = tail(editor->cursorPosition());
            const int what = random.bounded(16);
            QString step = what < 2 ? "paste " : "type ";
            for (int i = what < 2 ? random.bounded(8) : int(what < 9); i > 0; --i)
                step += characters.at(random.bounded(characters.size()));
            if (what == 2)
                step =
                    "set Value " +
                    decimal(random.bounded(2000000) - 1000000, short(random.bounded(7))).toString();
            else if (what >= 9)
                step = "press " + keys.at(random.bounded(keys.size()));
            player.act(step);
            const QString value = editor->getValue();
            const QString story = locale.name() + ": " + before + ' ' + step + " -> " +
                                  player.answer("edited") + " = " + value;
            QVERIFY2(editor->isValid() ? value == readIndependently(editor->text(), locale)
                                       : !decimal::canConvert(value, false),
                     qPrintable(story));
            if (what > 2 && what < 9 && !selected && tail(0).size() == size + 1)
                QVERIFY2(tail(editor->cursorPosition()) == behind, qPrintable(story));
        }
    }
}

// Numbers are shown as QLocale writes them, look so once they are typed, and read back.
void NumberEditorTest::everyLocale()
{
    for (QLocale locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        locale.setNumberOptions(QLocale::DefaultNumberOptions);
        const bool hasPlainDigits = QString(locale.zeroDigit()).size() == 1;
        for (const qlonglong number : {0LL, -7LL, 1234LL, -12345LL, 123456LL, -123456789012LL}) {
            QString written;
            for (const char32_t c : locale.toString(number).toUcs4())
                written += QChar::isDigit(c) && !hasPlainDigits
                               ? QString::number(QChar::digitValue(c))
                               : QString::fromUcs4(&c, 1);
            NumberEditor editor;
            editor.decimalValidator()->setLocale(locale);
            QTest::keyClicks(&editor, QString::number(number));
            QCOMPARE(editor.text(), written);
            QCOMPARE(editor.cursorPosition(), int(written.size()));
            const QString half = QString::number(number) + ".50";
            editor.setValue(half);
            const QString fraction = (hasPlainDigits ? locale.toString(50) : QString("50"));
            QCOMPARE(editor.text(), written + QString(locale.decimalPoint()) + fraction);
            const QString text = editor.text();
            editor.clear();
            editor.insert(text);
            QVERIFY2(editor.getValue() == half && editor.text() == text, qPrintable(locale.name()));
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
        NumberEditor other;
        other.setValue(editor.getDecimal());
        QCOMPARE(other.getValue(), editor.getDecimal().toString());
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
        try {
            validator.textToDecimal(text);
            QFAIL(text);
        } catch (const QString &thrown) {
            QCOMPARE(thrown, QLatin1String("Invalid string for decimal: ") + text);
        }
    }
    for (const char *text : {"", "-", ".", "99999999999999999999"})
        QVERIFY_EXCEPTION_THROWN(validator.textToDecimal(text), Exception);
    // An editor's own takes other texts than the shown one too, also when it is not in use.
    NumberEditor editor;
    editor.setValidator(nullptr);
    QTest::keyClicks(&editor, "1234");
    editor.setLocale(QLocale("de_DE")); // the keypad's point is the system's
    QKeyEvent point(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 0, 0x41, 0, ".");
    QApplication::sendEvent(&editor, &point);
    QTest::keyClicks(&editor, "5");
    QCOMPARE(editor.getValue() + editor.text(), QString("1234.51234.5"));
    QString text = "-1234567";
    int pos = 2;
    QCOMPARE(editor.decimalValidator()->validate(text, pos), QValidator::Acceptable);
    QCOMPARE(text.insert(pos, '|'), QString("-1|,234,567"));
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

QTEST_MAIN(NumberEditorTest)
#include "tst_numbereditor.moc"
