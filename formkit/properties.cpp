// SPDX-License-Identifier: BSD-3-Clause
#include "properties.h"

#include "baseline_p.h"
#include "bindinginfo_p.h"
#include "bindings_p.h"
#include "doing_p.h"
#include "firstfailure_p.h"
#include "namewrite_p.h"
#include "programvalues_p.h"

#include <QDebug>
#include <QSet>
#include <QTimer>

#include <algorithm>

namespace {

using Key = Properties::Key;
using Keys = Bindings::Keys;

// -1 when there is no such property, or no object.
int indexOf(const QByteArray &property, const QObject *object)
{
    return object ? object->metaObject()->indexOfProperty(property) : -1;
}

QString propertyName(const QByteArray &property)
{
    return QString::fromLatin1(property.constData());
}

} // namespace

struct Q_DECL_HIDDEN Properties::Private
{
    explicit Private(Properties *properties);

    bool bindOwn(QObject *object, const BindingInfo &info);
    void bind(const QString &name, const Key &key);
    void listen(const QString &name, const Key &key);
    QMetaMethod changedSlot() const;
    void write(const QString &name, const QString &value, const Key &from);
    void reportLater();
    template <typename... Deeds> void forEachName(Values all, Deeds... deeds);
    bool isWritable(const QString &name) const;
    void reportState();

    Properties *const q;
    QTimer *const changeTimer;
    Bindings bindings;
    Values values;
    ProgramValues given{bindings};
    Baseline baseline{given};
    bool reportedState = false;
    NameWrite *innermost = nullptr; // of the writes under way, null if there is none
};

Properties::Private::Private(Properties *properties)
    : q(properties), changeTimer(new QTimer(properties))
{
    changeTimer->setSingleShot(true);
    changeTimer->setInterval(0);
    connect(changeTimer, &QTimer::timeout, q, &Properties::hasChanged);
    connect(changeTimer, &QTimer::timeout, q, [this] { reportState(); });
}

Properties::Properties(QObject *parent) : QObject(parent), d(std::make_unique<Private>(this)) {}

Properties::~Properties() = default;

bool Properties::connectOne(const QString &name, QObject *object, const QByteArray &property)
{
    const Key key{object, indexOf(property, object)};
    if (key.index < 0) {
        qWarning() << "Properties::connect: property" << property << "not found for object"
                   << object;
        return false;
    }
    d->bindings.forgetDead(object);
    d->bind(name, key);
    d->listen(name, key);
    return true;
}

bool Properties::connectOne(QObject *object, const QByteArray &property)
{
    return connectOne(propertyName(property), object, property);
}

void Properties::Private::bind(const QString &name, const Key &key)
{
    bindings.bind(name, key);
    connect(key.object, &QObject::destroyed, q, &Properties::forget, Qt::UniqueConnection);
}

void Properties::forget(QObject *object)
{
    d->bindings.forget(object);
}

QMetaMethod Properties::Private::changedSlot() const
{
    const QMetaObject *meta = q->metaObject();
    return meta->method(meta->indexOfSlot("propertyChanged()"));
}

// Connects the property's notify signal, if it has one, and brings hub and property to one
// value.
void Properties::Private::listen(const QString &name, const Key &key)
{
    const QMetaProperty property = propertyOf(key);
    if (property.hasNotifySignal()) {
        bindings.listen(name, key);
        connect(key.object, property.notifySignal(), q, changedSlot(),
                Qt::ConnectionType(Qt::AutoConnection | Qt::UniqueConnection));
    }
    if (values.contains(name)) {
        const Doing binding(Doing::Program);
        const NameWrite current(q, &innermost, name);
        property.write(key.object, values.value(name));
    } else if (property.hasNotifySignal()) {
        const QString content = textOf(property, property.read(key.object));
        values.insert(name, content);
        baseline.seed(name, content);
    }
}

