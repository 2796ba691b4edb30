#include <formkit/lineedit.h>
#include <formkit/properties.h>

#include <support/stricttest.h>

#include <QComboBox>
#include <QPointer>

#include <functional>
#include <memory>
#include <new>

// The simplest bindable object, with hooks to misbehave in.
class Control : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ value WRITE setValue NOTIFY changed USER true)
    Q_PROPERTY(QString Plain MEMBER plain)
    Q_PROPERTY(QString Fixed READ value)

public:
    explicit Control(const QString &value = {}, QObject *parent = nullptr)
        : QObject(parent), m_value(value)
    {
    }

    QString value() const { return m_value; }
    void setValue(const QString &value)
    {
        m_value = value;
        ++writes;
        if (normal && normal(value) != value) {
            m_value = normal(value);
            emit changed(m_value);
        } else if (const auto react = written) {
            react();
        }
    }
    void edit(const QString &value)
    {
        m_value = value;
        emit changed(m_value);
    }

    QString plain;
    int writes = 0;
    std::function<void()> written;
    std::function<QString(QString)> normal;

signals:
    void changed(const QString &value);

private:
    QString m_value;
};

class Closed : public Control
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Inner MEMBER inner)

public:
    using Control::Control;
    QString inner;
};

class Super : public Closed
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")
    Q_PROPERTY(QString Own MEMBER inner)

public:
    using Closed::Closed;
};

class Heir : public Closed
{
    Q_OBJECT

public:
    using Closed::Closed;
};

using Make = QObject *(*)();
Q_DECLARE_METATYPE(Make)

struct Form
{
    std::unique_ptr<Properties> hub = std::make_unique<Properties>();
    QVector<QPointer<Control>> controls;
    Control newcomer;

    ~Form() { qDeleteAll(controls); }
};
using Mischief = std::function<void(Form &, Control *)>;
Q_DECLARE_METATYPE(Mischief)

class PropertiesTest : public StrictTest
{
    Q_OBJECT

private slots:
    void walk_data();
    void walk();
    void walkOfNothing();
    void firstBindingGivesAndLaterOnesTake();
    void editGoesToTheOthersOnly();
    void hasChangedOnceATurn();
    void bindingTwice();
    void comingAndGoing();
    void disconnectAllIsNoMirror();
    void unknownProperty();
    void debugOutput();
    void mischief_data();
    void mischief();
    void normalForms();
    void contradiction();
    void hubDeletedByItsListener();
    void addressUsedAgain();
    void valuesThroughQueuedSignals();
};

void PropertiesTest::walk_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("fields");
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("childs");

    const Make open = [] { return static_cast<QObject *>(new Control); };
    const Make closed = [] { return static_cast<QObject *>(new Closed); };
    const Make super = [] { return static_cast<QObject *>(new Super); };
    const Make heir = [] { return static_cast<QObject *>(new Heir); };
    const Make widget = [] { return static_cast<QObject *>(new QWidget); };
    const QString all = "Value Plain Fixed";

    QTest::newRow("this") << open << ""
                          << "" << all << all;
    QTest::newRow("thisOnly ends the walk") << closed << ""
                                            << ""
                                            << "Inner"
                                            << "";
    QTest::newRow("super: the base's properties and rule") << super << ""
                                                           << ""
                                                           << "Inner"
                                                           << "";
    QTest::newRow("inherited entry, no own properties") << heir << ""
                                                        << ""
                                                        << ""
                                                        << "";
    QTest::newRow("no entry passes the walk on") << widget << ""
                                                 << ""
                                                 << "" << all;
    QTest::newRow("field names the user property") << open << "Price"
                                                   << ""
                                                   << "Price Plain Fixed" << all;
    QTest::newRow("fields") << open << ""
                            << "A=Value B=Plain"
                            << "A B Fixed" << all;
    QTest::newRow("fields overrides field") << open << "Price"
                                            << "A=Value"
                                            << "A Plain Fixed" << all;
    QTest::newRow("both names alike") << open << ""
                                      << "A=Value A=Plain"
                                      << "A Fixed" << all;
    QTest::newRow("garbage in fields") << open << ""
                                       << "  = == x =Value=1 A= B=Nothing \xe2\x82\xac C=Plain=2"
                                       << "C Fixed" << all;
}

