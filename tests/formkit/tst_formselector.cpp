#include <formkit/formselector.h>
#include <formkit/formvalidation.h>
#include <formkit/properties.h>
#include <formkit/state.h>
#include <formkit/summator.h>

#include <support/stricttest.h>

#include <QLabel>
#include <QRandomGenerator>
#include <QStateMachine>
#include <QVBoxLayout>

#include <functional>
#ifdef __GLIBC__
#include <malloc.h>
const auto heapInUse = [] { return mallinfo2().uordblks; };
#else
const auto heapInUse = [] { return size_t(0); };
#endif

// A control that counts what the hub writes into it and who listens to it.
class Probe : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Value MEMBER text WRITE setValue NOTIFY changedValue USER true)

public:
    void setValue(const QString &value)
    {
        text = value;
        ++writes;
        if (const auto deed = onWrite)
            deed();
    }
    void type(const QString &value) { emit changedValue(text = value); }
    int listeners() const { return receivers(SIGNAL(changedValue(QString))); }

    QString text;
    int writes = 0;
    std::function<void()> onWrite;

signals:
    void changedValue(const QString &value);
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
        for (QWidget *widget : QWidgetList{plain, price, volume, caption})
            column->addWidget(widget);
        caption->setBuddy(price);
        price->setProperty("field", "Price");
        volume->setProperty("field", "Volume");
        auto *const sum = new Summator(form);
        sum->setProperty("fields", "Price=Summand Total=Value " + offset + "=Addendum");
    }

    QPointer<QWidget> form = new QWidget;
    Probe *plain = new Probe;
    Probe *price = new Probe;
    SuperProbe *volume = new SuperProbe;
    QLabel *caption = new QLabel;
};

struct Order
{
    Order()
    {
        for (int i = 0; i < 3; ++i) {
            hub->setValue(QString("Offset%1").arg(i), QString("0.%1").arg(i + 1));
            selector->addWidget({1, i + 1}, pages[i].form);
        }
        selector->addWidget({2, 1}, pages[0].form);
        hub->connectAll(&window);
        selector->setHub(hub);
        window.show();
    }

    void choose(int stock, int board)
    {
        hub->setValue("StockId", QString::number(stock));
        hub->setValue("BoardId", QString::number(board));
    }
    // The pages that the window shows, '/', those whose own control the hub listens to.
    QString state() const
    {
        QString shown, bound;
        for (int i = 0; i < 3; ++i) {
            if (pages[i].form && pages[i].form->isVisible())
                shown += QString::number(i);
            if (pages[i].form && pages[i].plain->listeners() == 1)
                bound += QString::number(i);
        }
        return shown + '/' + bound;
    }

    QWidget window;
    QPointer<Properties> hub = new Properties(&window);
    QPointer<FormSelector> selector = new FormSelector(&window);
    SubForm pages[3] = {SubForm("Offset0"), SubForm("Offset1"), SubForm("Offset2")};
};

class FormSelectorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void pagesOfBoards();
    void storm();
    void disasters();
    void captionsThatGo();
    void stateTrace();
    void pagesOfFormFile();
};

