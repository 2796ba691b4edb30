// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include <formkit/dateedit.h>
#include <formkit/formkit_main.h>
#include <formkit/formselector.h>
#include <formkit/label.h>
#include <formkit/radiobutton.h>
#include <formkit/state.h>
#include <hostapi/exception.h>

#include <support/keys.h>
#include <support/stricttest.h>

#include <QButtonGroup>
#include <QCompleter>
#include <QPauseAnimation>
#include <QRandomGenerator>
#include <QStateMachine>
#include <QTimer>
#include <QVBoxLayout>

#ifdef __GLIBC__
#include <malloc.h>
const auto heapInUse = [] { return mallinfo2().uordblks; };
#else
const auto heapInUse = [] { return size_t(0); };
#endif

class Closed : public CountingControl
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Inner READ objectName)
};

// Without a user property.
class Userless : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Value READ objectName)
};

class Heir : public Closed
{
    Q_OBJECT
};

class Super : public CountingControl
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")
    Q_PROPERTY(QString Own READ objectName)
};

class SuperSuper : public Super
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")
};

// What ties a form together: the hub, the pages and the states; more of it is told in stories.
class FormsTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void values();
    void walk();
    void names();
    void mischief();
    void addressUsedAgain();
    void oneChoice();
    void completions();
    void throwingControl();
    void busyFeed();
    void pagesByHand();
    void tabOrder();
    void changesWhileBinding();
    void storm();
    void stateTrace();
};

template <typename Object> QWidget *make()
{
    return new Object;
}

// A name that is asked for does not come into being, and to assign to its value does not compile.
void FormsTest::values()
{
    Values values;
    QVERIFY(values["Price"].isEmpty() && values.isEmpty());
    static_assert(!std::is_assignable_v<decltype(values["Price"]), QString>);
    const Formkit::Main again;
    QCOMPARE(QMetaType::type("Values"), qMetaTypeId<Values>());
}

