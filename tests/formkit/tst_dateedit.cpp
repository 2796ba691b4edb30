#include <formkit/dateedit.h>
#include <formkit/properties.h>

#include <support/stricttest.h>

#include <QCalendarWidget>
#include <QLineEdit>
#include <QScreen>
#include <QTableView>

// Runs once for each of several system locales: see CMakeLists.txt.

namespace {

QString systemForm(const char *isoDate)
{
    return datetime(QString(isoDate)).toString();
}

QCalendarWidget *calendarOf(DateEdit &edit)
{
    edit.showPopup();
    return qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
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
    const QLineEdit *const line = edit.lineEdit();
    const QString pattern = QLocale::system().dateFormat(QLocale::ShortFormat);
    QCOMPARE(line->placeholderText(), pattern);
    QCOMPARE(line->toolTip(), QStringLiteral("Дата в формате: ") + pattern);
    QCOMPARE(line->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
    edit.setValue("2028-12-28");
    edit.adjustSize();
    edit.grab();
    for (const QString &text : {edit.currentText(), pattern})
        QVERIFY(line->width() > QFontMetrics(line->font()).horizontalAdvance(text));
}

// The date is shown, keeps its value and century, and comes back the same through the hub.
void DateEditTest::setByProgram()
{
    const QPair<QString, QDate> rows[] = {{"2015-03-01", {2015, 3, 1}},
                                          {"1999.12.31", {1999, 12, 31}},
                                          {"2000.02.29", {2000, 2, 29}},
                                          {"2100.01.01", {2100, 1, 1}},
                                          {"1812.06.24", {1812, 6, 24}},
                                          {"2015.02.29", {}},
                                          {"1970.01.01", {}},
                                          {"soon", {}}};
    for (const auto &[text, date] : rows) {
        DateEdit edits[2];
        Properties hub;
        for (DateEdit &edit : edits)
            hub.connectOne("Date", &edit, "Value");
        hub.setValue("Date", "2010.10.10");
        QSignalSpy changes(&edits[0], &DateEdit::changedValue);
        hub.setValue("Date", text);
        QCOMPARE(changes.count(), 1);
        const datetime moment(date);
        for (const DateEdit &edit : edits) {
            QCOMPARE(edit.getValue(), moment.toString());
            QCOMPARE(edit.currentText(), moment.toSystemString(true, QLocale::ShortFormat));
            QCOMPARE(edit.lineEdit()->styleSheet(), QString());
        }
        QCOMPARE(hub.values()["Date"].toString(), moment.toString());
    }
}

void DateEditTest::onlyChangesAreReported()
{
    DateEdit edit;
    QSignalSpy changes(&edit, &DateEdit::changedValue);
    // The other form of the same date is reported too, in normal form.
    for (const char *text : {"", "2015-03-01", "2015.03.01", "2015.03.01 00:00:00.000"})
        edit.setValue(text);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes[1][0].toString(), systemForm("2015.03.01"));
    const QString shown = edit.currentText();
    edit.setValue("2016.03.01 00:00:00.000", false);
    QCOMPARE(changes.count(), 3);
    QCOMPARE(edit.currentText(), shown);
    // A time of day does not stay.
    edit.setValue("2015.03.02 12:30:00.000");
    QCOMPARE(edit.getValue(), systemForm("2015.03.02"));
}

void DateEditTest::typing()
{
    const QString name = qEnvironmentVariable("LC_ALL").section('.', 0, 0);
    const QMap<QString, QStringList> texts = {
        {"C", {"1 Mar 2015", "29 Feb 2000", "31 Dec 2099"}},
        {"de_DE", {"01.03.15", "29.02.00", "31.12.99"}},
        {"en_US", {"3/1/15", "2/29/00", "12/31/99"}},
        {"ru_RU", {"01.03.2015", "29.02.2000", "31.12.2099"}},
        {"fa_IR", {"2015/3/1", "2000/2/29", "2099/12/31"}},
        {"ar_EG", {"1/3/2015", "29/2/2000", "31/12/2099"}},
        {"ja_JP", {"2015/03/01", "2000/02/29", "2099/12/31"}},
    };
    QVERIFY2(texts.contains(name), "what is typed under this locale is not listed");
    const char *dates[] = {"2015.03.01", "2000.02.29", "2099.12.31"};
    for (int i = 0; i < 3; ++i) {
        DateEdit edit;
        QTest::keyClicks(&edit, texts[name][i]);
        QCOMPARE(edit.getValue(), systemForm(dates[i]));
        QCOMPARE(edit.currentText(), texts[name][i]);
        QCOMPARE(edit.lineEdit()->styleSheet(), QString());
    }

    // A two-digit year keeps the century of a date that was set until it is typed anew.
    DateEdit edit;
    edit.setValue("1999-12-31");
    const QString last = edit.currentText().right(1);
    edit.lineEdit()->end(false);
    QTest::keyClick(&edit, Qt::Key_Backspace);
    QTest::keyClicks(&edit, last);
    const bool twoDigits = !QLocale::system().dateFormat(QLocale::ShortFormat).contains("yyyy");
    QCOMPARE(edit.getValue(), systemForm(twoDigits ? "2099.12.31" : "1999.12.31"));
}

void DateEditTest::halfADate()
{
    for (const Qt::Key leavingKey : {Qt::Key_Tab, Qt::Key_Return}) {
        QWidget form;
        auto *const edit = new DateEdit(&form);
        new QLineEdit(&form);
        form.show();
        edit->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        edit->setValue("2015-03-01");
        const QString whole = edit->currentText();
        QSignalSpy changes(edit, &DateEdit::changedValue);
        edit->lineEdit()->end(false);
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(edit, Qt::Key_Backspace);
        QCOMPARE(edit->getValue(), QString());
        QCOMPARE(edit->currentText(), whole.chopped(3));
        QCOMPARE(edit->lineEdit()->styleSheet(), QString("color: red"));
        QTest::keyClick(edit, leavingKey);
        QCOMPARE(edit->currentText(), QString());
        QCOMPARE(edit->lineEdit()->styleSheet(), QString());
        QCOMPARE(edit->count(), 0);
        QCOMPARE(changes.count(), 1);
    }
}

void DateEditTest::calendarByKeyboard()
{
    const QPair<Qt::Key, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_Down, {}}, {Qt::Key_Down, Qt::AltModifier}, {Qt::Key_F4, {}}};
    DateEdit edit;
    edit.show();
    edit.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&edit));
    for (const auto &key : keys) {
        edit.setValue(QString());
        QSignalSpy changes(&edit, &DateEdit::changedValue);
        const auto pick = [&](Qt::Key first, Qt::Key last) {
            QTest::keyClick(&edit, key.first, key.second);
            const auto *calendar =
                qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
            const QDate offered = calendar ? calendar->selectedDate() : QDate();
            for (const Qt::Key inCalendar : {first, last})
                QTest::keyClick(QApplication::focusWidget(), inCalendar);
            return edit.hasFocus() && !QApplication::activePopupWidget() ? offered : QDate();
        };
        QCOMPARE(pick(Qt::Key_Right, Qt::Key_Escape), QDate::currentDate());
        QCOMPARE(changes.count(), 0);
        edit.setValue("1999.12.30 00:00:00.000");
        QCOMPARE(pick(Qt::Key_Right, Qt::Key_Return), QDate(1999, 12, 30));
        QCOMPARE(edit.getValue(), systemForm("1999.12.31"));
        QCOMPARE(changes.count(), 2);
    }
}

