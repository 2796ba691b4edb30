#include "support/stricttest.h"

#include <formkit/keymapper.h>

#include <Carbon/Carbon.h>

#include <QKeyEvent>

class KeyMapperMacTest : public StrictTest
{
    Q_OBJECT

private slots:
    void visibleKeycode_data();
    void visibleKeycode();
    void keypadDecimal();
};

void KeyMapperMacTest::visibleKeycode_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("missing");
    QTest::addColumn<int>("code");
    const auto row = [](const char *name, const char *units, const char *missing, int code) {
        QTest::newRow(name) << QString(units) << QString(missing) << code;
    };
    row("a letter", "a", "", 'a');
    row("the first of two", "^a", "", '^');
    row("a control character", "\x1b", "", Qt::Key_Q);
    row("delete", "\x7f", "", Qt::Key_Q);
    row("Latin-1 beyond ASCII", "é", "", Qt::Key_Q);
    row("a code whose low byte is a letter", "š", "", Qt::Key_Q);
    row("nothing", "", "", Qt::Key_Q);
    for (const char *missing : {"source", "layout", "translation", "string", "text"})
        row(missing, "a", missing, Qt::Key_Q);
}

void KeyMapperMacTest::visibleKeycode()
{
    QFETCH(QString, units);
    QFETCH(QString, missing);
    standIn = {missing.toStdString(), units.toStdU16String()};
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Q, Qt::ShiftModifier, 0, 12, 0,
                    missing == "text" ? "" : "Q");
    QTEST(KeyMapper::visibleKeycodeByNative(&event), "code");
    QCOMPARE(standIn.held, 0);
}

void KeyMapperMacTest::keypadDecimal()
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 0, 0x41, 0, ".");
    QVERIFY(KeyMapper::isDecimal(&event));
    QKeyEvent other(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 0, 0xffae, 0, ".");
    QVERIFY(!KeyMapper::isDecimal(&other));
}

QTEST_GUILESS_MAIN(KeyMapperMacTest)

#include "tst_keymapper_mac.moc"
