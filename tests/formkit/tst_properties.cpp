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
};

class SuperSuper : public Super
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")
};

class Heir : public Closed
{
    Q_OBJECT
};

struct Form
{
    std::unique_ptr<Properties> hub = std::make_unique<Properties>();
    QVector<QPointer<Control>> controls;
    Control newcomer, extra;

    ~Form() { qDeleteAll(controls); }
};

class PropertiesTest : public StrictTest
{
    Q_OBJECT

private slots:
    void walk();
    void bindings();
    void comingAndGoing();
    void messages();
    void mischief();
    void normalForms();
    void addressUsedAgain();
};

template <typename Object> QObject *make()
{
    return new Object;
}

// The names under which an object and the child inside it are bound.
void PropertiesTest::walk()
{
    const char *const all = "Fixed Plain Value";
    const char *const garbage = "  == x =Valu A= B=No \xe2\x82\xac C=Plain=2";
    const std::tuple<QObject *(*)(), QString, QString, QString, QString> rows[] = {
        {make<Control>, "", "", all, all},
        {make<Closed>, "", "", "Inner", ""},
        {make<Super>, "", "", "Inner", ""},
        {make<SuperSuper>, "", "", "Inner", ""},
        {make<Heir>, "", "", "", ""},
        {make<QObject>, "", "", "", all},
        {make<Control>, "Price", "", "Fixed Plain Price", all},
        {make<Control>, "Price", "A=Value B=Plain", "Fixed B A", all},
        {make<Control>, "", "A=Value A=Plain", "Fixed A", all},
        {make<Control>, "", garbage, "Fixed C Value", all},
    };
    for (const auto &[makeObject, field, fields, own, inner] : rows) {
        const QScopedPointer<QObject> object(makeObject());
        auto *const child = new Control({}, object.data());
        if (!field.isEmpty())
            object->setProperty("field", field);
        if (!fields.isEmpty())
            object->setProperty("fields", fields);
        Properties hub;
        QVERIFY(!hub.connectAll(nullptr) && !hub.disconnectAll(nullptr));
        hub.connectAll(object.data());
        QCOMPARE(hub.objectProperty(object.data()).join(' '), own);
        QCOMPARE(hub.objectProperty(child).join(' '), inner);
    }
}

// The first with a notify signal gives, the others take; who listens hears of all of it once a
// turn.
void PropertiesTest::bindings()
{
    Properties hub;
    QSignalSpy changes(&hub, &Properties::hasChanged);
    const auto turn = [&changes] {
        QCoreApplication::processEvents();
        const int count = changes.count();
        changes.clear();
        return count;
    };
    Control first("one"), second("two");
    QVERIFY(hub.connectOne("Price", &second, "Plain"));
    QVERIFY(hub.values().isEmpty() && QMetaType::type("Values") == qMetaTypeId<Values>());
    for (Control *control : {&first, &second, &second})
        QVERIFY(hub.connectOne("Price", control, "Value"));
    QCOMPARE(hub.values().value("Price").toString(), QString("one"));
    QCOMPARE(second.value(), QString("one"));
    QCOMPARE(first.writes, 0);
    QCOMPARE(turn(), 0);

    second.writes = 0;
    hub.setValue("Price", "1");
    QCOMPARE(second.writes, 2);
    hub.setValue("Other", "2");
    second.edit("2");
    QCOMPARE(first.value(), QString("2"));
    QCOMPARE(second.plain, QString("1"));
    QCOMPARE(turn(), 1);
    QCOMPARE(turn(), 0);
    first.writes = 0;
    hub.setValue("Price", "2");
    hub.setValue("Absent", "");
    QCOMPARE(turn(), 1);
    second.edit("2");
    QCOMPARE(turn(), 1);
    QCOMPARE(first.writes, 0);
    QCOMPARE(hub.values().keys(), QStringList({"Other", "Price"}));

    QVERIFY(hub.disconnectOne("Price", &second, "Value"));
    second.writes = 0;
    first.edit("3");
    second.edit("unheard");
    QCOMPARE(second.writes, 0);
    QCOMPARE(hub.values().value("Price").toString(), QString("3"));
}