void FormSelectorTest::pagesOfBoards()
{
    Order order;
    QCOMPARE(order.state(), QString("/"));
    QCOMPARE(order.pages[0].form->layout()->contentsMargins(), QMargins(7, 3, 9, 2));
    order.choose(1, 1);
    QCOMPARE(order.state(), QString("0/0"));

    // The same id again moves nothing; another board of the same page binds it anew, once.
    order.pages[0].plain->writes = 0;
    order.selector->setBoardId("1");
    QCOMPARE(order.pages[0].plain->writes, 0);
    order.selector->setStockId("2");
    QCOMPARE(order.pages[0].plain->writes, 1);
    order.selector->setBoardId("no number");
    QCOMPARE(order.selector->getStockId() + order.selector->getBoardId(), QString("20"));
    QCOMPARE(order.state(), QString("/"));

    // Sub-forms that come for the board and are destroyed leave nothing behind.
    const int objects = order.window.findChildren<QObject *>().size();
    for (int i = 0; i < 5; ++i) {
        QWidget guest;
        order.selector->addWidget({2, 0}, nullptr);
        order.selector->addWidget({2, 0}, &guest);
        QVERIFY(guest.isVisible());
    }
    order.selector->addWidget({2, 0}, order.pages[2].form);
    QCOMPARE(order.state(), QString("2/2"));
    QCOMPARE(order.window.findChildren<QObject *>().size(), objects);
    QCOMPARE(order.selector->getWidgetList().size(), 3);

    // Without a hub the page stays; another hub has its own say.
    order.selector->setHub(nullptr);
    QCOMPARE(order.state(), QString("2/"));
    Properties other;
    other.setValue("Value", "of the other");
    order.selector->setHub(&other);
    QCOMPARE(order.pages[2].plain->text, QString("of the other"));
    order.selector->setHub(order.hub);
    other.setValue("Value", "late");
    QCOMPARE(order.pages[2].plain->text, QString());
    QCOMPARE(order.state(), QString("2/2"));
}

void FormSelectorTest::storm()
{
    Order order;
    FormValidation validation;
    validation.setupPropWidgets(*order.hub, &order.window);
    const auto held = [&](const char *name) { return order.hub->values().value(name).toString(); };
    QRandomGenerator random(1);
    size_t heap[2];
    for (int turn = 0; turn < 10000; ++turn) {
        const int stock = random.bounded(1, 4);
        const int board = random.bounded(1, 4);
        const int page = stock == 1 ? board - 1 : stock == 2 && board == 1 ? 0 : -1;
        const QString text = QString::number(1000000 + turn);
        order.choose(stock, board);
        QCOMPARE(order.state(), page < 0 ? QString("/") : QString("%1/%1").arg(page));
        if (page >= 0 && turn > 0)
            QCOMPARE(held("Total"), held("Price") + QString(".%1").arg(page + 1));
        for (const SubForm &sub : order.pages)
            sub.plain->writes = sub.price->writes = sub.volume->writes = 0;
        for (const char *name : {"Value", "Price", "Volume"})
            order.hub->setValue(name, text);
        validation.set({turn % 2 ? "Price" : "Volume"});
        for (int i = 0; i < 3; ++i) {
            const SubForm &sub = order.pages[i];
            QCOMPARE(sub.plain->writes, int(i == page));
            QCOMPARE(sub.price->listeners(), int(i == page));
            QCOMPARE(sub.price->writes + sub.volume->writes + sub.volume->listeners(), 3);
            QCOMPARE(sub.caption->styleSheet().isEmpty(), turn % 2 == 0);
            sub.plain->type(QString::number(i));
        }
        QCOMPARE(held("Value"), page < 0 ? text : QString::number(page));
        QCoreApplication::processEvents();
        if (turn % 5000 == 4999) {
            order.choose(1, 1);
            heap[turn / 5000] = heapInUse();
        }
    }
    QVERIFY2(heap[1] < heap[0] + 20000, qPrintable(QString::number(heap[1] - heap[0])));
}

// What a control may do while its page is being bound, and what the order shows then.
void FormSelectorTest::disasters()
{
    const auto sendAway = [](Order &o) {
        o.pages[2].plain->onWrite = [&o] { o.hub->setValue("BoardId", "2"); };
        o.hub->setValue("BoardId", "3");
    };
    const QPair<QString, std::function<void(Order &)>> rows[] = {
        {"2/2", [](Order &o) { o.hub->setValue("BoardId", "3"); }},
        {"/", [](Order &o) { o.hub->setValue("BoardId", "9"); }},
        {"/", [](Order &o) { delete o.pages[1].form; }},
        {"1/", [](Order &o) { delete o.hub; }},
        {"/", [](Order &o) { delete o.selector; }},
        {"/", sendAway},
    };
    expectWarning("FormSelector::setWidget: the sub-forms send each other away");
    for (const auto &[state, deed] : rows) {
        Order order;
        order.choose(1, 1);
        order.pages[1].plain->onWrite = [&order, deed = deed] { deed(order); };
        order.choose(1, 2);
        QCOMPARE(order.state(), state);
        if (order.hub && order.selector) {
            order.choose(1, 1);
            QCOMPARE(order.state(), QString("0/0"));
        }
    }
}

