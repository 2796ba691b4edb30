#include <formkit/dateedit.h>
#include <formkit/datevalidator.h>
#include <formkit/properties.h>

#include <support/stricttest.h>

#include <QCalendarWidget>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QTableView>
#include <QVBoxLayout>

#include <memory>

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

QString typedForm(const QDate &date)
{
    const QString format = QLocale::system().dateFormat(QLocale::ShortFormat);
    return QLocale::c().toString(date, QString(format).remove(QChar(0x200f)));
}

// The first day of the calendar's month that shows this number.
void clickDay(QCalendarWidget *calendar, int day, bool twice)
{
    auto *const view = calendar->findChild<QTableView *>();
    for (int cell = 0; cell < view->model()->rowCount() * view->model()->columnCount(); ++cell) {
        const QModelIndex index = view->model()->index(cell / 8, cell % 8);
        if (cell / 8 == 0 || cell % 8 == 0 || index.data().toInt() != day)
            continue;
        const QPoint place = view->visualRect(index).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
        if (twice)
            QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, place);
        return;
    }
}

} // namespace

class DateEditTest : public StrictTest
{
    Q_OBJECT

private slots:
    void newEdit();
    void setByProgram_data();
    void setByProgram();
    void onlyChangesAreReported();
    void timeOfDayIsDropped();
    void typing_data();
    void typing();
    void halfADate_data();
    void halfADate();
    void otherCentury();
    void validator();
    void calendarByKeyboard_data();
    void calendarByKeyboard();
    void calendarByMouse_data();
    void calendarByMouse();
    void calendarStaysOnTheScreen_data();
    void calendarStaysOnTheScreen();
    void calendarGoesWithTheEditor();
};

void DateEditTest::newEdit()
{
    DateEdit edit;
    const QString pattern = QLocale::system().dateFormat(QLocale::ShortFormat);
    QCOMPARE(edit.getValue(), QString());
    QCOMPARE(edit.currentText(), QString());
    QCOMPARE(edit.lineEdit()->placeholderText(), pattern);
    QCOMPARE(edit.lineEdit()->toolTip(),
             QString::fromUtf8(
                 "\u0414\u0430\u0442\u0430 \u0432 \u0444\u043e\u0440\u043c\u0430\u0442\u0435: ") +
                 pattern);
    QCOMPARE(edit.lineEdit()->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);

    edit.setValue("2028-12-28");
    edit.adjustSize();
    edit.grab();
    const QFontMetrics metrics(edit.lineEdit()->font());
    QVERIFY(edit.lineEdit()->width() > metrics.horizontalAdvance(edit.currentText()));
    QVERIFY(edit.lineEdit()->width() > metrics.horizontalAdvance(pattern));
}

void DateEditTest::setByProgram_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("date");
    QTest::newRow("system form") << "2015.03.01 00:00:00.000" << QDate(2015, 3, 1);
    QTest::newRow("other form") << "2015-03-01" << QDate(2015, 3, 1);
    QTest::newRow("last day of the other century") << "1999.12.31" << QDate(1999, 12, 31);
    QTest::newRow("leap day of year 00") << "2000.02.29" << QDate(2000, 2, 29);
    QTest::newRow("next century") << "2100.01.01" << QDate(2100, 1, 1);
    QTest::newRow("long ago") << "1812.06.24" << QDate(1812, 6, 24);
    QTest::newRow("no such day") << "2015.02.29" << QDate();
    QTest::newRow("the null date") << "1970.01.01" << QDate();
    QTest::newRow("no date") << "soon" << QDate();
}

// The date is shown, keeps its value and century, and comes back the same through the hub.
void DateEditTest::setByProgram()
{
    QFETCH(QString, text);
    QFETCH(QDate, date);
    DateEdit edit, twin;
    Properties hub;
    hub.connectOne("Date", &edit, "Value");
    hub.connectOne("Date", &twin, "Value");
    hub.setValue("Date", "2010.10.10");
    QSignalSpy changes(&edit, &DateEdit::changedValue);
    hub.setValue("Date", text);

    const QString value = datetime(date).toString();
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toString(), value);
    for (DateEdit *each : {&edit, &twin}) {
        QCOMPARE(each->getValue(), value);
        QCOMPARE(each->currentText(), datetime(date).toSystemString(true, QLocale::ShortFormat));
        QVERIFY(each->lineEdit()->hasAcceptableInput());
        QCOMPARE(each->lineEdit()->styleSheet(), QString());
    }
    QCOMPARE(hub.values()["Date"].toString(), value);
}

