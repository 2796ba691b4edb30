// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include <formkit/dateedit.h>

#include <support/stricttest.h>

#include <QCalendarWidget>
#include <QScreen>
#include <QTableView>

namespace {

QCalendarWidget *openCalendar()
{
    return qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
}

} // namespace

// Runs once for each of several system locales: see CMakeLists.txt.
class DateEditTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void newEdit();
    void stories();
    void calendarByMouse();
    void calendarStaysOnTheScreen();
};

void DateEditTest::newEdit()
{
    // A calendar takes the default locale's first day by itself.
    const bool isSunday = QLocale::system().firstDayOfWeek() == Qt::Sunday;
    QLocale::setDefault(QLocale(isSunday ? "de_DE" : "en_US"));
    DateEdit edit;
    QLocale::setDefault(QLocale::system());
    edit.setValue("2016.03.01 10:30:00.000", false);
    QCOMPARE(edit.getValue() + edit.currentText(), QString("2016.03.01 10:30:00.000"));
    edit.setValue({});
    edit.showPopup();
    QCOMPARE(openCalendar()->selectedDate(), QDate::currentDate());
    QCOMPARE(openCalendar()->firstDayOfWeek(), QLocale::system().firstDayOfWeek());
    edit.hidePopup();
    edit.setValue("2028.12.28");
    edit.adjustSize();
    edit.grab();
    for (const QString &text : {edit.lineEdit()->placeholderText(), edit.currentText()})
        QVERIFY(edit.lineEdit()->width() > edit.lineEdit()->fontMetrics().horizontalAdvance(text));
}

void DateEditTest::stories()
{
    TestHost host;
    const QString locale = qEnvironmentVariable("LC_ALL").section('.', 0, 0);
    DataRow own;
    for (const DataRow &row : rowsOf("stories/dates.txt")) {
        if (row[0] == "in" && row[1] == locale)
            own = row;
    }
    QVERIFY2(!own.isEmpty(), qPrintable(locale));
    for (DataRow story : StoryFile("dates").stories) {
        for (QString &line : story)
            line.replace("{format}", own[2])
                .replace("{first}", own[3])
                .replace("{leap}", own[4])
                .replace("{last}", own[5])
                .replace("{tip}", own[6]);
        if (locale == "de_DE" || !story.first().endsWith("(de_DE)"))
            StoryPlayer(&host, "dates").play(story);
    }
}

void DateEditTest::calendarByMouse()
{
    DateEdit edit;
    edit.show();
    edit.setValue("2015-03-01");
    const QSignalSpy changes(&edit, &DateEdit::changedValue);
    edit.showPopup();
    auto *const days = openCalendar()->findChild<QTableView *>();
    const QModelIndex day = days->model()->index(3, 4);
    const QString clicked = datetime(QDate(2015, 3, day.data().toInt())).toString();
    QTest::mouseClick(days->viewport(), Qt::LeftButton, {}, days->visualRect(day).center());
    QVERIFY(!openCalendar());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toString(), clicked);
}

void DateEditTest::calendarStaysOnTheScreen()
{
    // No window is as narrow as a calendar of the smallest font would be.
    const QFont before = QApplication::font();
    for (const auto &[corner, points] :
         {std::pair{QPoint(0, 0), 9}, {QPoint(1, 1), 9}, {QPoint(1, 1), 3}}) {
        QApplication::setFont(QFont(before.family(), points));
        DateEdit edit;
        edit.setWindowFlag(Qt::FramelessWindowHint);
        edit.show();
        const QRect area = edit.screen()->availableGeometry();
        edit.move(corner.x() * area.width() - edit.width() / 2,
                  corner.y() * (area.height() - edit.height()));
        edit.showPopup();
        // The offscreen platform shifts pop-ups by a frame of two pixels.
        const QRect calendar = openCalendar()->geometry();
        QVERIFY(area.adjusted(-2, -2, 2, 2).contains(calendar));
        QVERIFY(!calendar.intersects(edit.geometry().adjusted(0, 4, 0, -4)));
    }
    QApplication::setFont(before);
}

QTEST_MAIN(DateEditTest)
#include "tst_dateedit.moc"