// The names under which an object and the child inside it are bound.
void FormsTest::walk()
{
    const char *const all = "Fixed Plain Value";
    const char *const garbage = "  == x =Valu A= B=No  C=Plain=2";
    const std::tuple<QWidget *(*)(), QVariant, QVariant, QString, QString> rows[] = {
        {make<CountingControl>, {}, {}, all, all},
        {make<Closed>, {}, {}, "Inner", ""},
        {make<Closed>, {}, "A=Value", "A Inner", ""},
        {make<Super>, {}, {}, all, all},
        {make<SuperSuper>, {}, {}, all, all},
        {make<Heir>, {}, {}, "", ""},
        {make<QWidget>, {}, {}, "", all},
        {make<Userless>, "Price", {}, "Price", ""},
        {make<CountingControl>, "Price", {}, "Fixed Plain Price", all},
        {make<CountingControl>, "Price", "A=Value B=Plain", "Fixed B A", all},
        {make<CountingControl>, {}, "A=Value A=Plain", "Fixed A", all},
        {make<CountingControl>, {}, garbage, "Fixed C Value", all},
    };
    for (const auto &[makeObject, field, fields, own, inner] : rows) {
        const QScopedPointer<QWidget> object(makeObject());
        auto *const child = new CountingControl;
        child->setParent(object.data());
        object->setProperty("field", field);
        object->setProperty("fields", fields);
        for (const char *const part : {"==", "x", "=Valu", "A=", "B=No"}) {
            for (int visit = 0; fields == garbage && visit < 2; ++visit)
                expectWarning(
                    QString("Properties::connectAll: no property for \"%1\" in the fields "
                            "of CountingControl\\(0x.*\\)")
                        .arg(part));
        }
        Properties hub;
        QVERIFY(!hub.connectAll(nullptr) && !hub.disconnectAll(nullptr));
        for (int visit = 0; visit < 2; ++visit)
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
    // An enumeration travels by its number.
    QPauseAnimation pause;
    hub.connectOne("Way", &pause, "direction");
    QCOMPARE(hub.values()["Way"], QString("0"));
    pause.setDirection(QAbstractAnimation::Backward);
    QCOMPARE(hub.values()["Way"], QString("1"));
    hub.dumpObjProp();
    const QRegularExpression dump("^Properties::dumpObjProp Properties\\(0x.*\\)\n"
                                  "objProp4: Closed\\(0x.*\\) (QList)?\\(\"Inner\"\\)$");
    QVERIFY(dump.match(messages().mid(messages().size() - 2).join('\n')).hasMatch());
}

// What each control binds, and no more.
void FormsTest::names()
{
    TestHost host;
    const std::pair<QString, QString> rows[] = {
        {"LineEdit", "Value"},
        {"CheckBox", "Value"},
        {"RadioButton", "Value"},
        {"PushButtonSend", "Value"},
        {"Label", ""},
        {"GroupBox", ""},
        {"ComboBox", ""},
        {"DateEdit", "Value"},
        {"NumberEditor", "Value CanBeZero CanNegative numDigits digits"},
        {"QuantityEditor", "Value CanBeZero CanNegative numDigits digits"},
        {"StockSelectorBox", "StockCode Stock StockId"},
        {"StockSelectorBox_Code", ""},
        {"BoardSelectorBox", "BoardCode Board BoardId StockCode StockId"},
        {"SecuritySelectorBox",
         "SecurityName Security SecurityId BoardCode BoardId StockCode StockId"},
        {"PartnerSelectorBox", "PartnerName Partner"},
        {"Summator", "Addendum Summand Value"},
        {"FormSelector", "BoardId StockId"},
    };
    for (const auto &[className, names] : rows) {
        QWidget form;
        QObject *const control = StoryForm::create(className, &form);
        QVERIFY2(control, qPrintable(className));
        control->setParent(&form);
        Properties hub;
        hub.connectAll(&form);
        QCOMPARE(className + ": " + hub.objectProperty(control).join(' '),
                 className + ": " + names);
    }
}

// Whatever a control does while it is written, whichever of them it is and from wherever the
// value comes: nobody dead is written, and all that live agree at the end.
void FormsTest::mischief()
{
    TestHost host;
    const QStringList names{"a", "b", "c"};
    const QList<DataRow> rows = rowsOf("stories/mischief.txt");
    for (const DataRow &deed : rows) {
        for (const DataRow &road : rows) {
            for (const QString &self :
                 deed[0] == "deed" && road[0] == "road" ? names : QStringList()) {
                StoryPlayer player(&host, "hubs");
                for (const QString &name : names + QStringList{"newcomer", "extra"})
                    player.act("make CountingControl " + name);
                player.act("bind a; bind b; bind c; bind newcomer Value=Value");
                const auto told = [&self](QString text) {
                    text.replace("%2", self != "a" ? "a" : "b");
                    return text.replace("%3", self != "c" ? "c" : "a").replace("%1", self);
                };
                player.act("upon " + self + ' ' + told(deed[1]));
                player.act(told(road[1]));
                for (const QString &name : names) {
                    if (player.hub() && player.control(name))
                        QCOMPARE(player.answer(name + ".Value"), player.held("Value"));
                }
            }
        }
    }
}

void FormsTest::addressUsedAgain()
{
    auto *const hub = new Properties;
    alignas(CountingControl) char place[sizeof(CountingControl)];
    for (int life = 0; life < 6; ++life) {
        auto *const probe = new (place) CountingControl;
        QCOMPARE(hub->objectProperty(probe), QStringList());
        if (life < 3) {
            hub->setValue("Value", QString::number(life));
            probe->enter("a stranger's");
            QCOMPARE(probe->state(), QString("a stranger's writes=0 listeners=0"));
            QCOMPARE(hub->values()["Value"], QString::number(life));
        }
        hub->connectAll(probe);
        hub->setValue("Value", "bound");
        QCOMPARE(probe->state(), QString("bound writes=%1 listeners=1").arg(life < 3 ? 2 : 1));
        // One that cuts its own connections dies unheard.
        if (life != 1)
            probe->disconnect();
        probe->~CountingControl();
        hub->dumpObjProp();
        QVERIFY(messages().takeLast().startsWith("Properties::dumpObjProp"));
    }
    // What was meant for one is not for another that stands there under its own name.
    for (const char *const name : {"One", "Other"}) {
        auto *const probe = new (place) CountingControl;
        hub->connectOne(name, probe, "Value");
        hub->connectOne(name, probe, "Plain");
        hub->disconnectOne(name, probe, "Plain");
        hub->setValue("One", name);
        QCOMPARE(probe->state(),
                 QString(name) == "One" ? "One writes=1 listeners=1" : " writes=0 listeners=1");
        probe->disconnect();
        probe->~CountingControl();
    }
    // The hub may be destroyed by its listener, too.
    const QPointer<Properties> alive(hub);
    connect(hub, &Properties::hasChanged, [hub] { delete hub; });
    QTRY_VERIFY(!alive);
}

// Buttons of one name in two boxes, exclusive in each: the one whose text the hub holds is checked,
// no other, and only the one that is clicked reports.
void FormsTest::oneChoice()
{
    const QString steps = "click Buy|click Short|click Buy|click Sell|hub |click Sell|hub Cover|"
                          "hub Short|hub Buy|click Cover|hub Hold|click Cover";
    for (const bool isGrouped : {false, true}) {
        QWidget form;
        QWidget *const boxes[] = {new QWidget(&form), new QWidget(&form)};
        QButtonGroup groups[2];
        QMap<QString, RadioButton *> buttons;
        int reports = 0;
        for (const char *const side : {"Buy", "Sell", "Short", "Cover"}) {
            const int box = buttons.size() / 2;
            RadioButton *const button = buttons[side] = new RadioButton(boxes[box]);
            button->setProperty("field", "Side");
            button->setProperty("value", side);
            if (isGrouped)
                groups[box].addButton(button);
            connect(button, &RadioButton::changedValue, this, [&reports] { ++reports; });
        }
        Properties hub;
        hub.connectAll(&form);
        for (const QString &step : steps.split('|')) {
            const QString side = step.section(' ', 1);
            const bool isClick = step.startsWith("click");
            reports = 0;
            if (isClick)
                buttons[side]->click();
            else
                hub.setValue("Side", side);
            QCOMPARE(reports, isClick ? 1 : 0);
            QCOMPARE(hub.values()["Side"], side);
            for (RadioButton *const button : std::as_const(buttons))
                QCOMPARE(button->isChecked(), button->property("value") == side);
        }
    }
}

// What a completer puts into a line reaches the hub as it is seen; what a program puts there does
// not.
void FormsTest::completions()
{
    TestHost host;
    StoryPlayer player(&host, "controls");
    auto *const edit = qobject_cast<QLineEdit *>(player.control("comment"));
    auto *const completer = new QCompleter(QStringList{"ACC-17", "ACC-18"}, edit);
    edit->setCompleter(completer);
    player.act("type AC");
    QAbstractItemView *const list = completer->popup();
    player.act("press Down");
    QCOMPARE(player.held("Comment"), QString("ACC-17"));
    player.act("press Return");
    QCOMPARE(player.log, QString(" value=A value=AC value=ACC-17"));

    // Opened by a program, where nothing has been typed since the focus came.
    player.act("leave; edit ACC; at comment");
    QCOMPARE(player.held("Comment"), QString("ACC-17"));
    completer->setCompletionPrefix("ACC");
    completer->complete();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(1, 0)).center());
    QCOMPARE(player.held("Comment"), QString("ACC-18"));

    completer->setCompletionMode(QCompleter::InlineCompletion);
    player.act("press Ctrl+A; type A");
    QCOMPARE(edit->text(), QString("ACC-17"));
    QCOMPARE(player.held("Comment"), QString("ACC-17"));
}