void DateEditTest::onlyChangesAreReported()
{
    DateEdit edit;
    QSignalSpy changes(&edit, &DateEdit::changedValue);
    edit.setValue(QString());
    QCOMPARE(changes.count(), 0);
    for (const char *text : {"2015-03-01", "2015.03.01"}) {
        edit.setValue(text);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(changes.takeFirst()[0].toString(), QString("2015.03.01 00:00:00.000"));
    }
    edit.setValue("2015.03.01 00:00:00.000");
    QCOMPARE(changes.count(), 0);
    edit.setValue("2016.03.01 00:00:00.000", false);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(edit.currentText(),
             datetime(QDate(2015, 3, 1)).toSystemString(true, QLocale::ShortFormat));
}

void DateEditTest::timeOfDayIsDropped()
{
    DateEdit edit;
    Properties hub;
    hub.connectOne("Date", &edit, "Value");
    hub.setValue("Date", "2015.03.01 12:30:00.000");
    QCOMPARE(edit.getValue(), systemForm("2015.03.01"));
    QCOMPARE(hub.values()["Date"].toString(), systemForm("2015.03.01"));
}

void DateEditTest::typing_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("value");
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
    QTest::newRow("a day") << texts[name][0] << systemForm("2015.03.01");
    QTest::newRow("leap day") << texts[name][1] << systemForm("2000.02.29");
    QTest::newRow("last day") << texts[name][2] << systemForm("2099.12.31");
}

void DateEditTest::typing()
{
    QFETCH(QString, keys);
    QFETCH(QString, value);
    DateEdit edit;
    QTest::keyClicks(&edit, keys);
    QCOMPARE(edit.getValue(), value);
    QCOMPARE(edit.currentText(), keys);
    QCOMPARE(edit.lineEdit()->styleSheet(), QString());
}

void DateEditTest::halfADate_data()
{
    QTest::addColumn<int>("leavingKey");
    QTest::newRow("by Tab") << int(Qt::Key_Tab);
    QTest::newRow("by Enter") << int(Qt::Key_Return);
}

void DateEditTest::halfADate()
{
    QFETCH(int, leavingKey);
    QWidget form;
    auto *const edit = new DateEdit(&form);
    (new QLineEdit(&form))->move(0, 50);
    form.show();
    edit->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    edit->setValue("2015-03-01");
    const QString whole = edit->currentText();
    QSignalSpy changes(edit, &DateEdit::changedValue);

    edit->lineEdit()->end(false);
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(edit, Qt::Key_Backspace);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.takeFirst()[0].toString(), QString());
    QCOMPARE(edit->currentText(), whole.left(whole.size() - 3));
    QCOMPARE(edit->lineEdit()->styleSheet(), QString("color: red"));
    QTest::keyClick(edit, Qt::Key(leavingKey));
    QCOMPARE(edit->currentText(), QString());
    QCOMPARE(edit->lineEdit()->styleSheet(), QString());
    QCOMPARE(edit->getValue(), QString());
    QCOMPARE(edit->count(), 0);
    QCOMPARE(changes.count(), 0);
}

// A two-digit year keeps the century of a date that was set until it is typed anew.
void DateEditTest::otherCentury()
{
    DateEdit edit;
    edit.setValue("1999-12-31");
    const QString last = edit.currentText().right(1);
    edit.lineEdit()->end(false);
    QTest::keyClick(&edit, Qt::Key_Backspace);
    const bool twoDigits = !QLocale::system().dateFormat(QLocale::ShortFormat).contains("yyyy");
    QTest::keyClicks(&edit, last);
    QCOMPARE(edit.getValue(), systemForm(twoDigits ? "2099.12.31" : "1999.12.31"));
}

