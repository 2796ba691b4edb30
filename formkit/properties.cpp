// SPDX-License-Identifier: BSD-3-Clause
#include "properties.h"

#include "doing_p.h"

#include <hostapi/decimal.h>

#include <QDebug>
#include <QMetaProperty>
#include <QTimer>

#include <algorithm>
#include <exception>
#include <limits>

namespace {

const char *const classInfoName = "Properties";

QByteArray classInfo(const QMetaObject *meta)
{
    const int index = meta->indexOfClassInfo(classInfoName);
    return index < 0 ? QByteArray() : QByteArray(meta->classInfo(index).value());
}

bool bindsOwnProperties(const QByteArray &info)
{
    return info == "this" || info == "thisOnly";
}

bool endsWalk(const QByteArray &info)
{
    return info == "thisOnly";
}

// The properties that the class itself declares, not those of its bases.
QList<QByteArray> ownProperties(const QMetaObject *meta)
{
    QList<QByteArray> names;
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
        names << meta->property(i).name();
    return names;
}

// -1 when there is no such property, or no object.
int indexOf(const QByteArray &property, const QObject *object)
{
    return object ? object->metaObject()->indexOfProperty(property) : -1;
}

QString propertyName(const QByteArray &property)
{
    return QString::fromLatin1(property.constData());
}

int notifySignal(const Properties::Key &key)
{
    return key.object->metaObject()->property(key.index).notifySignalIndex();
}

QMetaMethod changedSlot(const Properties *hub)
{
    const QMetaObject *meta = hub->metaObject();
    return meta->method(meta->indexOfSlot("propertyChanged()"));
}

QMetaProperty propertyOf(const Properties::Key &key)
{
    return key.object->metaObject()->property(key.index);
}

// Qt 6 would name the values of an enumeration, where Qt 5 gives their numbers.
QString textOf(const QMetaProperty &property, const QVariant &value)
{
    return property.isEnumType() ? QString::number(value.toInt()) : value.toString();
}

bool isIdProperty(const Properties::Key &key)
{
    return QByteArray(propertyOf(key).name()).endsWith("Id");
}

// What is no number counts as the same.
bool isSameNumber(const QString &given, const QString &answer)
{
    return !decimal::canConvert(given, false) || !decimal::canConvert(answer, false) ||
           decimal(given) == decimal(answer);
}

// How often properties may answer one write of their name with yet another value.
constexpr int MaxAnswers = 20;

// Lets all steps be taken before the first exception among them goes on.
class FirstFailure
{
public:
    template <typename Step> void attempt(Step step)
    {
        try {
            step();
        } catch (...) {
            if (!m_first)
                m_first = std::current_exception();
        }
    }
    void rethrow() const
    {
        if (m_first)
            std::rethrow_exception(m_first);
    }

private:
    std::exception_ptr m_first;
};

} // namespace

// A write of one name to its properties.
struct Properties::Write
{
    Write(Properties *properties, const QString &written)
        : hub(properties), name(written), outer(std::exchange(properties->m_write, this))
    {
    }
    ~Write()
    {
        if (hub)
            hub->m_write = outer;
    }
    Q_DISABLE_COPY(Write)

    // The name got another value since, which everybody has been handed but the object whose
    // property answered with it; null when the program set it.
    void supersede(const Key &answer)
    {
        superseded = true;
        answered = answer;
    }
    bool isLeftFor(const Key &key) const
    {
        return !superseded || (key.object == answered.object && key.index != answered.index);
    }

    const QPointer<Properties> hub;
    const QString name;
    Write *const outer;
    bool superseded = false;
    Key answered;
    int answers = 0;
};

Properties::Properties(QObject *parent) : QObject(parent), m_changeTimer(new QTimer(this))
{
    m_changeTimer->setSingleShot(true);
    m_changeTimer->setInterval(0);
    connect(m_changeTimer, &QTimer::timeout, this, &Properties::hasChanged);
}

Properties::~Properties() = default;

bool Properties::connectOne(const QString &name, QObject *object, const QByteArray &property)
{
    const int index = indexOf(property, object);
    if (index < 0) {
        qWarning() << "Properties::connect: property" << property << "not found for object"
                   << object;
        return false;
    }
    forgetStranger(object);
    bind(name, object, index);
    listen(name, {object, index});
    return true;
}

bool Properties::connectOne(QObject *object, const QByteArray &property)
{
    return connectOne(propertyName(property), object, property);
}