bool Properties::connectAll(QObject *object)
{
    if (!object)
        return false;
    d->bindings.forgetDead(object);
    const QPointer<Properties> hub(this);
    const QPointer<QObject> alive(object);
    const BindingInfo info = BindingInfo::followingSuper(object);
    bool anyBound = d->bindOwn(object, info);
    if (!hub || !alive || info.endsWalk())
        return anyBound;
    // The children at the start of the walk: writing into one may destroy another.
    QVarLengthArray<QPointer<QObject>, 16> children;
    for (QObject *child : object->children())
        children.append(child);
    for (const QPointer<QObject> &child : children) {
        if (hub)
            anyBound |= connectAll(child);
    }
    return anyBound;
}

// True when there are properties to bind. Hub or object may be destroyed on the way.
bool Properties::Private::bindOwn(QObject *object, const BindingInfo &info)
{
    const QPointer<Properties> hub(q);
    const QPointer<QObject> alive(object);
    const BindingInfo::Aliases aliases = info.aliasesOf(object);
    const QList<QByteArray> properties = info.propertiesOf(object);
    const QByteArray mainProperty = BindingInfo::mainPropertyOf(object);
    for (const QByteArray &property : properties) {
        if (!hub || !alive)
            break;
        const QString name = aliases.value(property, propertyName(property));
        bindings.addObjectName(object, name);
        if (property == mainProperty)
            bindings.setMainName(object, name);
        const Key key{object, indexOf(property, object)};
        if (!bindings.isBound(name, key))
            bind(name, key);
        listen(name, key);
    }
    return !properties.isEmpty();
}

bool Properties::disconnectOne(const QString &name, QObject *object, const QByteArray &property)
{
    const Key key{object, indexOf(property, object)};
    if (key.index < 0) {
        qWarning() << "Properties::disconnect: property" << property << "not found for object"
                   << object;
        return false;
    }
    d->bindings.unbind(name, key);
    d->bindings.stopListening(key);
    if (propertyOf(key).hasNotifySignal())
        disconnect(object, propertyOf(key).notifySignal(), this, d->changedSlot());
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
    const BindingInfo info(object);
    const QList<QByteArray> properties = info.propertiesOf(object);
    for (const QByteArray &property : properties)
        anyUnbound |= disconnectOne(object, property);
    if (!info.endsWalk()) {
        for (QObject *child : object->children())
            anyUnbound |= disconnectAll(child);
    }
    return anyUnbound;
}

void Properties::setValue(const QString &name, const QString &value)
{
    // First of all: the write may throw, or destroy the hub.
    d->reportLater();
    const auto held = d->values.constFind(name);
    const bool isHeld = held != d->values.constEnd();
    const QString old = isHeld ? held->toString() : QString();
    const Doing program = Doing::programSets();
    if (isHeld || !value.isEmpty())
        d->given.set(name, value);
    if (old != value)
        d->write(name, value, {});
}

Values Properties::values() const
{
    return d->values;
}

// A timer that runs is not started again: when every turn of the event loop brings a change, it
// would never end.
void Properties::Private::reportLater()
{
    if (!changeTimer->isActive())
        changeTimer->start();
}

// Takes the values by copy: who hears of one may change the caller's map, or destroy the hub.
template <typename... Deeds> void Properties::Private::forEachName(Values all, Deeds... deeds)
{
    const QPointer<Properties> alive(q);
    FirstFailure failure;
    const auto toAll = [&](const auto &deed) {
        for (auto entry = all.cbegin(); entry != all.cend() && alive; ++entry)
            failure.attempt([&] { deed(entry.key(), entry.value().toString()); });
    };
    (toAll(deeds), ...);
    failure.rethrow();
}

void Properties::setValues(const Values &values)
{
    // The hub's values before each is set: what it holds already is not written then, and may
    // change when a later name is set.
    QSet<QString> held;
    const auto set = [&](const QString &name, const QString &value) {
        if (d->values[name] == value)
            held.insert(name);
        setValue(name, value);
    };
    const auto setAgain = [&](const QString &name, const QString &value) {
        if (held.contains(name))
            setValue(name, value);
    };
    d->forEachName(values, set, setAgain);
}

void Properties::showAgain()
{
    d->reportLater();
    const Doing program = Doing::programTakesOver();
    d->forEachName(d->values, [this](const QString &name, const QString &value) {
        if (d->isWritable(name))
            d->given.set(name, value);
        d->write(name, value, {});
    });
}