void DateEditTest::validator()
{
    const DateValidator validator;
    const QDate day(2015, 3, 1);
    int pos = 0;
    for (QString text :
         {QString(), typedForm(day), datetime(day).toSystemString(true, QLocale::ShortFormat)}) {
        const QString before = text;
        QCOMPARE(validator.validate(text, pos), QValidator::Acceptable);
        validator.fixup(text);
        QCOMPARE(text, before);
    }
    for (QString text : {typedForm(day).chopped(3), typedForm(day) + "x", QString("soon")}) {
        QCOMPARE(validator.validate(text, pos), QValidator::Intermediate);
        validator.fixup(text);
        QVERIFY(text.isNull());
    }
}

void DateEditTest::calendarByKeyboard_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifier");
    QTest::newRow("Down") << int(Qt::Key_Down) << int(Qt::NoModifier);
    QTest::newRow("Alt+Down") << int(Qt::Key_Down) << int(Qt::AltModifier);
    QTest::newRow("F4") << int(Qt::Key_F4) << int(Qt::NoModifier);
}

void DateEditTest::calendarByKeyboard()
{
    QFETCH(int, key);
    QFETCH(int, modifier);
    QWidget form;
    auto *const edit = new DateEdit(&form);
    form.show();
    edit->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    QSignalSpy changes(edit, &DateEdit::changedValue);
    const auto open = [&] {
        QTest::keyClick(edit, Qt::Key(key), Qt::KeyboardModifiers(modifier));
        return qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
    };
    const auto press = [](Qt::Key inCalendar) {
        QTest::keyClick(QApplication::focusWidget(), inCalendar);
    };

    QCalendarWidget *const calendar = open();
    QVERIFY(calendar);
    QCOMPARE(calendar->selectedDate(), QDate::currentDate());
    QCOMPARE(calendar->firstDayOfWeek(), QLocale::system().firstDayOfWeek());
    press(Qt::Key_Escape);
    QVERIFY(!calendar->isVisible());
    QVERIFY(edit->hasFocus());
    QCOMPARE(changes.count(), 0);

    edit->setValue("1999.12.30 00:00:00.000");
    changes.clear();
    QVERIFY(open());
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    QVERIFY(!calendar->isVisible());
    QVERIFY(edit->hasFocus());
    QCOMPARE(edit->getValue(), systemForm("1999.12.31"));
    QCOMPARE(changes.count(), 1);
    QVERIFY(open());
    press(Qt::Key_Return);
    QCOMPARE(changes.count(), 1);
}

void DateEditTest::calendarByMouse_data()
{
    QTest::addColumn<bool>("twice");
    QTest::newRow("one click") << false;
    QTest::newRow("two clicks") << true;
}

void DateEditTest::calendarByMouse()
{
    QFETCH(bool, twice);
    DateEdit edit;
    edit.show();
    edit.setValue("2015-03-01");
    QSignalSpy changes(&edit, &DateEdit::changedValue);
    QCalendarWidget *const calendar = calendarOf(edit);
    QVERIFY(calendar);
    clickDay(calendar, 17, twice);
    QVERIFY(!calendar->isVisible());
    QCOMPARE(edit.getValue(), systemForm("2015.03.17"));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toString(), systemForm("2015.03.17"));
}

void DateEditTest::calendarStaysOnTheScreen_data()
{
    QTest::addColumn<QPoint>("corner");
    QTest::newRow("top left") << QPoint(0, 0);
    QTest::newRow("top right") << QPoint(1, 0);
    QTest::newRow("bottom left") << QPoint(0, 1);
    QTest::newRow("bottom right") << QPoint(1, 1);
}

void DateEditTest::calendarStaysOnTheScreen()
{
    QFETCH(QPoint, corner);
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

void DateEditTest::calendarGoesWithTheEditor()
{
    auto edit = std::make_unique<DateEdit>();
    edit->show();
    const QPointer<QCalendarWidget> calendar(calendarOf(*edit));
    QVERIFY(calendar);
    edit->hide();
    QVERIFY(!calendar->isVisible());
    edit->show();
    edit->showPopup();
    edit.reset();
    QVERIFY(!calendar);
}

QTEST_MAIN(DateEditTest)
#include "tst_dateedit.moc"
