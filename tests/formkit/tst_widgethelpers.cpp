#include "support/datafile.h"
#include "support/stricttest.h"

#include <formkit/objectdeleter.h>
#include <formkit/signalblocker.h>
#include <formkit/widgethelpers.h>

#include <QPointer>
#include <QScreen>
#include <QWidget>

class WidgetHelpersTest : public StrictTest
{
    Q_OBJECT

private slots:
    void placement();
    void texts();
    void signalBlocker();
    void objectDeleter();
};

void WidgetHelpersTest::placement()
{
    QWidget form;
    form.setGeometry(50, 60, 400, 300);
    QWidget panel(&form);
    panel.setGeometry(30, 40, 219, 119);
    QWidget child(&panel);
    QWidget window;
    const auto point = [](const QString &text) {
        return QPoint(text.section(' ', 0, 0).toInt(), text.section(' ', 1).toInt());
    };
    const QHash<QChar, Qt::Alignment> flags = {{'L', Qt::AlignLeft},    {'H', Qt::AlignHCenter},
                                               {'R', Qt::AlignRight},   {'T', Qt::AlignTop},
                                               {'V', Qt::AlignVCenter}, {'B', Qt::AlignBottom}};
    QCOMPARE(window.screen()->size(), QSize(800, 600));
    for (const DataRow &row : rowsOf("placements.txt")) {
        Qt::Alignment alignment;
        for (const QChar flag : row[0])
            alignment |= flags[flag];
        for (QWidget *widget : {&child, &window}) {
            widget->setGeometry(7, 8, 42, 22);
            moveWidgetRelatively(widget, &panel, alignment);
            QCOMPARE(widget->mapToGlobal({}), panel.mapToGlobal(point(row[1])));
            moveWidgetRelatively(widget, nullptr, alignment);
            QCOMPARE(widget->mapToGlobal({}), point(row[2]));
        }
    }
    moveWidgetRelatively(nullptr, &panel, Qt::AlignLeft);
    QCOMPARE(appTopLevelWidget(&child), &form);
    child.setWindowFlag(Qt::Tool);
    QCOMPARE(appTopLevelWidget(&child), &child);
    QVERIFY(!appTopLevelWidget(nullptr));
}

void WidgetHelpersTest::texts()
{
    const std::tuple<QString, int, QString> rows[] = {
        {"ab", 5, "-ab--"}, {"ab", 6, "--ab--"}, {"ab", 2, "ab"}, {"ab", -1, "ab"}, {"", 1, "-"}};
    for (const auto &[text, width, result] : rows)
        QCOMPARE(centerJustified(text, width, '-'), result);
}

void WidgetHelpersTest::signalBlocker()
{
    QObject object;
    {
        const SignalBlocker blocked(&object, true);
        {
            const SignalBlocker unblocked(&object, false);
            QVERIFY(!object.signalsBlocked());
        }
        QVERIFY(object.signalsBlocked());
    }
    QVERIFY(!object.signalsBlocked());
}

void WidgetHelpersTest::objectDeleter()
{
    auto first = std::make_unique<QObject>();
    auto second = std::make_unique<QObject>();
    auto *deleter = new ObjectDeleter;
    const QPointer<QObject> kept = new QObject(deleter);
    expectWarning("ObjectDeleter::addParent: no owner");
    for (QObject *owner : {first.get(), second.get(), first.get(), static_cast<QObject *>(nullptr)})
        deleter->addParent(owner);
    first.reset();
    QTest::qWait(0);
    QVERIFY(kept);
    second.reset();
    QVERIFY(kept);
    QTRY_VERIFY(!kept);
}

QTEST_MAIN(WidgetHelpersTest)
#include "tst_widgethelpers.moc"