void PropertiesTest::walk()
{
    QFETCH(Make, make);
    QFETCH(QString, field);
    QFETCH(QString, fields);
    QFETCH(QString, own);
    QFETCH(QString, childs);
    const QScopedPointer<QObject> object(make());
    Control child("of the child");
    if (object->isWidgetType())
        (new QWidget(static_cast<QWidget *>(object.data())))->setObjectName("between");
    QObject *const parent = object->isWidgetType() ? object->children().first() : object.data();
    child.setParent(parent);
    if (!field.isEmpty())
        object->setProperty("field", field);
    if (!fields.isEmpty())
        object->setProperty("fields", fields);

    Properties hub;
    const auto bound = [&hub](QObject *of) {
        QStringList names = hub.objectProperty(of);
        std::reverse(names.begin(), names.end());
        names.removeAll(QString());
        return names.join(' ');
    };
    QCOMPARE(hub.connectAll(object.data()), !(own + childs).isEmpty());
    QCOMPARE(bound(object.data()), own);
    QCOMPARE(bound(&child), childs);
    child.setParent(nullptr);
}

void PropertiesTest::walkOfNothing()
{
    Properties hub;
    QVERIFY(!hub.connectAll(nullptr));
    QVERIFY(!hub.disconnectAll(nullptr));
    hub.setValue("Absent", "");
    QVERIFY(hub.values().isEmpty());
    const Values values;
    QCOMPARE(values["Absent"], QString());
    QVERIFY(values.isEmpty());
}

void PropertiesTest::firstBindingGivesAndLaterOnesTake()
{
    Properties hub;
    const QSignalSpy changes(&hub, &Properties::hasChanged);
    Control first("one"), second("two"), silent;
    silent.plain = "kept to itself";

    QVERIFY(hub.connectOne("Silent", &silent, "Plain"));
    QVERIFY(hub.connectOne("Price", &first, "Value"));
    QVERIFY(hub.connectOne("Price", &second, "Value"));
    QVERIFY(hub.connectOne("Price", &silent, "Plain"));
    QCOMPARE(hub.values().keys(), QStringList("Price"));
    QCOMPARE(hub.values()["Price"].toString(), QString("one"));
    QCOMPARE(second.value(), QString("one"));
    QCOMPARE(silent.plain, QString("one"));
    QCOMPARE(first.writes, 0);
    QCoreApplication::processEvents();
    QCOMPARE(changes.count(), 0);
}

void PropertiesTest::editGoesToTheOthersOnly()
{
    Properties hub;
    Control first, second;
    hub.connectOne("Price", &first, "Value");
    hub.connectOne("Price", &first, "Plain");
    hub.connectOne("Price", &second, "Value");
    first.writes = second.writes = 0;

    first.edit("1.5");
    QCOMPARE(hub.values().value("Price").toString(), QString("1.5"));
    QCOMPARE(second.value(), QString("1.5"));
    QCOMPARE(second.writes, 1);
    QCOMPARE(first.writes, 0);
    QCOMPARE(first.plain, QString());
}

void PropertiesTest::hasChangedOnceATurn()
{
    Properties hub;
    QSignalSpy changes(&hub, &Properties::hasChanged);
    Control control;
    hub.connectOne("Price", &control, "Value");
    const auto turn = [&changes] {
        QCoreApplication::processEvents();
        const int count = changes.count();
        changes.clear();
        return count;
    };

    hub.setValue("Price", "1");
    hub.setValue("Other", "2");
    control.edit("3");
    QCOMPARE(changes.count(), 0);
    QCOMPARE(turn(), 1);
    QCOMPARE(turn(), 0);
    control.writes = 0;
    hub.setValue("Price", "3");
    QCOMPARE(control.writes, 0);
    QCOMPARE(turn(), 1);
    control.edit("3");
    QCOMPARE(turn(), 1);

    connect(&hub, &Properties::hasChanged, &hub, [&hub] { hub.setValue("Price", "again"); });
    hub.setValue("Price", "4");
    QTRY_VERIFY(control.value() == "again" && changes.count() >= 2);
}

