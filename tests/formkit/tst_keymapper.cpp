#include "support/stricttest.h"

#include <formkit/keymapper.h>
#include <formkit/numbereditor.h>

#include <QApplication>
#include <QKeyEvent>

namespace {

QKeyEvent keyPress(int key, Qt::KeyboardModifiers modifiers, quint32 native, const QString &text)
{
    return QKeyEvent(QEvent::KeyPress, key, modifiers, 0, native, 0, text);
}

} // namespace

class KeyMapperTest : public StrictTest
{
    Q_OBJECT

private slots:
    void keypadDecimal_data();
    void keypadDecimal();
    void controlCodes();
    void noLayoutToAsk();
};

void KeyMapperTest::keypadDecimal_data()
{
    QTest::addColumn<uint>("native");
    QTest::addColumn<bool>("isDecimal");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("shown");
    const int keypad = Qt::KeypadModifier, shift = Qt::ShiftModifier;
    QTest::newRow("macOS") << 0x41u << true << keypad << "1,";
    QTest::newRow("KP_Decimal") << 0xffaeu << true << keypad << "1,";
    QTest::newRow("KP_Separator") << 0xffacu << true << keypad << "1,";
    QTest::newRow("with Shift as it is") << 0xffaeu << true << (keypad | shift) << "1";
    QTest::newRow("without the keypad as it is") << 0x41u << true << 0 << "1";
    QTest::newRow("another key") << 0xffafu << false << keypad << "1";
}

// The test runs under the system locale de_DE; '.' is a group separator there and vanishes.
void KeyMapperTest::keypadDecimal()
{
    QFETCH(uint, native);
    QFETCH(int, modifiers);
    NumberEditor editor;
    editor.setValue("1");
    QKeyEvent event = keyPress(Qt::Key_Period, Qt::KeyboardModifiers(modifiers), native, ".");
    QTEST(KeyMapper::isDecimal(&event), "isDecimal");
    QApplication::sendEvent(&editor, &event);
    QTEST(editor.text(), "shown");
}

void KeyMapperTest::controlCodes()
{
    for (const int code : {-1, 0, 0x1f, 0x7f})
        QVERIFY(KeyMapper::isAsciiControl(code));
    for (const int code : {0x20, 0x7e, 0x80, 0x100})
        QVERIFY(!KeyMapper::isAsciiControl(code));
}

void KeyMapperTest::noLayoutToAsk()
{
    QKeyEvent event = keyPress(Qt::Key_Q, Qt::NoModifier, 'q', "q");
    QCOMPARE(KeyMapper::visibleKeycodeByNative(&event), int(Qt::Key_Q));
}

QTEST_MAIN(KeyMapperTest)

#include "tst_keymapper.moc"