void Properties::bind(const QString &name, QObject *object, int propertyIndex)
{
    m_bindings.insert(name, {object, propertyIndex});
    ++m_bindingChanges;
    Bound &bound = m_bound[object];
    bound.object = object;
    bound.names.insert(name);
    connect(object, &QObject::destroyed, this, &Properties::forget, Qt::UniqueConnection);
}

bool Properties::isAlive(QObject *object) const
{
    const auto bound = m_bound.constFind(object);
    return bound != m_bound.constEnd() && bound->object;
}

// One that has cut its own connections dies unheard; another may stand at its address then.
void Properties::forgetStranger(QObject *object)
{
    if (m_bound.contains(object) && !isAlive(object))
        forget(object);
}

// Connects the property's notify signal, if it has one, and brings hub and property to one
// value.
void Properties::listen(const QString &name, const Key &key)
{
    const QMetaProperty property = key.object->metaObject()->property(key.index);
    if (property.hasNotifySignal()) {
        m_notifyKeys[{key.object, property.notifySignalIndex()}] = key;
        m_keyNames[key] = name;
        connect(key.object, property.notifySignal(), this, changedSlot(this),
                Qt::ConnectionType(Qt::AutoConnection | Qt::UniqueConnection));
    }
    if (m_values.contains(name)) {
        const Doing binding(Doing::Program);
        Write current(this, name);
        property.write(key.object, m_values.value(name));
    } else if (property.hasNotifySignal()) {
        m_values.insert(name, textOf(property, property.read(key.object)));
    }
}

// `bound` are the properties of the object that connectAll() binds.
Properties::Aliases Properties::aliasesOf(QObject *object, const QList<QByteArray> &bound)
{
    Aliases aliases;
    const QList<QByteArray> dynamic = object->dynamicPropertyNames();
    if (dynamic.contains("field")) {
        const QMetaProperty user = object->metaObject()->userProperty();
        const QByteArray property = user.isReadable() ? QByteArray(user.name()) : "Value";
        aliases.insert(property, object->property("field").toString());
    }
    if (dynamic.contains("fields")) {
        const QStringList pairs = object->property("fields").toString().split(QLatin1Char(' '));
        for (const QString &pair : pairs) {
            const QStringList pieces = pair.split(QLatin1Char('='));
            const QByteArray property = pieces.value(1).toLatin1();
            if (bound.contains(property))
                aliases.insert(property, pieces.first());
            else if (!pair.isEmpty())
                qWarning() << "Properties::connectAll: no property for" << pair
                           << "in the fields of" << object;
        }
    }
    return aliases;
}

bool Properties::connectAll(QObject *object)
{
    if (!object)
        return false;
    const QMetaObject *meta = object->metaObject();
    QByteArray info = classInfo(meta);
    while (info == "super" && meta->superClass()) {
        meta = meta->superClass();
        info = classInfo(meta);
    }

    forgetStranger(object);
    bool anyBound = false;
    const QPointer<Properties> hub(this);
    const QPointer<QObject> alive(object);
    if (bindsOwnProperties(info)) {
        const QList<QByteArray> properties = ownProperties(meta);
        const Aliases aliases = aliasesOf(object, properties);
        for (const QByteArray &property : properties) {
            const QString name = aliases.value(property, propertyName(property));
            if (!m_objectNames.contains(object, name))
                m_objectNames.insert(object, name);
            const Key key{object, object->metaObject()->indexOfProperty(property)};
            if (!m_bindings.contains(name, key))
                bind(name, object, key.index);
            listen(name, key);
            anyBound = true;
            if (!hub || !alive)
                return anyBound;
        }
    }
    if (!endsWalk(info)) {
        // The children at the start of the walk: writing into one may destroy another.
        QVarLengthArray<QPointer<QObject>, 16> children;
        for (QObject *child : object->children())
            children.append(child);
        for (const QPointer<QObject> &child : children) {
            if (hub)
                anyBound |= connectAll(child);
        }
    }
    return anyBound;
}