// Captions that are destroyed while they are marked, and what is no caption.
void FormSelectorTest::captionsThatGo()
{
    Order order;
    order.choose(1, 1);
    FormValidation validation;
    validation.setupPropWidgets(*order.hub, nullptr);
    validation.setupPropWidgets(*order.hub, &order.window);
    validation.set({"Price"});
    delete order.pages[0].caption;
    validation.set({"Price", "Volume"});
    QCOMPARE(order.pages[1].caption->styleSheet(), QString("color: red"));
    validation.setInvalidWidgets({order.pages[0].price, nullptr, order.pages[2].caption});
    QCOMPARE(order.pages[1].caption->styleSheet(), QString());
    QCOMPARE(order.pages[2].caption->styleSheet() + order.pages[0].price->styleSheet(),
             QString("color: red"));
}

void FormSelectorTest::stateTrace()
{
    QStateMachine machine;
    QState plain(&machine);
    auto *top = new State("Desk", "Top", &plain);
    auto *leaf = new State("Order", "Leaf", QState::ParallelStates, top);
    auto *away = new QState(&machine);
    machine.setInitialState(&plain);
    plain.setInitialState(top);
    top->setInitialState(leaf);
    leaf->addTransition(away);
    leaf->setName("Last");
    leaf->setPrefix("Ticket");
    QCOMPARE(top->objectName() + ' ' + leaf->objectName(), QString("Desk::Top Order::Leaf"));

    machine.start();
    QTRY_VERIFY(away->active());
    QCOMPARE(messages(),
             QStringList({"Entering state:  Desk :: Top", "Entering state:  Ticket :: Top->Last",
                          "Exiting state:  Ticket :: Top->Last", "Exiting state:  Desk :: Top"}));
}

// The boards of a page come before it, after it and anew; one that is shown follows at once.
void FormSelectorTest::pagesOfFormFile()
{
    Properties hub;
    FormSelector selector(&hub);
    selector.show();
    SubForm first("Offset0"), second("Offset1");
    first.form->setObjectName("first");
    const auto shown = [&] { return 2 * second.form->isVisible() + first.form->isVisible(); };
    first.form->setProperty("boards", "1,1; 1,2");
    selector.addPage(first.form);
    selector.addPage(second.form);
    selector.addPage(nullptr);
    selector.setWidget({1, 2});
    QCOMPARE(shown(), 1);
    second.form->setProperty("boards", QByteArray("1,3;1,2"));
    QCOMPARE(shown(), 2);
    QCOMPARE(first.plain->listeners() + 2 * second.plain->listeners(), 2);
    first.form->setProperty("boards", "1,3");
    second.form->setProperty("boards", QVariant());
    QCOMPARE(shown(), 0);
    selector.setWidget({1, 3});
    QCOMPARE(shown(), 1);
    expectWarning("FormSelector::addPage: page \"first\" serves no board.*: \"1,3;2\"");
    first.form->setProperty("boards", "1,3;2");
    QCOMPARE(shown(), 0);

    // A control that destroys its page, or the selector, as the boards arrive.
    second.plain->onWrite = [&] { delete second.form; };
    hub.setValue("Value", "1");
    second.form->setProperty("boards", "1,3");
    QVERIFY(!second.form);
    QCOMPARE(selector.getWidgetList(), QList<QWidget *>{first.form});
}

QTEST_MAIN(FormSelectorTest)
#include "tst_formselector.moc"
