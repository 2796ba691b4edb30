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

// The simplest bindable control, which counts what the hub writes into it and who listens to it,
// with hooks to misbehave in.
class Probe : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value MEMBER value WRITE setValue NOTIFY changed USER true)
    Q_PROPERTY(QString Plain MEMBER plain)
    Q_PROPERTY(QString Fixed READ objectName)

public:
    void setValue(const QString &text)
    {
        ++writes;
        value = normal ? normal(text) : text;
        if (value != text)
            emit changed();
        else if (const auto deed = onWrite)
            deed();
    }
    void edit(const QString &text)
    {
        value = text;
        emit changed();
    }
    int listeners() const { return receivers(SIGNAL(changed())); }

    QString value, plain;
    int writes = 0;
    std::function<void()> onWrite;
    std::function<QString(QString)> normal;

signals:
    void changed();
};

class Closed : public Probe
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Inner MEMBER plain)
};

class Heir : public Closed
{
    Q_OBJECT
};

// One whose binding disconnectAll() does not undo.
class Super : public Probe
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")
    Q_PROPERTY(QString Own MEMBER plain)
};

class SuperSuper : public Super
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")
};

// Three controls of one name and one that is bound by hand.
struct Form
{
    std::unique_ptr<Properties> hub = std::make_unique<Properties>();
    QVector<QPointer<Probe>> probes;
    Probe newcomer, extra;