// A control that throws as it is written keeps nobody else from the value, and no page from coming
// later.
void FormsTest::throwingControl()
{
    TestHost host;
    StoryPlayer player(&host, "pages");
    auto *const control = player.control("page1")->findChild<CountingControl *>("plain1");
    player.act("hub StockId 1; hub BoardId 1");
    player.answer("turns");
    const auto fail = [] { throw Exception(QStringLiteral("a cell that is gone")); };
    control->onWrite = fail;
    QVERIFY_EXCEPTION_THROWN(player.act("hub BoardId 2"), Exception);
    player.expect("turns=1 plain0.listeners=0 plain1.listeners=0 plain2.listeners=0");
    player.expect("page0.visible=false page1.visible=false page2.visible=false");
    control->onWrite = nullptr;
    player.act("hub BoardId 3");
    player.expect("page2.visible=true");

    player.act("bind plain0 Value=Code; bind plain1 Value=Code; bind price1 Value=Code");
    player.answer("turns");
    control->onWrite = fail;
    QVERIFY_EXCEPTION_THROWN(player.act("hub Code 7"), Exception);
    player.expect("turns=1 plain0.Value=7 price1.Value=7");
    control->onRead = []() -> QString { throw Exception(QStringLiteral("a cell that is gone")); };
    QVERIFY(player.hub()->unshown().contains("Code"));
    QVERIFY_EXCEPTION_THROWN(player.act("hubs Code=8 Price=9"), Exception);
    player.expect("hub.Code=8 hub.Price=9");
}

