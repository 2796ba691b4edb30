#include <formkit/dateedit.h>
#include <formkit/properties.h>

#include <support/stricttest.h>

#include <QCalendarWidget>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QTableView>

#include <memory>

// Runs once for each of several system locales: see CMakeLists.txt.

namespace {

QString shown(const QDate &date)
{
    return datetime(date).toSystemString(true, QLocale::ShortFormat);
}

QCalendarWidget *openCalendar()
{
    return qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
}

// Clicks the middle of the calendar; gives the day of the month that stands there.
int clickSomeDay(QCalendarWidget *calendar)
{
    auto *const view = calendar->findChild<QTableView *>();
    const QModelIndex cell = view->model()->index(3, 4);
    const int day = cell.data().toInt();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(cell).center());
    return day;
}

} // namespace

class DateEditTest : public StrictTest
{
    Q_OBJECT

private slots:
    void newEdit();
    void setByProgram();
    void onlyChangesAreReported();
    void typing();
    void halfADate();
    void calendarByKeyboard();
    void calendarByMouse();
    void calendarStaysOnTheScreen();
};

void DateEditTest::newEdit()
{
    DateEdit edit;
    const QString pattern = QLocale::system().dateFormat(QLocale::ShortFormat);
    QCOMPARE(edit.getValue() + edit.currentText(), QString());
    QCOMPARE(edit.lineEdit()->placeholderText(), pattern);
    QCOMPARE(edit.lineEdit()->toolTip(), QString("Дата в формате: ") + pattern);
    QCOMPARE(edit.lineEdit()->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
    edit.adjustSize();
    edit.grab();
    for (const QString &text : {pattern, shown({2028, 12, 28})})
        QVERIFY(edit.lineEdit()->width() > edit.lineEdit()->fontMetrics().horizontalAdvance(text));
}

// The date is shown, keeps its value and century, and comes back the same through the hub.
void DateEditTest::setByProgram()
{
    const QPair<QString, QDate> rows[] = {
        {"2015-03-01", {2015, 3, 1}},
        {"2015.03.01 12:30:00.000", {2015, 3, 1}},
        {"1999.12.31", {1999, 12, 31}},
        {"2000.02.29", {2000, 2, 29}},
        {"2100.01.01", {2100, 1, 1}},
        {"2015.02.29", {}},
        {"1970.01.01", {}},
    };
    for (const auto &[text, date] : rows) {
        DateEdit edit, twin;
        Properties hub;
        hub.connectOne("Date", &edit, "Value");
        hub.connectOne("Date", &twin, "Value");
        hub.setValue("Date", "2010.10.10");
        hub.setValue("Date", text);
        for (const DateEdit *each : {&edit, &twin}) {
            QCOMPARE(each->getValue(), datetime(date).toString());
            QCOMPARE(each->currentText(), shown(date));
            QCOMPARE(each->lineEdit()->styleSheet(), QString());
        }
        QCOMPARE(hub.values().value("Date").toString(), edit.getValue());

        // Typed again, a two-digit year is one of this century.
        QDate again = date;
        if (date.isValid() && !QLocale::system().dateFormat(QLocale::ShortFormat).contains("yyyy"))
            again.setDate(2000 + date.year() % 100, date.month(), date.day());
        edit.lineEdit()->clear();
        QCOMPARE(edit.getValue(), QString());
        edit.lineEdit()->setText(shown(again));
        QCOMPARE(edit.getValue(), datetime(again).toString());
    }
}

void DateEditTest::onlyChangesAreReported()
{
    DateEdit edit;
    QSignalSpy changes(&edit, &DateEdit::changedValue);
    for (const char *text : {"", "2015-03-01", "2015.03.01", "2015.03.01 00:00:00.000"})
        edit.setValue(text);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes[1][0].toString(), QString("2015.03.01 00:00:00.000"));
    edit.setValue("2016.03.01 00:00:00.000", false);
    QCOMPARE(changes.count(), 3);
    QCOMPARE(edit.currentText(), shown({2015, 3, 1}));
}

