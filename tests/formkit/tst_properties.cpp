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

struct Form
{
    std::unique_ptr<Properties> hub = std::make_unique<Properties>();
    QVector<QPointer<Control>> controls;
    Control newcomer;

    ~Form() { qDeleteAll(controls); }
};

class PropertiesTest : public StrictTest
{
    Q_OBJECT

private slots:
    void walk();
    void firstBindingGivesAndLaterOnesTake();
    void hasChangedOnceATurn();
    void comingAndGoing();
    void disconnectAllIsNoMirror();
    void unknownProperty();
    void mischief();
    void answers();
    void addressUsedAgain();
};

// The names under which an object and the child inside it are bound.
void PropertiesTest::walk()
{
    const auto open = [] { return static_cast<QObject *>(new Control); };
    const auto closed = [] { return static_cast<QObject *>(new Closed); };
    const auto super = [] { return static_cast<QObject *>(new Super); };
    const auto widget = [] { return static_cast<QObject *>(new QWidget); };
    const char *all = "Value Plain Fixed";
    const char *garbage = "  = == x =Value=1 A= B=Nothing \xe2\x82\xac C=Plain=2";
    const std::tuple<QObject *(*)(), QString, QString, QString, QString> rows[] = {
        {open, "", "", all, all},
        {closed, "", "", "Inner", ""},
        {super, "", "", "Inner", ""},
        {widget, "", "", "", all},
        {open, "Price", "", "Price Plain Fixed", all},
        {open, "", "A=Value B=Plain", "A B Fixed", all},
        {open, "Price", "A=Value", "A Plain Fixed", all},
        {open, "", "A=Value A=Plain", "A Fixed", all},
        {open, "", garbage, "C Fixed", all},
    };
    for (const auto &[make, field, fields, own, inner] : rows) {
        const QScopedPointer<QObject> object(make());
        auto *const child = new Control({}, new QObject(object.data()));
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
        QCOMPARE(hub.connectAll(object.data()), !(own + inner).isEmpty());
        QCOMPARE(bound(object.data()), own);
        QCOMPARE(bound(child), inner);
    }
}

void PropertiesTest::firstBindingGivesAndLaterOnesTake()
{
    Properties hub;
    const QSignalSpy changes(&hub, &Properties::hasChanged);
    Control first("one"), second("two"), silent;
    silent.plain = "kept to itself";
    QVERIFY(hub.connectOne("Silent", &silent, "Plain"));
    for (Control *control : {&first, &second})
        QVERIFY(hub.connectOne("Price", control, "Value"));
    QVERIFY(hub.connectOne("Price", &silent, "Plain"));
    QCOMPARE(hub.values().keys(), QStringList("Price"));
    QCOMPARE(second.value() + silent.plain, QString("oneone"));
    QCoreApplication::processEvents();
    QCOMPARE(changes.count(), 0);

    // An edit goes to the others only, not into another property of its own object either.
    hub.connectOne("Price", &first, "Plain");
    first.plain.clear();
    first.edit("1.5");
    QCOMPARE(hub.values().value("Price").toString(), QString("1.5"));
    QCOMPARE(second.value(), QString("1.5"));
    QCOMPARE(second.writes, 2);
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
        changes.clear();
        QCoreApplication::processEvents();
        return changes.count();
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
        QVERIFY(hub.disconnectAll(&form));
        form.edit("unheard");
        QCOMPARE(hub.values()["Price"].toString(), QString("typed"));
    }
    // Bound twice by hand, written twice, unbound at once.
    for (int i = 0; i < 2; ++i)
        hub.connectOne("Offset", &form, "Value");
    form.writes = 0;
    hub.setValue("Offset", "1");
    QCOMPARE(form.writes, 2);
    hub.disconnectOne("Offset", &form, "Value");
    hub.setValue("Offset", "2");
    QCOMPARE(form.writes, 2);
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
    QCOMPARE(super->inner + '/' + named->value() + '/' + plain->value(), QString("late/late/"));
    named->edit("unheard");
    QCOMPARE(hub.values()["Alias"].toString(), QString("late"));
    QCOMPARE(hub.objectProperty(plain), QStringList({"Fixed", "Plain", "Value"}));
}