void PropertiesTest::bindingTwice()
{
    Properties hub;
    Control control;
    hub.connectOne("Price", &control, "Value");
    hub.connectOne("Price", &control, "Value");
    control.writes = 0;
    hub.setValue("Price", "1");
    QCOMPARE(control.writes, 2);

    QVERIFY(hub.disconnectOne("Price", &control, "Value"));
    hub.setValue("Price", "2");
    control.edit("3");
    QCOMPARE(control.writes, 2);
    QCOMPARE(hub.values()["Price"].toString(), QString("2"));
}

void PropertiesTest::comingAndGoing()
{
    Properties hub;
    Control form("initial");
    form.setProperty("field", "Price");
    for (int visit = 0; visit < 3; ++visit) {
        QVERIFY(hub.connectAll(&form));
        form.writes = 0;
        hub.setValue("Price", QString::number(visit));
        QCOMPARE(form.writes, 1);
        form.edit("typed");
        QCOMPARE(hub.values()["Price"].toString(), QString("typed"));
        QVERIFY(hub.disconnectAll(&form));
        form.edit("unheard");
        QCOMPARE(hub.values()["Price"].toString(), QString("typed"));
    }
}

void PropertiesTest::disconnectAllIsNoMirror()
{
    Properties hub;
    QObject form;
    Super *const super = new Super({}, &form);
    Control *const named = new Control({}, &form);
    Control *const plain = new Control({}, &form);
    named->setProperty("field", "Alias");
    hub.connectAll(&form);
    QVERIFY(hub.disconnectAll(&form));

    for (const char *name : {"Inner", "Alias", "Value"})
        hub.setValue(name, "late");
    QCOMPARE(super->inner, QString("late"));
    QCOMPARE(named->value(), QString("late"));
    QCOMPARE(plain->value(), QString());
    named->edit("unheard");
    QCOMPARE(hub.values()["Alias"].toString(), QString("late"));
    QCOMPARE(hub.objectProperty(plain), QStringList({"Fixed", "Plain", "Value"}));
}

void PropertiesTest::unknownProperty()
{
    Properties hub;
    Control control;
    expectWarning(
        "Properties::connect: property \"Nothing\" not found for object Control\\(0x.*\\)");
    expectWarning(
        "Properties::disconnect: property \"Nothing\" not found for object Control\\(0x.*\\)");
    QVERIFY(!hub.connectOne(&control, "Nothing"));
    QVERIFY(!hub.disconnectOne(&control, "Nothing"));
    QVERIFY(hub.connectOne("Price", &control, "Fixed"));
    hub.setValue("Price", "refused by Qt");
    QCOMPARE(hub.values()["Price"].toString(), QString("refused by Qt"));
}

void PropertiesTest::debugOutput()
{
    Properties hub;
    Closed control;
    control.setObjectName("price");
    hub.connectAll(&control);
    hub.dumpObjProp();
    const QStringList lines = messages();
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines[0].startsWith("Properties::dumpObjProp Properties(0x"));
    QVERIFY(lines[1].startsWith("objProp4: Closed(0x"));
    QVERIFY(lines[1].endsWith("name = \"price\") (\"Inner\")"));
}

void PropertiesTest::mischief_data()
{
    QTest::addColumn<Mischief>("mischief");
    const auto row = [](const char *name, const Mischief &mischief) {
        QTest::newRow(name) << mischief;
    };
    row("deletes itself", [](Form &, Control *self) { delete self; });
    row("deletes its neighbours", [](Form &form, Control *self) {
        for (const QPointer<Control> &other : form.controls) {
            if (other != self)
                delete other;
        }
    });
    row("deletes everybody", [](Form &form, Control *) { qDeleteAll(form.controls); });
    row("deletes the hub", [](Form &form, Control *) { form.hub.reset(); });
    row("deletes the hub and itself", [](Form &form, Control *self) {
        form.hub.reset();
        delete self;
    });
    row("unbinds everybody", [](Form &form, Control *) {
        for (const QPointer<Control> &other : form.controls)
            form.hub->disconnectOne(other, "Value");
    });
    row("binds everybody again", [](Form &form, Control *self) {
        self->written = nullptr;
        for (const QPointer<Control> &other : form.controls) {
            form.hub->disconnectOne(other, "Value");
            form.hub->connectAll(other);
        }
    });
    row("binds a newcomer", [](Form &form, Control *) { form.hub->connectAll(&form.newcomer); });
    row("sets another value", [](Form &form, Control *) { form.hub->setValue("Value", "last"); });
    row("sets another value and the old one", [](Form &form, Control *self) {
        self->written = nullptr;
        form.hub->setValue("Value", "last");
        form.hub->setValue("Value", "set");
    });
}

