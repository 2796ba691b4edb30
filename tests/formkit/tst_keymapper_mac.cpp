// SPDX-License-Identifier: BSD-3-Clause
#include "support/stricttest.h"

#include <formkit/keymapper.h>

#include <Carbon/Carbon.h>

#include <QKeyEvent>

class KeyMapperMacTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void visibleKeycode();
};

// The units that the layout gives, what is missing, and the code.
void KeyMapperMacTest::visibleKeycode()
{
    const int other = Qt::Key_Q;
    const std::tuple<QString, QString, int> rows[] = {
        {"a", "", 'a'},       {"^a", "", '^'},        {"\x1b", "", other},
        {"\x7f", "", other},  {"é", "", other},       {"š", "", other},
        {"", "", other},      {"a", "source", other}, {"a", "layout", other},
        {"a", "text", other}, {"a", "string", other}, {"a", "translation", other},
    };
    for (const auto &[units, missing, code] : rows) {
        standIn = {missing.toStdString(), units.toStdU16String()};
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Q, Qt::ShiftModifier, 0, 12, 0,
                        missing == "text" ? "" : "Q");
        QVERIFY2(KeyMapper::visibleKeycodeByNative(&event) == code, qPrintable(units + missing));
        QCOMPARE(standIn.held, 0);
    }
    for (const quint32 native : {0x41u, 0xffaeu}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 0, native, 0, ".");
        QCOMPARE(KeyMapper::isDecimal(&event), native == 0x41);
    }
    for (const int control : {-1, 0, 0x1f, 0x7f})
        QVERIFY(KeyMapper::isAsciiControl(control) && !KeyMapper::isAsciiControl(control + 0x21));
}

QTEST_GUILESS_MAIN(KeyMapperMacTest)
#include "tst_keymapper_mac.moc"
