#include "desk.h"

#include <formkit/dateedit.h>

#include <support/stricttest.h>

#include <QCalendarWidget>
#include <QScreen>
#include <QTableView>

#include <memory>

namespace {

QString shown(const QDate &date)
{
    return datetime(date).toSystemString(true, QLocale::ShortFormat);
}

QCalendarWidget *openCalendar()
{
    return qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
}

} // namespace

// Runs once for each of several system locales: see CMakeLists.txt.
class DateEditTest : public StrictTest
{
    Q_OBJECT

private slots:
    void newEdit();
    void setByProgram();
    void typing();
    void stories();
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
    edit.setValue("2016.03.01 00:00:00.000", false);
    QCOMPARE(edit.getValue() + edit.currentText(), QString("2016.03.01 00:00:00.000"));
    edit.setValue({});
    edit.showPopup();
    QCOMPARE(openCalendar()->selectedDate(), QDate::currentDate());
    QCOMPARE(openCalendar()->firstDayOfWeek(), QLocale::system().firstDayOfWeek());
    edit.hidePopup();
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
        for (DateEdit *const each : {&edit, &twin})
            hub.connectOne("Date", each, "Value");
        hub.setValue("Date", "2010.10.10");
        hub.setValue("Date", text);
        for (const DateEdit *each : {&edit, &twin}) {
            QCOMPARE(each->getValue(), datetime(date).toString());
            QCOMPARE(each->currentText(), shown(date));
            QCOMPARE(each->lineEdit()->styleSheet(), QString());
        }
        QCOMPARE(hub.values().value("Date").toString(), edit.getValue());
    }
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
    for (const QDate date : {QDate(2015, 3, 1), QDate(2000, 2, 29)}) {
        const QString text = typed[date.year() == 2000];
        DateEdit edit;
        QTest::keyClicks(&edit, text);
        QCOMPARE(edit.getValue(), datetime(date).toString());
        QCOMPARE(edit.currentText() + edit.lineEdit()->styleSheet(), text);
    }
}

void DateEditTest::stories()
{
    TestHost host;
    for (const DataRow &story : Desk::storiesOf("dates"))
        Desk(&host, "dates").play(story);
}

void DateEditTest::calendarByMouse()
{
    auto edit = std::make_unique<DateEdit>();
    edit->show();
    edit->setValue("2015-03-01");
    QSignalSpy changes(edit.get(), &DateEdit::changedValue);
    edit->showPopup();
    auto *const days = openCalendar()->findChild<QTableView *>();
    const QModelIndex day = days->model()->index(3, 4);
    const QString clicked = datetime(QDate(2015, 3, day.data().toInt())).toString();
    QTest::mouseClick(days->viewport(), Qt::LeftButton, {}, days->visualRect(day).center());
    QVERIFY(!openCalendar());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toString(), clicked);
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
