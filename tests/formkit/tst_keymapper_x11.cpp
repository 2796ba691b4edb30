// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/keymapper.h>
#include <formkit/numbereditor.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QProcess>

// This header of C names a member so.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace {

// Starts a real X server without a screen (Xvfb) on a display number that is free, and points
// the QApplication to come at it; ends the program when the server does not start.
void startX(QProcess *server)
{
    server->setStandardErrorFile(QProcess::nullDevice());
    server->start("Xvfb", {"-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp"});
    QByteArray display;
    while (!display.endsWith('\n')) {
        if (!server->waitForReadyRead(30000))
            qFatal("Xvfb does not start.");
        display += server->readAllStandardOutput();
    }
    qputenv("DISPLAY", ':' + display.trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
}

// Runs a program of X with its arguments until it ends; true when it succeeds.
bool run(const QString &program, const QString &arguments)
{
    return QProcess::execute(program, arguments.split(' ')) == 0;
}

// Switches to one of the keyboard layouts that setxkbmap set, counted from 0. (The keys that do so
// on a desk do nothing when xdotool presses them.)
bool switchLayout(int layout)
{
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    free(xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, 1, 0), nullptr));
    xcb_generic_error_t *error =
        xcb_request_check(c, xcb_xkb_latch_lock_state_checked(c, XCB_XKB_ID_USE_CORE_KBD, 0, 0,
                                                              true, uint8_t(layout), 0, false, 0));
    xcb_disconnect(c);
    free(error);
    return !error;
}

} // namespace

// A number editor on a real X server, under a system locale with a comma.
class KeyMapperX11Test : public StrictTest
{
    Q_OBJECT

public:
    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void initTestCase();
    void keypadDecimal();
    void keysOfTheLayout();

private:
    NumberEditor m_editor;
    int m_key = 0;
    int m_visibleCode = 0;
};

bool KeyMapperX11Test::eventFilter(QObject *, QEvent *event)
{
    auto *const press = dynamic_cast<QKeyEvent *>(event);
    if (event->type() == QEvent::KeyPress && !press->text().isEmpty()) {
        m_key = press->key();
        m_visibleCode = KeyMapper::visibleKeycodeByNative(press);
    }
    return false;
}

// There is no window manager that would give the window the focus.
void KeyMapperX11Test::initTestCase()
{
    m_editor.installEventFilter(this);
    m_editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_editor));
    QVERIFY(run("setxkbmap", "us"));
    QVERIFY(run("xdotool", QString("windowfocus --sync %1").arg(m_editor.winId())));
    QTRY_VERIFY(m_editor.hasFocus());
    QVERIFY(run("xdotool", "key Num_Lock"));
}

void KeyMapperX11Test::keypadDecimal()
{
    // Virtual key, modifiers, and what the editor shows; elsewhere '.' is a group separator.
    const int keypad = Qt::KeypadModifier;
    const std::tuple<uint, int, QString> rows[] = {
        {0x41, keypad, "1,"}, {0xffae, keypad, "1,"}, {0xffac, keypad, "1,"},
        {0x41, 0, "1"},       {0xffaf, keypad, "1"},  {0xffae, keypad | Qt::ShiftModifier, "1"},
    };
    for (const auto &[native, modifiers, shown] : rows) {
        m_editor.setValue("1");
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Period, Qt::KeyboardModifiers(modifiers), 0,
                        native, 0, ".");
        QApplication::sendEvent(&m_editor, &event);
        QCOMPARE(m_editor.text(), shown);
        m_editor.clear();
    }
    m_editor.setValue("12");
    QVERIFY(run("xdotool", "key 91"));
    QTRY_COMPARE(m_editor.text(), QString("12,"));
    QVERIFY(run("xdotool", "key 5"));
    QTRY_COMPARE(m_editor.getValue(), QString("12.5"));
    // With NumLock off it deletes.
    m_editor.setCursorPosition(0);
    QVERIFY(run("xdotool", "key Num_Lock key 91 key Num_Lock"));
    QTRY_COMPARE(m_editor.text(), QString("2,5"));
}

void KeyMapperX11Test::keysOfTheLayout()
{
    // The layouts, the keys pressed, and the code; 0 where the layout has no ASCII character.
    const std::tuple<QString, QString, int> rows[] = {
        {"us", "key 24", 'q'},    {"fr", "key 24", 'a'}, {"fr", "keydown 50 key 24 keyup 50", 'a'},
        {"us,fr", "key 24", 'a'}, {"ru", "key 24", 0},
    };
    for (const auto &[layouts, keys, code] : rows) {
        QVERIFY(run("setxkbmap", "-layout " + layouts));
        QVERIFY(switchLayout(layouts.count(',')));
        m_key = 0;
        QVERIFY(run("xdotool", keys));
        QTRY_VERIFY(m_key != 0);
        QCOMPARE(m_visibleCode, code ? code : m_key);
    }
}

int main(int argc, char **argv)
{
    QProcess server;
    startX(&server);
    qputenv("LC_ALL", "de_DE.UTF-8");
    QApplication application(argc, argv);
    KeyMapperX11Test test;
    const int failed = QTest::qExec(&test, argc, argv);
    server.terminate();
    server.waitForFinished();
    return failed;
}

#include "tst_keymapper_x11.moc"