bool Properties::Private::isWritable(const QString &name) const
{
    const Keys keys = bindings.keysOf(name);
    return std::any_of(keys.begin(), keys.end(), [this](const Key &key) {
        return bindings.isAlive(key.object) && propertyOf(key).isWritable();
    });
}

// Stores the value and writes it into the properties of its name, except those of the object that
// it is from. A property may answer at once, and then anything may happen before write() returns:
// objects die, bindings come and go, the name gets another value.
void Properties::Private::write(const QString &name, const QString &value, const Key &from)
{
    values.insert(name, QVariant(value));
    if (!NameWrite::supersede(innermost, name, from)) {
        qWarning() << "Properties::setValue: the properties bound to" << name << "disagree";
        return;
    }
    const NameWrite current(q, &innermost, name);
    const int version = bindings.version();
    FirstFailure failure;
    const Keys keys = bindings.keysOf(name);
    for (const Key &key : keys) {
        if (key.object == from.object || !current.isLeftFor(key))
            continue;
        if (bindings.version() != version && !bindings.isBound(current.name(), key))
            continue;
        if (!bindings.isAlive(key.object)) {
            bindings.forget(key.object);
            continue;
        }
        const QVariant held = values.value(current.name());
        failure.attempt([&] { propertyOf(key).write(key.object, held); });
        if (!current.isHubAlive())
            break;
        // Without a notify signal, what the object shows for it now is the user's doing as well.
        if (Doing::isUsers() && !bindings.isListenedTo(key))
            given.leaveToUser(key.object, values);
    }
    failure.rethrow();
}

void Properties::propertyChanged()
{
    QObject *const from = sender();
    const Key key = d->bindings.reporter({from, senderSignalIndex()});
    d->reportLater();
    if (!key.object)
        return;
    const Doing user(Doing::User);
    const QString name = d->bindings.nameOf(key);
    const QString content = textOf(propertyOf(key), propertyOf(key).read(from));
    const QString before = d->values[name];
    if (content == before)
        return;
    const bool isAnswer = d->innermost && d->innermost->name() == name;
    if (Doing::isUsers()) {
        d->given.userChanged(name);
    } else {
        d->baseline.follow(name, before, content, isAnswer);
        if (isAnswer)
            d->given.answered(name, content);
    }
    d->write(name, content, key);
}

QStringList Properties::unshown() const
{
    return d->given.unshown(d->values);
}

void Properties::setBaseline()
{
    d->baseline.set(d->values);
    d->reportState();
}

bool Properties::isChanged() const
{
    return !changedNames().isEmpty();
}

bool Properties::isChanged(const QString &name) const
{
    return d->baseline.isChanged(name, d->values);
}

QStringList Properties::changedNames() const
{
    return d->baseline.changedNames(d->values);
}

// Once more after all are set, because a field may show what is no value, such as half a number.
void Properties::revert()
{
    const QPointer<Properties> alive(this);
    setValues(d->baseline.valuesFor(d->values));
    if (alive)
        showAgain();
}

void Properties::revert(const QString &name)
{
    const QPointer<Properties> alive(this);
    const QString value = d->baseline.value(name);
    setValue(name, value);
    const Doing program = Doing::programTakesOver();
    if (alive && d->values[name] == value)
        d->write(name, value, {});
}

void Properties::Private::reportState()
{
    const bool isChanged = q->isChanged();
    if (std::exchange(reportedState, isChanged) != isChanged)
        Q_EMIT q->changedStateChanged(isChanged);
}

QStringList Properties::names() const
{
    return d->bindings.names();
}

QList<QObject *> Properties::objects(const QString &name) const
{
    return d->bindings.objectsOf(name);
}

int Properties::bindingVersion() const
{
    return d->bindings.version();
}

QString Properties::ownName(QObject *object) const
{
    return d->bindings.mainName(object);
}

QStringList Properties::objectProperty(QObject *object) const
{
    return d->bindings.objectNames(object);
}

void Properties::dumpObjProp()
{
    qDebug() << "Properties::dumpObjProp" << this;
    const QList<QObject *> objects = d->bindings.namedObjects();
    for (QObject *object : objects) {
        if (d->bindings.isAlive(object))
            qDebug() << "objProp4:" << object << objectProperty(object);
    }
}