// Disconnecting is no mirror of connecting: what has another name or another class stays bound.
void PropertiesTest::comingAndGoing()
{
    Properties hub;
    QObject form;
    auto *const super = new Super;
    auto *const named = new Control;
    auto *const plain = new Control;
    for (Control *control : {static_cast<Control *>(super), named, plain})
        control->setParent(&form);
    named->setProperty("field", "Alias");
    for (int visit = 0; visit < 3; ++visit) {
        hub.connectAll(&form);
        named->writes = plain->writes = 0;
        for (const char *name : {"Alias", "Value"})
            hub.setValue(name, QString::number(visit));
        QCOMPARE(named->writes + plain->writes, 2);
        named->edit("typed");
        QVERIFY(hub.disconnectAll(&form));
        named->edit("unheard");
        QCOMPARE(hub.values().value("Alias").toString(), QString("typed"));
        for (const char *name : {"Inner", "Alias", "Value"})
            hub.setValue(name, "late");
        QCOMPARE(super->inner + named->value() + plain->value(), QString("latelate%1").arg(visit));
    }
    QCOMPARE(hub.objectProperty(plain), QStringList({"Fixed", "Plain", "Value"}));
}

void PropertiesTest::messages()
{
    Properties hub;
    Closed control;
    expectWarning("Properties::connect: property \"No\" not found for object Closed\\(0x.*\\)");
    expectWarning("Properties::disconnect: property \"No\" not found for object Closed\\(0x.*\\)");
    QVERIFY(!hub.connectOne(&control, "No") && !hub.disconnectOne(&control, "No"));
    hub.connectAll(&control);
    hub.dumpObjProp();
    const QString lines = StrictTest::messages().mid(2).join('\n');
    const QString form = "Properties::dumpObjProp Properties\\(0x.*\\)\nobjProp4: Closed\\(0x.*\\) "
                         "\\(\"Inner\"\\)";
    QVERIFY(QRegularExpression(QRegularExpression::anchoredPattern(form)).match(lines).hasMatch());
}

// Whatever a control does while it is written, whichever of them it is and from wherever the
// value comes: nobody dead is written, and all that live agree at the end.
void PropertiesTest::mischief()
{
    using Deed = std::function<void(Form &, Control *)>;
    const auto rebind = [](Form &form, Control *self) {
        self->written = nullptr;
        for (const QPointer<Control> &other : form.controls) {
            form.hub->disconnectAll(other);
            form.hub->connectAll(other);
        }
    };
    const auto setTwice = [](Form &form, Control *self) {
        self->written = nullptr;
        form.hub->setValue("Value", "last");
        form.hub->setValue("Value", "set");
    };
    const Deed deeds[] = {
        [](Form &, Control *self) { delete self; },
        [](Form &form, Control *self) { delete form.controls[self != form.controls[0] ? 0 : 1]; },
        [](Form &form, Control *self) { delete form.controls[self != form.controls[2] ? 2 : 1]; },
        [](Form &form, Control *) { qDeleteAll(form.controls); },
        [](Form &form, Control *) { form.hub.reset(); },
        [](Form &form, Control *) { form.hub->connectOne("Value", &form.extra, "Value"); },
        [](Form &form, Control *) { form.hub->setValue("Value", "last"); },
        rebind,
        setTwice,
    };
    const Deed roads[] = {
        [](Form &form, Control *) { form.newcomer.edit("set"); },
        [](Form &form, Control *self) { form.hub->connectAll(self); },
        [](Form &form, Control *) {
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
                    form.controls << new Control("initial");
                    form.hub->connectAll(form.controls.last());
                }
                form.hub->connectOne("Value", &form.newcomer, "Value");
                Control *const self = form.controls[culprit];
                self->written = [&form, self, &deed] { deed(form, self); };
                road(form, self);
                for (const QPointer<Control> &control : qAsConst(form.controls)) {
                    if (form.hub && control)
                        QCOMPARE(control->value(), form.hub->values().value("Value").toString());
                }
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

void PropertiesTest::addressUsedAgain()
{
    auto *const hub = new Properties;
    alignas(Control) char place[sizeof(Control)];
    for (int life = 0; life < 3; ++life) {
        auto *const control = new (place) Control;
        hub->setValue("Value", QString::number(life));
        control->edit("a stranger's");
        QCOMPARE(control->writes, 0);
        QCOMPARE(hub->values().value("Value").toString(), QString::number(life));
        QCOMPARE(hub->objectProperty(control), QStringList());
        hub->connectAll(control);
        control->~Control();
    }
    // The hub may be destroyed by its listener, too.
    const QPointer<Properties> alive(hub);
    connect(hub, &Properties::hasChanged, [hub] { delete hub; });
    QTRY_VERIFY(!alive);
}

QTEST_MAIN(PropertiesTest)
#include "tst_properties.moc"