void PropertiesTest::unknownProperty()
{
    Properties hub;
    Control control;
    for (const char *deed : {"connect", "disconnect"})
        expectWarning(QString("Properties::%1: property \"Nothing\" not found for object "
                              "Control\\(0x.*\\)")
                          .arg(deed));
    QVERIFY(!hub.connectOne(&control, "Nothing"));
    QVERIFY(!hub.disconnectOne(&control, "Nothing"));
    QVERIFY(!hub.connectAll(nullptr) && !hub.disconnectAll(nullptr));
    hub.setValue("Absent", "");
    QVERIFY(hub.values().isEmpty());
    QVERIFY(hub.connectOne("Price", &control, "Fixed"));
    hub.setValue("Price", "refused by Qt");
    QCOMPARE(hub.values()["Price"].toString(), QString("refused by Qt"));
}

// Whatever a control does while it is written, whichever of them it is and from wherever the
// value comes: nobody dead is written, and all that live and are bound agree at the end.
void PropertiesTest::mischief()
{
    using Deed = std::function<void(Form &, Control *)>;
    const auto rebind = [](Form &form, Control *self) {
        self->written = nullptr;
        for (const QPointer<Control> &other : form.controls) {
            form.hub->disconnectOne(other, "Value");
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
        [](Form &form, Control *) { form.hub->connectAll(&form.newcomer); },
        [](Form &form, Control *) { form.hub->setValue("Value", "last"); },
        rebind,
        setTwice,
    };
    const auto edit = [](Form &form, Control *) {
        Control outsider;
        form.hub->connectOne("Value", &outsider, "Value");
        outsider.edit("set");
    };
    const auto setValues = [](Form &form, Control *) {
        Values values;
        for (const char *name : {"Another", "Value", "Zero"})
            values.insert(name, "set");
        form.hub->setValues(values);
    };
    const Deed roads[] = {edit, setValues,
                          [](Form &form, Control *self) { form.hub->connectAll(self); }};
    for (const Deed &deed : deeds) {
        for (const Deed &road : roads) {
            for (int culprit = 0; culprit < 3; ++culprit) {
                Form form;
                for (int i = 0; i < 3; ++i) {
                    form.controls << new Control("initial");
                    form.hub->connectAll(form.controls.last());
                }
                Control *const self = form.controls[culprit];
                self->written = [&form, self, &deed] { deed(form, self); };
                road(form, self);
                for (const QPointer<Control> &control : qAsConst(form.controls)) {
                    if (control && form.hub)
                        QCOMPARE(control->value(), form.hub->values()["Value"].toString());
                }
            }
        }
    }
}

// A control may answer with a form of its own, which goes to all; two may disagree for ever.
void PropertiesTest::answers()
{
    Properties hub;
    Control controls[6];
    for (Control &control : controls)
        hub.connectOne("Code", &control, "Value");
    controls[2].normal = [](const QString &text) { return text.toUpper(); };
    hub.setValue("Code", "xetr");
    QCOMPARE(hub.values()["Code"].toString(), QString("XETR"));
    for (const Control &control : controls)
        QCOMPARE(control.value(), QString("XETR"));
    for (Control *control : {&controls[1], &controls[4]})
        control->normal = [](const QString &text) { return text.toLower(); };
    expectWarning("Properties::setValue: the properties bound to \"Code\" disagree");
    hub.setValue("Code", "Xnas");
    QCOMPARE(hub.values()["Code"].toString().toLower(), QString("xnas"));
}

void PropertiesTest::addressUsedAgain()
{
    auto *const hub = new Properties;
    alignas(Control) char place[sizeof(Control)];
    auto *control = new (place) Control;
    hub->connectAll(control);
    control->~Control();
    control = new (place) Control("stranger");
    hub->setValue("Value", "1");
    control->edit("stranger's own");
    QCOMPARE(control->writes, 0);
    QCOMPARE(hub->values()["Value"].toString(), QString("1"));
    QCOMPARE(hub->objectProperty(control), QStringList());
    control->~Control();
    // The hub may be destroyed by its listener, too.
    const QPointer<Properties> alive(hub);
    connect(hub, &Properties::hasChanged, [hub] { delete hub; });
    QTRY_VERIFY(!alive);
}

QTEST_MAIN(PropertiesTest)
#include "tst_properties.moc"