    ~Form() { qDeleteAll(probes); }
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
    Super *volume = new Super;
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
    // The pages that can be seen, '/', those whose own control the hub listens to.
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

// What ties a form together: the hub, the pages, the captions and the states.
class FormsTest : public StrictTest
{
    Q_OBJECT

private slots:
    void walk();
    void bindings();
    void comingAndGoing();
    void mischief();
    void normalForms();
    void addressUsedAgain();
    void pagesOfBoards();
    void storm();
    void disasters();
    void captionsThatGo();
    void stateTrace();
    void pagesOfFormFile();
};

template <typename Object> QWidget *make()
{
    return new Object;
}

// The names under which an object and the child inside it are bound.
void FormsTest::walk()
{
    const char *const all = "Fixed Plain Value";
    const char *const garbage = "  == x =Valu A= B=No \xe2\x82\xac C=Plain=2";
    const std::tuple<QWidget *(*)(), QVariant, QVariant, QString, QString> rows[] = {
        {make<Probe>, {}, {}, all, all},
        {make<Closed>, {}, {}, "Inner", ""},
        {make<Super>, {}, {}, all, all},
        {make<SuperSuper>, {}, {}, all, all},
        {make<Heir>, {}, {}, "", ""},
        {make<QWidget>, {}, {}, "", all},
        {make<Probe>, "Price", {}, "Fixed Plain Price", all},
        {make<Probe>, "Price", "A=Value B=Plain", "Fixed B A", all},
        {make<Probe>, {}, "A=Value A=Plain", "Fixed A", all},
        {make<Probe>, {}, garbage, "Fixed C Value", all},
    };
    for (const auto &[makeObject, field, fields, own, inner] : rows) {
        const QScopedPointer<QWidget> object(makeObject());
        auto *const child = new Probe;
        child->setParent(object.data());
        object->setProperty("field", field);
        object->setProperty("fields", fields);
        Properties hub;
        QVERIFY(!hub.connectAll(nullptr) && !hub.disconnectAll(nullptr));
        hub.connectAll(object.data());
        QCOMPARE(hub.objectProperty(object.data()).join(' '), own);
        QCOMPARE(hub.objectProperty(child).join(' '), inner);
    }
    Properties hub;
    Closed probe;
    expectWarning("Properties::connect: property \"No\" not found for object Closed\\(0x.*\\)");
    expectWarning("Properties::disconnect: property \"No\" not found for object Closed\\(0x.*\\)");
    QVERIFY(!hub.connectOne(&probe, "No") && !hub.disconnectOne(&probe, "No"));
    hub.connectAll(&probe);
    hub.dumpObjProp();
    const QRegularExpression dump("^Properties::dumpObjProp Properties\\(0x.*\\)\n"
                                  "objProp4: Closed\\(0x.*\\) \\(\"Inner\"\\)$");
    QVERIFY(dump.match(messages().mid(2).join('\n')).hasMatch());
}

// The first with a notify signal gives, the others take; who listens hears of all of it once a
// turn.
void FormsTest::bindings()
{
    Properties hub;
    QSignalSpy changes(&hub, &Properties::hasChanged);
    Probe first, second;
    first.value = "one";
    const auto connectAll = [&] {
        for (Probe *probe : {&first, &second, &second})
            QVERIFY(hub.connectOne("Price", probe, "Value"));
    };
    const auto disconnect = [&] {
        QVERIFY(hub.disconnectOne("Price", &second, "Value"));
        first.edit("3");
        second.edit("unheard");
    };
    // What is done; the values of the hub and of the two, their writes, and the turns with changes.
    const std::pair<std::function<void()>, const char *> rows[] = {
        {[&] { hub.connectOne("Price", &second, "Plain"); }, " one   0 0 0"},
        {connectAll, "one one one  0 2 0"},
        {[&] { hub.setValue("Price", "1"); }, "1 1 1 1 1 2 1"},
        {[&] { second.edit("2"); }, "2 2 2 1 1 0 1"},
        {[&] { hub.setValue("Price", "2"); }, "2 2 2 1 0 0 1"},
        {[&] { hub.setValue("Absent", ""); }, "2 2 2 1 0 0 1"},
        {[&] { second.edit("2"); }, "2 2 2 1 0 0 1"},
        {disconnect, "3 3 unheard 3 0 0 1"},
    };
    for (const auto &[deed, state] : rows) {
        first.writes = second.writes = 0;
        deed();
        QCoreApplication::processEvents();
        const QString values = QStringList{hub.values().value("Price").toString(), first.value,
                                           second.value, second.plain}
                                   .join(' ');
        const QString counts =
            QString(" %1 %2 %3").arg(first.writes).arg(second.writes).arg(changes.count());
        QCOMPARE(values + counts, QString(state));
        changes.clear();
    }
}

// Disconnecting is no mirror of connecting: what has another name or another class stays bound.
void FormsTest::comingAndGoing()
{
    Properties hub;
    QWidget form;
    Super super;
    Probe named, plain;
    for (Probe *probe : {static_cast<Probe *>(&super), &named, &plain})
        probe->setParent(&form);
    named.setProperty("field", "Alias");
    for (int visit = 0; visit < 3; ++visit) {
        hub.connectAll(&form);
        named.writes = plain.writes = 0;
        for (const char *name : {"Alias", "Value"})
            hub.setValue(name, QString::number(visit));
        QCOMPARE(named.writes + plain.writes, 2);
        named.edit("typed");
        QVERIFY(hub.disconnectAll(&form));
        named.edit("unheard");
        QCOMPARE(hub.values().value("Alias").toString(), QString("typed"));
        for (const char *name : {"Alias", "Value"})
            hub.setValue(name, "late");
        QCOMPARE(super.value + named.value + plain.value, QString("latelate%1").arg(visit));
    }
    QCOMPARE(hub.objectProperty(&plain), QStringList({"Fixed", "Plain", "Value"}));
}

// Whatever a control does while it is written, whichever of them it is and from wherever the
// value comes: nobody dead is written, and all that live agree at the end.
void FormsTest::mischief()
{
    using Deed = std::function<void(Form &, Probe *)>;
    const auto rebind = [](Form &form, Probe *self) {
        self->onWrite = nullptr;
        for (const QPointer<Probe> &other : form.probes) {
            form.hub->disconnectAll(other);
            form.hub->connectAll(other);
        }
    };
    const auto setTwice = [](Form &form, Probe *self) {
        self->onWrite = nullptr;
        form.hub->setValue("Value", "last");
        form.hub->setValue("Value", "set");
    };
    const Deed deeds[] = {
        [](Form &, Probe *self) { delete self; },
        [](Form &form, Probe *self) { delete form.probes[self != form.probes[0] ? 0 : 1]; },
        [](Form &form, Probe *self) { delete form.probes[self != form.probes[2] ? 2 : 1]; },
        [](Form &form, Probe *) { qDeleteAll(form.probes); },
        [](Form &form, Probe *) { form.hub.reset(); },
        [](Form &form, Probe *) { form.hub->connectOne("Value", &form.extra, "Value"); },
        [](Form &form, Probe *) { form.hub->setValue("Value", "last"); },
        rebind,
        setTwice,
    };
    const Deed roads[] = {
        [](Form &form, Probe *) { form.newcomer.edit("set"); },
        [](Form &form, Probe *self) { form.hub->connectAll(self); },
        [](Form &form, Probe *) {
            Values values;
            for (const char *name : {"Another", "Value", "Zero"})
                values.insert(name, "set");
            form.hub->setValues(values);
        },
    };
    for (const Deed &deed : deeds) {
        for (const Deed &road : roads) {
            for (int culprit = 0; culprit < 3; ++culprit) {
                Form form;
                for (int i = 0; i < 3; ++i) {
                    form.probes << new Probe;
                    form.hub->connectAll(form.probes.last());
                }
                form.hub->connectOne("Value", &form.newcomer, "Value");
                Probe *const self = form.probes[culprit];
                self->onWrite = [&form, self, &deed] { deed(form, self); };
                road(form, self);
                for (const QPointer<Probe> &probe : qAsConst(form.probes)) {
                    if (form.hub && probe)
                        QCOMPARE(probe->value, form.hub->values().value("Value").toString());
                }
            }
        }
    }
}

// One that answers in its own form is followed; those that contradict one another are left.
void FormsTest::normalForms()
{
    Properties hub;
    Probe probes[6];
    for (Probe &probe : probes)
        hub.connectOne("Code", &probe, "Value");
    probes[3].normal = [](const QString &text) { return text.toUpper(); };
    hub.setValue("Code", "xetr");
    for (const Probe &probe : probes)
        QCOMPARE(probe.value, QString("XETR"));

    for (int i : {0, 2, 4})
        probes[i].normal = [](const QString &text) { return text.toLower(); };
    expectWarning("Properties::setValue: the properties bound to \"Code\" disagree");
    hub.setValue("Code", "Misx");
    QCOMPARE(hub.values().value("Code").toString().toLower(), QString("misx"));
}

void FormsTest::addressUsedAgain()
{
    auto *const hub = new Properties;
    alignas(Probe) char place[sizeof(Probe)];
    for (int life = 0; life < 3; ++life) {
        auto *const probe = new (place) Probe;
        hub->setValue("Value", QString::number(life));
        probe->edit("a stranger's");
        QCOMPARE(probe->writes, 0);
        QCOMPARE(hub->values().value("Value").toString(), QString::number(life));
        QCOMPARE(hub->objectProperty(probe), QStringList());
        hub->connectAll(probe);
        probe->~Probe();
    }
    // The hub may be destroyed by its listener, too.
    const QPointer<Properties> alive(hub);
    connect(hub, &Properties::hasChanged, [hub] { delete hub; });
    QTRY_VERIFY(!alive);
}

void FormsTest::pagesOfBoards()
{
    Order order;
    QCOMPARE(order.pages[0].form->layout()->contentsMargins(), QMargins(7, 3, 9, 2));
    order.choose(1, 1);

    // The same id again moves nothing; another board of the same page binds it anew, once.
    int &writes = order.pages[0].plain->writes;
    writes = 0;
    order.selector->setBoardId("1");
    QCOMPARE(writes, 0);
    order.selector->setStockId("2");
    QCOMPARE(writes, 1);
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
    QCOMPARE(order.window.findChildren<QObject *>().size(), objects);
    QCOMPARE(order.selector->getWidgetList().size(), 3);

    // Without a hub the page stays; another hub has its own say.
    order.selector->setHub(nullptr);
    QCOMPARE(order.state(), QString("2/"));
    Properties other;
    other.setValue("Value", "of the other");
    order.selector->setHub(&other);
    QCOMPARE(order.pages[2].plain->value, QString("of the other"));
    order.selector->setHub(order.hub);
    other.setValue("Value", "late");
    QCOMPARE(order.pages[2].plain->value + order.state(), QString("2/2"));
}

void FormsTest::storm()
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
            sub.plain->edit(QString::number(i));
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
void FormsTest::disasters()
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
void FormsTest::captionsThatGo()
{
    Order order;
    order.choose(1, 1);
    FormValidation validation;
    validation.setupPropWidgets(*order.hub, nullptr);
    validation.setupPropWidgets(*order.hub, &order.window);
    validation.set({"Price"});
    delete order.pages[0].caption;
    validation.set({"Price", "Volume"});
    const auto marked = [&](int page) {
        return !order.pages[page].caption->styleSheet().isEmpty();
    };
    QVERIFY(marked(1));
    validation.setInvalidWidgets({order.pages[0].price, nullptr, order.pages[2].caption});
    QVERIFY(!marked(1) && marked(2));
    QCOMPARE(order.pages[0].price->styleSheet(), QString());
}

void FormsTest::stateTrace()
{
    QStateMachine machine;
    QState plain(&machine), away(&machine);
    auto *top = new State("Desk", "Top", &plain);
    auto *leaf = new State("Order", "Leaf", QState::ParallelStates, top);
    machine.setInitialState(&plain);
    plain.setInitialState(top);
    top->setInitialState(leaf);
    leaf->addTransition(&away);
    leaf->setName("Last");
    leaf->setPrefix("Ticket");
    QCOMPARE(top->objectName() + ' ' + leaf->objectName(), QString("Desk::Top Order::Leaf"));
    machine.start();
    QTRY_VERIFY(away.active());
    QCOMPARE(messages(),
             QStringList({"Entering state:  Desk :: Top", "Entering state:  Ticket :: Top->Last",
                          "Exiting state:  Ticket :: Top->Last", "Exiting state:  Desk :: Top"}));
}

// The boards of a page come before it, after it and anew; one that is shown follows at once.
void FormsTest::pagesOfFormFile()
{
    Properties hub;
    FormSelector selector(&hub);
    selector.show();
    SubForm first("Offset0"), second("Offset1");
    first.form->setObjectName("first");
    first.form->setProperty("boards", "1,1; 1,2");
    for (QWidget *page : {first.form.data(), second.form.data(), static_cast<QWidget *>(nullptr)})
        selector.addPage(page);
    selector.setWidget({1, 2});
    // The boards that the two get, and who is seen then (second, first).
    const std::tuple<QVariant, QVariant, int> rows[] = {
        {"1,1; 1,2", {}, 1}, {"1,1; 1,2", QByteArray("1,3;1,2"), 2}, {"1,3", {}, 0}};
    for (const auto &[boards, others, seen] : rows) {
        first.form->setProperty("boards", boards);
        second.form->setProperty("boards", others);
        QCOMPARE(2 * second.form->isVisible() + first.form->isVisible(), seen);
        QCOMPARE(2 * second.plain->listeners() + first.plain->listeners(), seen);
    }
    selector.setWidget({1, 3});
    QVERIFY(first.form->isVisible());
    expectWarning("FormSelector::addPage: page \"first\" serves no board.*: \"1,3;2\"");
    first.form->setProperty("boards", "1,3;2");
    QVERIFY(!first.form->isVisible());

    // A control that destroys its page as the boards arrive.
    second.plain->onWrite = [&] { delete second.form; };
    hub.setValue("Value", "1");
    second.form->setProperty("boards", "1,3");
    QVERIFY(!second.form);
    QCOMPARE(selector.getWidgetList(), QList<QWidget *>{first.form});
}

QTEST_MAIN(FormsTest)
#include "tst_forms.moc"
