#include <formkit/formselector.h>
#include <formkit/formvalidation.h>
#include <formkit/properties.h>
#include <formkit/summator.h>

#include "support/stricttest.h"

#include <QLabel>
#include <QRandomGenerator>
#include <QVBoxLayout>

#include <functional>

#ifdef __GLIBC__
#include <malloc.h>
static size_t heapInUse()
{
    return mallinfo2().uordblks;
}
#else
static size_t heapInUse()
{
    return 0;
}
#endif

// A control that counts what the hub writes into it and who listens to it.
class Probe : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Value READ value WRITE setValue NOTIFY changedValue USER true)

public:
    using QWidget::QWidget;
    QString value() const { return m_value; }
    void setValue(const QString &value)
    {
        m_value = value;
        ++writes;
        if (const auto deed = onWrite)
            deed();
    }
    void type(const QString &value)
    {
        m_value = value;
        emit changedValue(value);
    }
    int listeners() const { return receivers(SIGNAL(changedValue(QString))); }

    int writes = 0;
    std::function<void()> onWrite;

signals:
    void changedValue(const QString &value);

private:
    QString m_value;
};

// One whose binding disconnectAll() does not undo.
class SuperProbe : public Probe
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")
};

// A sub-form: a control of its own name, one of the name Price with a caption, one of the name
// Volume that stays bound, and Total, the sum of the price and an offset of its own.
struct SubForm
{
    explicit SubForm(const QString &offset)
    {
        auto *column = new QVBoxLayout(form);
        column->setContentsMargins(7, 8, 9, 10);
        for (QWidget *widget : {plain, price, static_cast<Probe *>(volume)})
            column->addWidget(widget);
        column->addWidget(caption);
        caption->setBuddy(price);
        price->setProperty("field", "Price");
        volume->setProperty("field", "Volume");
        auto *summator = new Summator(form);
        summator->setProperty("fields", "Price=Summand Total=Value " + offset + "=Addendum");
    }

    QPointer<QWidget> form = new QWidget;
    Probe *plain = new Probe;
    Probe *price = new Probe;
    SuperProbe *volume = new SuperProbe;
    QLabel *caption = new QLabel;
};

struct Order
{
    explicit Order(bool hubFirst = false)
    {
        if (hubFirst)
            selector->setHub(hub);
        for (int i = 0; i < 3; ++i) {
            hub->setValue(QStringLiteral("Offset%1").arg(i), QStringLiteral("0.%1").arg(i + 1));
            selector->addWidget({1, i + 1}, pages[i].form);
        }
        selector->addWidget({2, 1}, pages[0].form);
        hub->connectAll(&window);
        selector->setHub(hub);
        window.show();
    }
    ~Order() { delete hub; }

    void choose(int stock, int board)
    {
        hub->setValue("StockId", QString::number(stock));
        hub->setValue("BoardId", QString::number(board));
    }
    // The pages that the window shows and those whose own control the hub listens to.
    QList<int> shown() const
    {
        return which([](const SubForm &page) { return page.form->isVisible(); });
    }
    QList<int> bound() const
    {
        return which([](const SubForm &page) { return page.plain->listeners() == 1; });
    }
    QList<int> which(const std::function<bool(const SubForm &)> &has) const
    {
        QList<int> found;
        for (int i = 0; i < 3; ++i) {
            if (pages[i].form && has(pages[i]))
                found << i;
        }
        return found;
    }

    QWidget window;
    QPointer<Properties> hub = new Properties;
    QPointer<FormSelector> selector = new FormSelector(&window);
    SubForm pages[3] = {SubForm("Offset0"), SubForm("Offset1"), SubForm("Offset2")};
};

using Pages = QList<int>;
using Deed = std::function<void(Order &)>;
Q_DECLARE_METATYPE(Deed)

class FormSelectorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void pagesOfBoards();
    void registering();
    void storm();
    void disasters_data();
    void disasters();
    void withoutHub();
};

void FormSelectorTest::pagesOfBoards()
{
    Order order;
    QCOMPARE(order.shown(), Pages());
    QCOMPARE(order.bound(), Pages());
    order.choose(1, 2);
    QCOMPARE(order.shown(), Pages{1});
    QCOMPARE(order.selector->getStockId() + order.selector->getBoardId(), QString("12"));

    // The same id again moves nothing; another board of the same page binds it anew, once.
    order.choose(1, 1);
    order.pages[0].plain->writes = 0;
    order.selector->setBoardId("1");
    QCOMPARE(order.pages[0].plain->writes, 0);
    order.selector->setStockId("2");
    QCOMPARE(order.pages[0].plain->writes, 1);
    QCOMPARE(order.shown() + order.bound(), Pages({0, 0}));

    order.selector->setBoardId("no number");
    QCOMPARE(order.selector->getBoardId(), QString("0"));
    QCOMPARE(order.shown() + order.bound(), Pages());
    QCOMPARE(order.selector->getWidgetList().size(), 3);
}