bool Properties::disconnectOne(const QString &name, QObject *object, const QByteArray &property)
{
    const Key key{object, indexOf(property, object)};
    if (key.index < 0) {
        qWarning() << "Properties::disconnect: property" << property << "not found for object"
                   << object;
        return false;
    }
    m_bindings.remove(name, key);
    ++m_bindingChanges;
    const auto isOfObject = [object](const Key &bound) { return bound.object == object; };
    const auto ofName = std::as_const(m_bindings).equal_range(name);
    if (m_bound.contains(object) && std::none_of(ofName.first, ofName.second, isOfObject))
        m_bound[object].names.remove(name);
    const int notify = notifySignal(key);
    if (notify >= 0) {
        m_notifyKeys.remove({object, notify});
        m_keyNames.remove(key);
        disconnect(object, object->metaObject()->method(notify), this, changedSlot(this));
    }
    return true;
}

bool Properties::disconnectOne(QObject *object, const QByteArray &property)
{
    return disconnectOne(propertyName(property), object, property);
}

bool Properties::disconnectAll(QObject *object)
{
    if (!object)
        return false;
    bool anyUnbound = false;
    const QByteArray info = classInfo(object->metaObject());
    if (bindsOwnProperties(info)) {
        const QList<QByteArray> properties = ownProperties(object->metaObject());
        for (const QByteArray &property : properties)
            anyUnbound |= disconnectOne(object, property);
    }
    if (!endsWalk(info)) {
        for (QObject *child : object->children())
            anyUnbound |= disconnectAll(child);
    }
    return anyUnbound;
}

void Properties::setValue(const QString &name, const QString &value)
{
    // The hub may be gone behind the write, and the write may throw.
    reportLater();
    const auto held = m_values.constFind(name);
    const QString old = held == m_values.constEnd() ? QString() : held->toString();
    const Doing program = Doing::programTakesOver();
    if (held != m_values.constEnd() || !value.isEmpty())
        m_given.insert(name, value);
    if (old != value)
        write(name, value, {});
}

// A running timer is left alone: started anew by each turn of a busy feed, it would never end.
void Properties::reportLater()
{
    if (!m_changeTimer->isActive())
        m_changeTimer->start();
}

// What hears of one value may change the caller's map, or destroy the hub.
template <typename... Deeds> void Properties::forEachName(Values values, Deeds... deeds)
{
    const QPointer<Properties> alive(this);
    FirstFailure failure;
    const auto toAll = [&](const auto &deed) {
        for (auto entry = values.cbegin(); entry != values.cend() && alive; ++entry)
            failure.attempt([&] { deed(entry.key(), entry.value().toString()); });
    };
    (toAll(deeds), ...);
    failure.rethrow();
}

void Properties::setValues(const Values &values)
{
    // What the hub holds already is not written, and may go when a later name is set.
    QSet<QString> held;
    const auto set = [&](const QString &name, const QString &value) {
        if (m_values[name] == value)
            held.insert(name);
        setValue(name, value);
    };
    const auto setAgain = [&](const QString &name, const QString &value) {
        if (held.contains(name))
            setValue(name, value);
    };
    forEachName(values, set, setAgain);
}

void Properties::showAgain()
{
    reportLater();
    const Doing program = Doing::programTakesOver();
    forEachName(m_values, [this](const QString &name, const QString &value) {
        const Keys keys = keysOf(name);
        const auto isWritable = [this](const Key &key) {
            return isAlive(key.object) && propertyOf(key).isWritable();
        };
        if (std::any_of(keys.begin(), keys.end(), isWritable))
            m_given.insert(name, value);
        write(name, value, {});
    });
}

Properties::Keys Properties::keysOf(const QString &name) const
{
    Keys keys;
    for (auto it = m_bindings.constFind(name); it != m_bindings.constEnd() && it.key() == name;
         ++it)
        keys.append(*it);
    return keys;
}

// Stores the value and hands it to the properties of its name, but for the object whose property
// it is from. A property may answer at once, and then anything may happen before write() returns:
// objects die, bindings come and go, the name gets another value.
void Properties::write(const QString &name, const QString &value, const Key &from)
{
    m_values.insert(name, QVariant(value));
    if (!supersede(name, from)) {
        qWarning() << "Properties::setValue: the properties bound to" << name << "disagree";
        return;
    }
    Write current(this, name);
    const int bindingChange = m_bindingChanges;
    FirstFailure failure;
    const Keys keys = keysOf(name);
    for (const Key &key : keys) {
        if (key.object == from.object || !current.isLeftFor(key))
            continue;
        if (m_bindingChanges != bindingChange && !m_bindings.contains(current.name, key))
            continue;
        if (!isAlive(key.object)) {
            forget(key.object);
            continue;
        }
        const QVariant held = m_values.value(current.name);
        failure.attempt([&] { propertyOf(key).write(key.object, held); });
        if (!current.hub)
            break;
    }
    failure.rethrow();
}