// A feed that is back before the hub's own turn.
void FormsTest::busyFeed()
{
    Properties hub;
    int quote = 0;
    QTimer feed;
    connect(&feed, &QTimer::timeout, this, [&] { hub.setValue("Last", QString::number(++quote)); });
    feed.start(0);
    QSignalSpy changed(&hub, &Properties::hasChanged);
    QTRY_VERIFY(!changed.isEmpty());
}

// Pages that no form file names, and hubs that come and go.
void FormsTest::pagesByHand()
{
    TestHost host;
    StoryPlayer player(&host, "pages");
    auto *const selector = qobject_cast<FormSelector *>(player.control("pages"));
    QVERIFY(selector);
    QCOMPARE(player.control("page0")->layout()->contentsMargins().top(), 3);
    player.act("hub StockId 2");

    // Sub-forms that come for the board and are destroyed leave nothing behind.
    const int objects = selector->findChildren<QObject *>().size();
    for (int i = 0; i < 5; ++i) {
        QWidget guest;
        selector->addWidget({2, 0}, nullptr);
        selector->addPage(nullptr);
        selector->addWidget({2, 0}, &guest);
        QVERIFY(guest.isVisible());
    }
    // Nor does a neighbour show in the place of a page that died.
    selector->addWidget({9, 9}, player.control("page0"));
    player.expect("page0.visible=false page1.visible=false page2.visible=false");
    selector->addWidget({2, 0}, player.control("page2"));
    QCOMPARE(selector->findChildren<QObject *>().size(), objects);
    QCOMPARE(selector->getWidgetList().size(), 3);

    // One that is taken out is let go, and may come back.
    QWidget *const page = player.control("page2");
    page->setParent(nullptr);
    QCOMPARE(selector->getWidgetList().size(), 2);
    selector->addWidget({9, 9}, player.control("page0"));
    page->setProperty("boards", "9,8");
    QVERIFY(!page->parent());
    selector->addWidget({2, 0}, page);
    QVERIFY(page->isVisible());

    // Without a hub the page stays; another hub has its own say.
    selector->setHub(nullptr);
    QVERIFY(player.control("page2")->isVisible());
    player.act("hub Value unheard");
    Properties other;
    other.setValue("Value", "of the other");
    selector->setHub(&other);
    QCOMPARE(player.answer("plain2.Value"), QString("of the other"));
    selector->setHub(player.hub());
    other.setValue("Value", "late");
    QCOMPARE(player.answer("plain2.Value"), QString("unheard"));
}