// Whatever a control does while it is written, whichever of them it is and from wherever the
// value comes: nobody dead is written, and all that live and are bound agree at the end.
void PropertiesTest::mischief()
{
    QFETCH(Mischief, mischief);
    for (const QString road : {"setValue", "setValues", "edit", "connectOne", "connectAll"}) {
        for (int culprit = 0; culprit < 3; ++culprit) {
            Form form;
            for (int i = 0; i < 3; ++i) {
                form.controls << new Control("initial");
                form.hub->connectAll(form.controls.last());
            }
            Control *const self = form.controls[culprit];
            self->written = [&form, self, mischief] { mischief(form, self); };

            if (road == "setValue") {
                form.hub->setValue("Value", "set");
            } else if (road == "setValues") {
                Values values;
                for (const char *name : {"Another", "Value", "Zero"})
                    values.insert(name, "set");
                form.hub->setValues(values);
            } else if (road == "edit") {
                Control outsider;
                form.hub->connectOne("Value", &outsider, "Value");
                outsider.edit("set");
            } else if (road == "connectOne") {
                form.hub->connectOne("Value", self, "Value");
            } else {
                form.hub->connectAll(self);
            }
            QCoreApplication::processEvents();

            if (!form.hub || QLatin1String(QTest::currentDataTag()) == "unbinds everybody")
                continue;
            for (const QPointer<Control> &control : qAsConst(form.controls)) {
                if (control)
                    QCOMPARE(control->value(), form.hub->values()["Value"].toString());
            }
        }
    }
}

void PropertiesTest::normalForms()
{
    Properties hub;
    Control plain[2];
    Control upper;
    upper.normal = [](const QString &text) { return text.toUpper(); };
    hub.connectOne("Code", &plain[0], "Value");
    hub.connectOne("Code", &upper, "Value");
    hub.connectOne("Code", &plain[1], "Value");
    hub.setValue("Code", "xetr");
    QCOMPARE(hub.values()["Code"].toString(), QString("XETR"));
    for (const Control *control : {&plain[0], &plain[1], &upper})
        QCOMPARE(control->value(), QString("XETR"));
}

void PropertiesTest::contradiction()
{
    Properties hub;
    Control controls[6];
    for (int i = 0; i < 6; ++i) {
        controls[i].normal = [i](const QString &text) {
            return i % 2 ? text.toUpper() : text.toLower();
        };
        hub.connectOne("Code", &controls[i], "Value");
    }
    expectWarning("Properties::setValue: the properties bound to \"Code\" disagree");
    hub.setValue("Code", "Xetr");
    QCOMPARE(hub.values()["Code"].toString().toLower(), QString("xetr"));
}

void PropertiesTest::hubDeletedByItsListener()
{
    auto *const hub = new Properties;
    const QPointer<Properties> alive(hub);
    connect(hub, &Properties::hasChanged, [hub] { delete hub; });
    hub->setValue("Price", "1");
    QTRY_VERIFY(!alive);
}

void PropertiesTest::addressUsedAgain()
{
    Properties hub;
    alignas(Control) char place[sizeof(Control)];
    auto *control = new (place) Control;
    hub.connectAll(control);
    control->~Control();
    control = new (place) Control("stranger");
    hub.setValue("Value", "1");
    control->edit("stranger's own");
    QCOMPARE(control->writes, 0);
    QCOMPARE(hub.values()["Value"].toString(), QString("1"));
    QCOMPARE(hub.objectProperty(control), QStringList());
    control->~Control();
}

void PropertiesTest::valuesThroughQueuedSignals()
{
    QCOMPARE(QByteArray(QMetaType::typeName(QMetaType::type("Values"))), QByteArray("Values"));
    Values values;
    values.insert("Price", "1.5");
    const Values copy = QVariant::fromValue(values).value<Values>();
    QCOMPARE(copy["Price"], QString("1.5"));
}

QTEST_MAIN(PropertiesTest)
#include "tst_properties.moc"
