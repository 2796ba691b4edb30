#include <formkit/properties.h>

#include <support/stricttest.h>

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
        ++writes;
        m_value = normal ? normal(value) : value;
        if (m_value != value)
            emit changed();
        else if (const auto react = written)
            react();
    }
    void edit(const QString &value)
    {
        m_value = value;
        emit changed();
    }

    QString plain;
    int writes = 0;
    std::function<void()> written;
    std::function<QString(QString)> normal;

signals:
    void changed();

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
    void bindings();
    void hasChangedOnceATurn();
    void comingAndGoing();
    void disconnectAllIsNoMirror();
    void messages();
    void mischief_data();
    void mischief();
    void normalForms();
    void hubDeletedByItsListener();
    void addressUsedAgain();
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
    const Make none = [] { return new QObject; };
    const QString all = "Fixed Plain Value";

    const auto row = [](const char *name, Make make, const char *field, const char *fields,
                        const QString &own, const QString &childs) {
        QTest::newRow(name) << make << field << fields << own << childs;
    };
    row("this", open, "", "", all, all);
    row("thisOnly ends the walk", closed, "", "", "Inner", "");
    row("super: the base's properties and rule", super, "", "", "Inner", "");
    row("inherited entry, no own properties", heir, "", "", "", "");
    row("no entry passes the walk on", none, "", "", "", all);
    row("field names the user property", open, "Price", "", "Fixed Plain Price", all);
    row("fields overrides field", open, "Price", "A=Value B=Plain", "Fixed B A", all);
    row("both names alike", open, "", "A=Value A=Plain", "Fixed A", all);
    row("garbage in fields", open, "", "  == x =Valu A= B=No \xe2\x82\xac C=Plain=2",
        "Fixed C Value", all);
}

void PropertiesTest::walk()
{
    QFETCH(Make, make);
    QFETCH(QString, field);
    QFETCH(QString, fields);
    const QScopedPointer<QObject> object(make());
    Control child;
    child.setParent(object.data());
    if (!field.isEmpty())
        object->setProperty("field", field);
    if (!fields.isEmpty())
        object->setProperty("fields", fields);

    Properties hub;
    QVERIFY(!hub.connectAll(nullptr) && !hub.disconnectAll(nullptr));
    hub.connectAll(object.data());
    QFETCH(QString, own);
    QFETCH(QString, childs);
    QCOMPARE(QStringList(hub.objectProperty(object.data())).join(' '), own);
    QCOMPARE(QStringList(hub.objectProperty(&child)).join(' '), childs);
    child.setParent(nullptr);
}

void PropertiesTest::bindings()
{
    Properties hub;
    const QSignalSpy changes(&hub, &Properties::hasChanged);
    Control first("one"), second("two");
    // The first with a notify signal gives, the others take.
    QVERIFY(hub.connectOne("Price", &second, "Plain"));
    QVERIFY(hub.values().isEmpty() && QMetaType::type("Values") == qMetaTypeId<Values>());
    for (Control *control : {&first, &second, &second})
        QVERIFY(hub.connectOne("Price", control, "Value"));
    QCOMPARE(hub.values().value("Price").toString(), QString("one"));
    QCOMPARE(second.value(), QString("one"));
    QCOMPARE(first.writes, 0);
    QCoreApplication::processEvents();
    QCOMPARE(changes.count(), 0);

    second.writes = 0;
    hub.setValue("Price", "1");
    QCOMPARE(second.writes, 2);
    second.edit("2");
    QCOMPARE(first.value(), QString("2"));
    QCOMPARE(second.plain, QString("1"));
    QVERIFY(hub.disconnectOne("Price", &second, "Value"));
    first.edit("3");
    second.edit("unheard");
    QCOMPARE(second.writes, 2);
    QCOMPARE(hub.values().value("Price").toString(), QString("3"));
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
    QCOMPARE(turn(), 1);
    QCOMPARE(turn(), 0);
    control.writes = 0;
    hub.setValue("Price", "3");
    hub.setValue("Absent", "");
    QCOMPARE(turn(), 1);
    control.edit("3");
    QCOMPARE(turn(), 1);
    QCOMPARE(control.writes, 0);
    QCOMPARE(hub.values().keys(), QStringList({"Other", "Price"}));
}

void PropertiesTest::comingAndGoing()
{
    Properties hub;
    Control form("initial");
    form.setProperty("field", "Price");
    for (int visit = 0; visit < 3; ++visit) {
        hub.connectAll(&form);
        form.writes = 0;
        hub.setValue("Price", QString::number(visit));
        QCOMPARE(form.writes, 1);
        form.edit("typed");
        QVERIFY(hub.disconnectAll(&form));
        form.edit("unheard");
        QCOMPARE(hub.values().value("Price").toString(), QString("typed"));
    }
}