// Pages that come before and after the selector stands in its window, with a control of many parts.
void FormsTest::tabOrder()
{
    QWidget window;
    auto *const layout = new QVBoxLayout(&window);
    auto *const selector = new FormSelector;
    const auto named = [](QWidget *control, const QString &name) {
        control->setObjectName(name);
        return control;
    };
    FormSelector *inner = nullptr;
    const auto addPage = [&](FormSelector *to, int board) {
        auto *const page = new QWidget;
        auto *const rows = new QVBoxLayout(page);
        rows->addWidget(named(new DateEdit, QString("date%1").arg(board)));
        rows->addWidget(named(new QLineEdit, QString("line%1").arg(board)));
        rows->addWidget(inner = new FormSelector);
        to->addWidget({0, board}, page);
    };
    addPage(selector, 1);
    for (QWidget *const control : {named(new QLineEdit, "before"), static_cast<QWidget *>(selector),
                                   named(new QLineEdit, "after"), named(new QLineEdit, "last")})
        layout->addWidget(control);
    addPage(selector, 0);
    addPage(selector, 2);
    addPage(inner, 0);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    for (QWidget *const page : selector->getWidgetList())
        page->parentWidget()->show();
    QStringList names;
    window.findChild<QWidget *>("before")->setFocus();
    for (int i = 0; i < 11; ++i) {
        keys::press(window.focusWidget(), "Tab");
        names << window.focusWidget()->objectName();
    }
    QCOMPARE(names.join(' '),
             QString("date1 line1 date0 line0 date2 line2 date0 line0 after last before"));
}

// Another hub, or the same, from a control that is being bound: what was asked for last is bound.
void FormsTest::changesWhileBinding()
{
    TestHost host;
    for (const bool isOther : {true, false}) {
        StoryPlayer player(&host, "pages");
        Properties other;
        other.setValue("Value", "of the other");
        auto *const selector = qobject_cast<FormSelector *>(player.control("pages"));
        auto *const first = player.control("page1")->findChild<CountingControl *>("price1");
        player.act("hub Price 1");
        first->onWrite = [&] {
            first->onWrite = nullptr;
            selector->setHub(isOther ? &other : player.hub());
        };
        player.act("hub StockId 1; hub BoardId 2; hub Value late");
        player.expect("page1.visible=true plain1.listeners=1 price1.listeners=1");
        QCOMPARE(player.answer("plain1.Value"), QString(isOther ? "of the other" : "late"));
    }
}

// Boards that change ten thousand times leave no memory behind.
void FormsTest::storm()
{
    TestHost host;
    StoryPlayer player(&host, "pages");
    QRandomGenerator random(1);
    size_t heap[2];
    for (int turn = 0; turn < 10000; ++turn) {
        for (const char *const name : {"StockId", "BoardId", "Price"})
            player.act(QString("hub %1 %2").arg(name).arg(random.bounded(1, 4)));
        player.act(turn % 2 ? "invalid Price" : "invalid Volume");
        QCoreApplication::processEvents();
        if (turn % 5000 == 4999) {
            player.act("hub StockId 9");
            player.expect("plain0.listeners=0 plain1.listeners=0 plain2.listeners=0");
            heap[turn / 5000] = heapInUse();
        }
    }
    QVERIFY2(heap[1] < heap[0] + 20000, qPrintable(QString::number(heap[1] - heap[0])));
}

void FormsTest::stateTrace()
{
    QStateMachine machine;
    QState plain(&machine), away(&machine);
    const State bare("Bare", QState::ParallelStates, &plain), brief("Brief");
    QCOMPARE(bare.objectName() + bare.fullName() + brief.fullName(), QString("BareBareBrief"));
    QVERIFY(bare.childMode() != brief.childMode() && Label("tick").text() == "tick");
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

QTEST_MAIN(FormsTest)
#include "tst_forms.moc"
