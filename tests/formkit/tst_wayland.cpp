// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/combobox.h>
#include <formkit/dateedit.h>
#include <formkit/numbereditor.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QCalendarWidget>
#include <QCompleter>
#include <QProcess>
#include <QTableView>
#include <QTemporaryDir>
#include <QVBoxLayout>

namespace {

// Starts a program, and waits for a line of it or for a file that it makes; ends this program when
// nothing comes.
QByteArray start(QProcess *program, const QString &command, const QString &file = {})
{
    program->setStandardErrorFile(QProcess::nullDevice());
    QStringList words = command.split(' ');
    program->start(words.takeFirst(), words);
    for (int i = 0; i < 300; ++i) {
        if (program->waitForReadyRead(100) && file.isEmpty())
            return program->readAllStandardOutput().trimmed();
        if (QFile::exists(file))
            return {};
    }
    qFatal("%s does not start.", qPrintable(command));
}

// Input as it comes from a hand: words of xdotool.
bool input(const QString &words)
{
    return QProcess::execute("xdotool", words.split(' ')) == 0;
}

bool click(const QWidget *widget, const QPoint &place)
{
    const QPoint global = widget->mapToGlobal(place);
    return input(QString("mousemove %1 %2 click 1").arg(global.x()).arg(global.y()));
}

bool click(const QWidget *widget)
{
    return click(widget, widget->rect().center());
}

// Where a shown date stands in the calendar that is open.
const QTableView *openCalendar()
{
    const QWidget *const popup = QApplication::activePopupWidget();
    return popup ? popup->findChild<QTableView *>() : nullptr;
}

QPoint placeOf(const QTableView *days, const QVariant &day)
{
    // The days of the month before come first.
    for (int cell = 7; cell < 49; ++cell) {
        const QModelIndex index = days->model()->index(cell / 7, cell % 7 + 1);
        if (index.data() == day && cell > 13)
            return days->visualRect(index).center();
    }
    return {};
}

} // namespace

/// A form under a Wayland compositor (weston), whose only screen is a window of an X server without
/// one (Xvfb); the form fills it, so that places on both are the same.
class WaylandTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void calendar();
    void typing();
    void comboList();
    void typeAhead();
    void drag();

private:
    QWidget m_form;
    DateEdit *m_date = new DateEdit;
    NumberEditor *m_price = new NumberEditor;
    NumberEditor *m_amount = new NumberEditor;
    ComboBox *m_box = new ComboBox;
};

void WaylandTest::initTestCase()
{
    auto *const layout = new QVBoxLayout(&m_form);
    for (QWidget *const control : QWidgetList{m_date, m_price, m_amount, m_box})
        layout->addWidget(control, 0, Qt::AlignLeft);
    layout->addStretch();
    m_box->addItems({"Albatross", "Bittern", "Bunting", "Crane"});
    m_form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_form));
    QTRY_COMPARE(m_form.size(), QSize(800, 600));
    // Qt 6 does not hear the click with which the pointer comes in.
    QVERIFY(input("mousemove 700 500 click 1"));
    QTest::qWait(500);
}

// A click at the place where the calendar ought to be hits the day.
void WaylandTest::calendar()
{
    m_date->setValue("2026-04-24");
    QVERIFY(click(m_date, m_date->rect().topRight() + QPoint(-8, 10)));
    QTRY_VERIFY(openCalendar());
    QTest::qWait(500);
    QVERIFY(click(openCalendar()->viewport(), placeOf(openCalendar(), 22)));
    QTRY_COMPARE(m_date->getValue().left(10), QString("2026.04.22"));
}

void WaylandTest::typing()
{
    QVERIFY(click(m_price));
    QTRY_VERIFY(m_price->hasFocus());
    QVERIFY(input("type --delay 30 -- -1234567,5"));
    QTRY_COMPARE(m_price->text(), QString("-1.234.567,5"));
    QVERIFY(input("key Num_Lock key BackSpace key BackSpace key 91 key 2 key Num_Lock"));
    QTRY_COMPARE(m_price->getValue(), QString("-1234567.2"));
}

void WaylandTest::comboList()
{
    QVERIFY(click(m_box, m_box->rect().topRight() + QPoint(-8, 10)));
    QTRY_VERIFY(m_box->view()->isVisible());
    QTest::qWait(500);
    const QRect row = m_box->view()->visualRect(m_box->model()->index(1, 0));
    QVERIFY(click(m_box->view()->viewport(), row.center()));
    QTRY_COMPARE(m_box->currentText(), QString("Bittern"));
    QTRY_VERIFY(!m_box->view()->isVisible());
}

void WaylandTest::typeAhead()
{
    QVERIFY(click(m_box->lineEdit()));
    QVERIFY(input("key ctrl+a type --delay 50 bu"));
    QTRY_VERIFY(m_box->completer()->popup()->isVisible());
    QTest::qWait(500);
    QVERIFY(input("key Down key Return"));
    QTRY_COMPARE(m_box->currentText(), QString("Bunting"));
    QTRY_COMPARE(m_box->currentIndex(), 2);
}

// A number goes from one editor to the other.
void WaylandTest::drag()
{
    m_price->setDragEnabled(true);
    m_price->setValue("12.5");
    QVERIFY(click(m_price));
    QVERIFY(input("key ctrl+a"));
    QTRY_COMPARE(m_price->selectedText(), QString("12,5"));
    const QRect number = m_price->rect().adjusted(0, 0, -12, 0);
    const QPoint from = m_price->mapToGlobal(QPoint(number.right(), number.center().y()));
    const QPoint to = m_amount->mapToGlobal(m_amount->rect().center());
    QString words = QString("mousemove %1 %2 mousedown 1").arg(from.x()).arg(from.y());
    for (int part = 1; part <= 8; ++part) {
        const QPoint at = from + (to - from) * part / 8;
        words += QString(" sleep 0.1 mousemove %1 %2").arg(at.x()).arg(at.y());
    }
    QProcess hand;
    hand.start("xdotool", (words + " sleep 0.3 mouseup 1").split(' '));
    QTRY_COMPARE(m_amount->getValue(), QString("12.5"));
    QTRY_COMPARE(hand.state(), QProcess::NotRunning);
}

int main(int argc, char **argv)
{
    QTemporaryDir folder;
    QProcess server;
    const QByteArray display =
        start(&server, "Xvfb -displayfd 1 -screen 0 800x600x24 -nolisten tcp");
    qputenv("DISPLAY", ':' + display);
    qputenv("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
    QProcess compositor;
    start(&compositor,
          "weston --backend=x11-backend.so --use-pixman --shell=kiosk-shell.so --no-config "
          "--width=800 --height=600 --socket=formkit",
          folder.filePath("formkit"));
    qputenv("WAYLAND_DISPLAY", "formkit");
    qputenv("QT_QPA_PLATFORM", "wayland");
    qputenv("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1");
    qputenv("LC_ALL", "de_DE.UTF-8");
    int failed = 0;
    {
        QApplication application(argc, argv);
        WaylandTest test;
        failed = QTest::qExec(&test, argc, argv);
    }
    for (QProcess *const program : {&compositor, &server}) {
        program->terminate();
        program->waitForFinished();
    }
    return failed;
}

#include "tst_wayland.moc"