void DateEditTest::typing()
{
    const QMap<QString, QStringList> texts = {
        {"C", {"1 Mar 2015", "29 Feb 2000"}},    {"de_DE", {"01.03.15", "29.02.00"}},
        {"en_US", {"3/1/15", "2/29/00"}},        {"ru_RU", {"01.03.2015", "29.02.2000"}},
        {"fa_IR", {"2015/3/1", "2000/2/29"}},    {"ar_EG", {"1/3/2015", "29/2/2000"}},
        {"ja_JP", {"2015/03/01", "2000/02/29"}},
    };
    const QStringList typed = texts[qEnvironmentVariable("LC_ALL").section('.', 0, 0)];
    QCOMPARE(typed.size(), 2);
    for (int i = 0; i < 2; ++i) {
        DateEdit edit;
        QTest::keyClicks(&edit, typed[i]);
        QCOMPARE(edit.getValue(), datetime(i ? QDate(2000, 2, 29) : QDate(2015, 3, 1)).toString());
        QCOMPARE(edit.currentText(), typed[i]);
        QCOMPARE(edit.lineEdit()->styleSheet(), QString());
    }
}

void DateEditTest::halfADate()
{
    for (const Qt::Key leavingKey : {Qt::Key_Tab, Qt::Key_Return}) {
        QWidget form;
        DateEdit edit(&form);
        QLineEdit next(&form);
        form.show();
        edit.setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        edit.setValue("2015-03-01");
        QSignalSpy changes(&edit, &DateEdit::changedValue);
        edit.lineEdit()->end(false);
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(&edit, Qt::Key_Backspace);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(edit.getValue(), QString());
        QCOMPARE(edit.currentText(), shown({2015, 3, 1}).chopped(3));
        QCOMPARE(edit.lineEdit()->styleSheet(), QString("color: red"));
        QTest::keyClick(&edit, leavingKey);
        QCOMPARE(edit.currentText() + edit.lineEdit()->styleSheet(), QString());
        QCOMPARE(changes.count(), 1);
    }
}

void DateEditTest::calendarByKeyboard()
{
    const QPair<Qt::Key, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_Down, {}}, {Qt::Key_Down, Qt::AltModifier}, {Qt::Key_F4, {}}};
    for (const auto &key : keys) {
        QWidget form;
        DateEdit edit(&form);
        form.show();
        edit.setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        const auto press = [](int inCalendar) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(inCalendar));
        };
        QTest::keyClick(&edit, key.first, key.second);
        QVERIFY(openCalendar());
        QCOMPARE(openCalendar()->selectedDate(), QDate::currentDate());
        QCOMPARE(openCalendar()->firstDayOfWeek(), QLocale::system().firstDayOfWeek());
        press(Qt::Key_Escape);
        QVERIFY(!openCalendar() && edit.hasFocus());

        edit.setValue("1999.12.30 00:00:00.000");
        QSignalSpy changes(&edit, &DateEdit::changedValue);
        QTest::keyClick(&edit, key.first, key.second);
        press(Qt::Key_Right);
        press(Qt::Key_Return);
        QVERIFY(!openCalendar() && edit.hasFocus());
        QCOMPARE(edit.getValue(), QString("1999.12.31 00:00:00.000"));
        QCOMPARE(changes.count(), 1);
    }
}

void DateEditTest::calendarByMouse()
{
    auto edit = std::make_unique<DateEdit>();
    edit->show();
    edit->setValue("2015-03-01");
    QSignalSpy changes(edit.get(), &DateEdit::changedValue);
    edit->showPopup();
    const QDate clicked(2015, 3, clickSomeDay(openCalendar()));
    QVERIFY(!openCalendar());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toString(), datetime(clicked).toString());
    edit->showPopup();
    edit->hide();
    QVERIFY(!openCalendar());
    edit->show();
    edit->showPopup();
    const QPointer<QCalendarWidget> calendar(openCalendar());
    edit.reset();
    QVERIFY(!calendar);
}

void DateEditTest::calendarStaysOnTheScreen()
{
    for (const QPoint corner : {QPoint(0, 0), QPoint(1, 1)}) {
        DateEdit edit;
        edit.setWindowFlag(Qt::FramelessWindowHint);
        edit.show();
        const QRect area = edit.screen()->availableGeometry();
        edit.move(corner.x() * area.width() - edit.width() / 2,
                  corner.y() * (area.height() - edit.height()));
        edit.showPopup();
        // The offscreen platform shifts pop-ups by a frame of two pixels.
        const QRect calendar = openCalendar()->geometry().translated(-2, -2);
        QVERIFY(area.contains(calendar));
        QVERIFY(!calendar.intersects(edit.geometry().adjusted(0, 2, 0, -2)));
    }
}

QTEST_MAIN(DateEditTest)
#include "tst_dateedit.moc"