void DateEditTest::calendarByMouse()
{
    for (const bool twice : {false, true}) {
        DateEdit edit;
        edit.show();
        edit.setValue("2015-03-01");
        QSignalSpy changes(&edit, &DateEdit::changedValue);
        QCalendarWidget *const calendar = calendarOf(edit);
        QCOMPARE(calendar->firstDayOfWeek(), QLocale::system().firstDayOfWeek());
        auto *const days = calendar->findChild<QTableView *>();
        const QModelIndex day = days->currentIndex();
        const QPoint weekLater =
            days->visualRect(day.sibling(day.row() + 1, day.column())).center();
        QTest::mouseClick(days->viewport(), Qt::LeftButton, {}, weekLater);
        if (twice)
            QTest::mouseDClick(days->viewport(), Qt::LeftButton, {}, weekLater);
        QVERIFY(!calendar->isVisible());
        QCOMPARE(edit.getValue(), systemForm("2015.03.08"));
        QCOMPARE(changes.count(), 1);
    }
}

void DateEditTest::calendarStaysOnTheScreen()
{
    for (const QPoint corner : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)}) {
        DateEdit edit;
        edit.setWindowFlag(Qt::FramelessWindowHint);
        edit.show();
        const QRect area = edit.screen()->availableGeometry();
        edit.move(area.x() + corner.x() * (area.width() - edit.width() / 2) - 20 * !corner.x(),
                  area.y() + corner.y() * (area.height() - edit.height()));
        const QCalendarWidget *const calendar = calendarOf(edit);
        QVERIFY(calendar);
        // The offscreen platform shifts pop-ups by a frame of two pixels.
        QVERIFY(area.contains(calendar->geometry().translated(-2, -2)));
        QVERIFY(!calendar->geometry().intersects(edit.geometry().adjusted(0, 2, 0, -2)));
        edit.hidePopup();
    }
}

QTEST_MAIN(DateEditTest)
#include "tst_dateedit.moc"