void FormSelectorTest::registering()
{
    Order order;
    QCOMPARE(order.pages[0].form->layout()->contentsMargins(), QMargins(7, 3, 9, 2));
    order.choose(5, 5);
    order.selector->addWidget({5, 5}, nullptr);
    QCOMPARE(order.shown(), Pages());
    order.selector->addWidget({5, 5}, order.pages[1].form);
    QCOMPARE(order.shown() + order.bound(), Pages({1, 1}));
    order.selector->addWidget({5, 5}, order.pages[2].form);
    QCOMPARE(order.shown() + order.bound(), Pages({2, 2}));

    // Sub-forms that come and go leave nothing behind.
    const int objects = order.window.findChildren<QObject *>().size();
    for (int i = 0; i < 5; ++i) {
        QWidget guest;
        order.selector->addWidget({5, 5}, &guest);
        QVERIFY(guest.isVisible());
    }
    order.selector->addWidget({5, 5}, order.pages[0].form);
    QCOMPARE(order.window.findChildren<QObject *>().size(), objects);
    QCOMPARE(order.shown(), Pages{0});
}

void FormSelectorTest::storm()
{
    Order order;
    FormValidation validation;
    validation.setupPropWidgets(*order.hub, &order.window);
    QRandomGenerator random(1);
    size_t heap = 0;
    for (int turn = 0; turn < 10000; ++turn) {
        const int stock = random.bounded(1, 4);
        const int board = random.bounded(1, 4);
        const int page = stock == 1 ? board - 1 : stock == 2 && board == 1 ? 0 : -1;
        const QString text = QString::number(1000000 + turn);
        order.choose(stock, board);
        QCOMPARE(order.shown(), page < 0 ? Pages() : Pages{page});

        for (const SubForm &sub : order.pages)
            sub.plain->writes = sub.price->writes = sub.volume->writes = 0;
        for (const char *name : {"Value", "Price", "Volume"})
            order.hub->setValue(name, text);
        validation.set({turn % 2 ? "Price" : "Volume"});
        for (int i = 0; i < 3; ++i) {
            const SubForm &sub = order.pages[i];
            QCOMPARE(sub.plain->writes, int(i == page));
            QCOMPARE(sub.price->writes + sub.volume->writes, 2);
            QCOMPARE(sub.plain->listeners() + sub.price->listeners(), i == page ? 2 : 0);
            QCOMPARE(sub.volume->listeners(), 1);
            QCOMPARE(sub.caption->styleSheet().isEmpty(), turn % 2 == 0);
            sub.plain->type(QStringLiteral("typed on %1").arg(i));
        }
        const QString typed = page < 0 ? text : QStringLiteral("typed on %1").arg(page);
        QCOMPARE(order.hub->values()["Value"], typed);
        if (page >= 0)
            QCOMPARE(order.hub->values()["Total"], text + QStringLiteral(".%1").arg(page + 1));

        QCoreApplication::processEvents();
        if (turn == 5000)
            heap = heapInUse();
    }
    QVERIFY2(heapInUse() < heap + 16 * 1024, qPrintable(QString::number(heapInUse() - heap)));
}

void FormSelectorTest::disasters_data()
{
    const auto destroysForm = [](Order &order) { delete order.pages[1].form; };
    const auto asksFor = [](const char *board) {
        return [board](Order &order) { order.hub->setValue("BoardId", board); };
    };
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<Pages>("left");
    QTest::newRow("asks for another board") << Deed(asksFor("3")) << Pages{2};
    QTest::newRow("asks for no board") << Deed(asksFor("9")) << Pages();
    QTest::newRow("destroys its page") << Deed(destroysForm) << Pages();
    QTest::newRow("destroys the selector") << Deed([](Order &o) { delete o.selector; }) << Pages();
    QTest::newRow("destroys the hub") << Deed([](Order &o) { delete o.hub; }) << Pages();
    QTest::newRow("pages send each other away") << Deed([](Order &order) {
        order.pages[2].plain->onWrite = [&order] { order.hub->setValue("BoardId", "2"); };
        order.hub->setValue("BoardId", "3");
    }) << Pages();
}

// What a control does while its page is being bound.
void FormSelectorTest::disasters()
{
    QFETCH(Deed, deed);
    QFETCH(Pages, left);
    if (QTest::currentDataTag() == QByteArray("pages send each other away"))
        expectWarning("FormSelector::setWidget: the sub-forms send each other away");
    Order order;
    order.choose(1, 1);
    order.pages[1].plain->onWrite = [&order, deed] { deed(order); };
    order.choose(1, 2);
    QCOMPARE(order.shown(), left);
    QCOMPARE(order.bound(), left);
    if (!order.selector)
        return;
    if (order.pages[1].form)
        order.pages[1].plain->onWrite = nullptr;
    order.pages[2].plain->onWrite = nullptr;
    order.choose(1, 1);
    QCOMPARE(order.shown() + order.bound(), Pages({0, 0}));
    order.choose(1, 2);
    QCOMPARE(order.shown() + order.bound(), order.pages[1].form ? Pages({1, 1}) : Pages());
}

void FormSelectorTest::withoutHub()
{
    Order order(true);
    order.choose(1, 1);
    order.selector->setHub(nullptr);
    QCOMPARE(order.bound(), Pages());
    order.selector->setBoardId("2");
    QCOMPARE(order.shown(), Pages{1});

    Properties other;
    other.setValue("Value", "of the other");
    order.selector->setHub(&other);
    QCOMPARE(order.pages[1].plain->value(), QString("of the other"));
    order.selector->setHub(order.hub);
    delete order.hub;
    order.selector->setBoardId("3");
    QCOMPARE(order.shown(), Pages{2});
    QCOMPARE(order.bound(), Pages());
}

QTEST_MAIN(FormSelectorTest)
#include "tst_formselector.moc"