// Tells the writes of the name that are under way. False when its properties have answered too
// often, which ends these writes.
bool Properties::supersede(const QString &name, const Key &from)
{
    const auto forEachWrite = [&](auto deed) {
        for (Write *write = m_write; write; write = write->outer) {
            if (write->name == name)
                deed(write);
        }
    };
    Write *outermost = nullptr;
    forEachWrite([&](Write *write) {
        write->supersede(from);
        outermost = write;
    });
    if (!outermost || ++outermost->answers <= MaxAnswers)
        return true;
    forEachWrite([](Write *write) { write->supersede({}); });
    return false;
}

void Properties::propertyChanged()
{
    QObject *const from = sender();
    const Key key = m_notifyKeys.value({from, senderSignalIndex()});
    reportLater();
    if (!key.object)
        return;
    const Doing user(Doing::User);
    const QString name = m_keyNames.value(key);
    const QString content = textOf(propertyOf(key), propertyOf(key).read(from));
    if (content == m_values.value(name).toString())
        return;
    if (Doing::isUsers())
        m_given.remove(name);
    else if (m_write && m_write->name == name && isFormOf(name, content))
        m_given.insert(name, content);
    write(name, content, key);
}

// Whether an answer to what the program sets is the same in another form. None is not, nor is
// another number, nor any id for none.
bool Properties::isFormOf(const QString &name, const QString &content) const
{
    const auto given = m_given.constFind(name);
    return given != m_given.constEnd() && !isNothing(name, content) &&
           !(isId(name) && isNothing(name, *given)) && isSameNumber(*given, content);
}

QStringList Properties::unshown() const
{
    QStringList names;
    const QMap<QString, QString> given = m_given;
    for (auto it = given.cbegin(); it != given.cend(); ++it) {
        if (!isShown(it.key(), *it))
            names << it.key();
    }
    return names;
}

bool Properties::isShown(const QString &name, const QString &given) const
{
    const QString held = m_values.value(name).toString();
    const auto isHeld = [&](const QString &text) {
        return text == held || (isNothing(name, text) && isNothing(name, held));
    };
    const auto isRead = [&](const Key &key) {
        if (!m_keyNames.contains(key) || !isAlive(key.object))
            return true;
        try {
            const QMetaProperty property = propertyOf(key);
            const QVariant read = property.read(key.object);
            QVariant asRead(held);
            return (asRead.convert(read.userType()) && asRead == read) || isHeld(textOf(property, read));
        } catch (...) {
            return false;
        }
    };
    const Keys keys = keysOf(name);
    return isHeld(given) && std::all_of(keys.begin(), keys.end(), isRead);
}

bool Properties::isNothing(const QString &name, const QString &value) const
{
    return value.isEmpty() || (value == QLatin1String("0") && isId(name));
}

bool Properties::isId(const QString &name) const
{
    const Keys keys = keysOf(name);
    return std::any_of(keys.begin(), keys.end(),
                       [this](const Key &key) { return isAlive(key.object) && isIdProperty(key); });
}

QStringList Properties::objectProperty(QObject *object) const
{
    return isAlive(object) ? m_objectNames.values(object) : QStringList();
}

void Properties::dumpObjProp()
{
    qDebug() << "Properties::dumpObjProp" << this;
    const QList<QObject *> objects = m_objectNames.keys();
    for (QObject *object : objects) {
        if (isAlive(object))
            qDebug() << "objProp4:" << object << objectProperty(object);
    }
}

void Properties::forget(QObject *object)
{
    const Bound bound = m_bound.take(object);
    for (const QString &name : bound.names) {
        for (auto it = m_bindings.find(name); it != m_bindings.end() && it.key() == name;)
            it = it->object == object ? m_bindings.erase(it) : it + 1;
    }
    ++m_bindingChanges;
    const Key first{object, std::numeric_limits<int>::min()};
    for (auto it = m_notifyKeys.lowerBound(first);
         it != m_notifyKeys.end() && it.key().object == object;)
        it = m_notifyKeys.erase(it);
    for (auto it = m_keyNames.lowerBound(first);
         it != m_keyNames.end() && it.key().object == object;)
        it = m_keyNames.erase(it);
    m_objectNames.remove(object);
}
