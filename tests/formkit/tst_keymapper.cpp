#include "support/stricttest.h"

#include <formkit/keymapper.h>
#include <formkit/numbereditor.h>

#include <QApplication>
#include <QKeyEvent>

class KeyMapperTest : public StrictTest
{
    Q_OBJECT

private slots:
    void keypadDecimal();
    void codes();
};

// The test runs under the system locale de_DE; '.' is a group separator there and vanishes.
void KeyMapperTest::keypadDecimal()
{
    const int keypad = Qt::KeypadModifier;
    const std::tuple<uint, int, bool, QString> rows[] = {
        {0x41, keypad, true, "1,"},   {0xffae, keypad, true, "1,"},
        {0xffac, keypad, true, "1,"}, {0xffae, keypad | Qt::ShiftModifier, true, "1"},
        {0x41, 0, true, "1"},         {0xffaf, keypad, false, "1"},
    };
    for (const auto &[native, modifiers, isDecimal, shown] : rows) {
        NumberEditor editor;
        editor.setValue("1");
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Period, Qt::KeyboardModifiers(modifiers), 0,
                        native, 0, ".");
        QCOMPARE(KeyMapper::isDecimal(&event), isDecimal);
        QApplication::sendEvent(&editor, &event);
        QCOMPARE(editor.text(), shown);
    }
}

void KeyMapperTest::codes()
{
    for (const int code : {-1, 0, 0x1f, 0x7f})
        QVERIFY(KeyMapper::isAsciiControl(code));
    for (const int code : {0x20, 0x7e, 0x80, 0x100})
        QVERIFY(!KeyMapper::isAsciiControl(code));
    // There is no layout to ask here.
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Q, Qt::NoModifier, 0, 'q', 0, "q");
    QCOMPARE(KeyMapper::visibleKeycodeByNative(&event), int(Qt::Key_Q));
}

QTEST_MAIN(KeyMapperTest)
#include "tst_keymapper.moc"