void PropertiesTest::disconnectAllIsNoMirror()
{
    Properties hub;
    QObject form;
    auto *const super = new Super({}, &form);
    auto *const named = new Control({}, &form);
    auto *const plain = new Control({}, &form);
    named->setProperty("field", "Alias");
    hub.connectAll(&form);
    QVERIFY(hub.disconnectAll(&form));
    for (const char *name : {"Inner", "Alias", "Value"})
        hub.setValue(name, "late");
    QCOMPARE(super->inner + ' ' + named->value() + ' ' + plain->value(), QString("late late "));
    QCOMPARE(hub.objectProperty(plain), QStringList({"Fixed", "Plain", "Value"}));
}

void PropertiesTest::messages()
{
    Properties hub;
    Closed control;
    expectWarning("Properties::connect: property \"No\" not found for object Closed\\(0x.*\\)");
    expectWarning("Properties::disconnect: property \"No\" not found for object Closed\\(0x.*\\)");
    QVERIFY(!hub.connectOne(&control, "No"));
    QVERIFY(!hub.disconnectOne(&control, "No"));
    hub.connectAll(&control);
    hub.dumpObjProp();
    const QStringList lines = StrictTest::messages().mid(2);
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines[0].startsWith("Properties::dumpObjProp Properties(0x"));
    QVERIFY(lines[1].startsWith("objProp4: Closed(0x") && lines[1].endsWith(") (\"Inner\")"));
}

void PropertiesTest::mischief_data()
{
    QTest::addColumn<Mischief>("mischief");
    const auto row = [](const char *name, const Mischief &mischief) {
        QTest::newRow(name) << mischief;
    };
    row("deletes itself", [](Form &, Control *self) { delete self; });
    row("deletes everybody", [](Form &form, Control *) { qDeleteAll(form.controls); });
    row("deletes the hub", [](Form &form, Control *) { form.hub.reset(); });
    row("binds a newcomer", [](Form &form, Control *) { form.hub->connectAll(&form.newcomer); });
    row("sets another value", [](Form &form, Control *) { form.hub->setValue("Value", "last"); });
    row("deletes its neighbours", [](Form &form, Control *self) {
        for (const QPointer<Control> &other : form.controls) {
            if (other != self)
                delete other;
        }
    });
    row("binds everybody again", [](Form &form, Control *self) {
        self->written = nullptr;
        for (const QPointer<Control> &other : form.controls) {
            form.hub->disconnectAll(other);
            form.hub->connectAll(other);
        }
    });
    row("sets another value and the old one", [](Form &form, Control *self) {
        self->written = nullptr;
        form.hub->setValue("Value", "last");
        form.hub->setValue("Value", "set");
    });
}

// Whatever a control does while it is written, whichever of them it is and from wherever the
// value comes: nobody dead is written, and all that live agree at the end.
void PropertiesTest::mischief()
{
    QFETCH(Mischief, mischief);
    for (const QString road : {"setValues", "edit", "connectAll"}) {
        for (int culprit = 0; culprit < 3; ++culprit) {
            Form form;
            for (int i = 0; i < 3; ++i) {
                form.controls << new Control("initial");
                form.hub->connectAll(form.controls.last());
            }
            Control outsider;
            form.hub->connectOne("Value", &outsider, "Value");
            Control *const self = form.controls[culprit];
            self->written = [&form, self, mischief] { mischief(form, self); };
            if (road == "edit") {
                outsider.edit("set");
            } else if (road == "connectAll") {
                form.hub->connectAll(self);
            } else {
                Values values;
                for (const char *name : {"Another", "Value", "Zero"})
                    values.insert(name, "set");
                form.hub->setValues(values);
            }
            for (const QPointer<Control> &control : qAsConst(form.controls)) {
                if (form.hub && control)
                    QCOMPARE(control->value(), form.hub->values().value("Value").toString());
            }
        }
    }
}

// One that answers in its own form is followed; those that contradict one another are left.
void PropertiesTest::normalForms()
{
    Properties hub;
    Control controls[6];
    for (Control &control : controls)
        hub.connectOne("Code", &control, "Value");
    controls[3].normal = [](const QString &text) { return text.toUpper(); };
    hub.setValue("Code", "xetr");
    for (const Control &control : controls)
        QCOMPARE(control.value(), QString("XETR"));

    for (int i : {0, 2, 4})
        controls[i].normal = [](const QString &text) { return text.toLower(); };
    expectWarning("Properties::setValue: the properties bound to \"Code\" disagree");
    hub.setValue("Code", "Misx");
    QCOMPARE(hub.values().value("Code").toString().toLower(), QString("misx"));
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
    control = new (place) Control;
    hub.setValue("Value", "1");
    control->edit("a stranger's");
    QCOMPARE(control->writes, 0);
    QCOMPARE(hub.values().value("Value").toString(), QString("1"));
    QCOMPARE(hub.objectProperty(control), QStringList());
    control->~Control();
}

QTEST_MAIN(PropertiesTest)
#include "tst_properties.moc"
