#include "properties.h"

#include <QDebug>
#include <QMetaProperty>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>
#include <QVarLengthArray>

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

// How often properties may answer one write of their name with yet another value.
constexpr int MaxAnswers = 20;

} // namespace

// A write of one name to all its properties.
struct Properties::Write
{
    const QString name;
    Write *const outer;
    // The name got another value since, which has been handed to everybody already.
    bool superseded = false;
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
    const auto held = m_values.constFind(name);
    if (held != m_values.constEnd())
        property.write(key.object, QVariant(*held));
    else if (property.hasNotifySignal())
        m_values.insert(name, property.read(key.object).toString());
}

Properties::Aliases Properties::aliasesOf(QObject *object)
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
            if (pieces.size() > 1)
                aliases.insert(pieces.at(1).toLatin1(), pieces.at(0));
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
        const Aliases aliases = aliasesOf(object);
        const QList<QByteArray> properties = ownProperties(meta);
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
    const auto ofName = qAsConst(m_bindings).equal_range(name);
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
    if (old != value)
        write(name, value, nullptr);
}

// A running timer is left alone: started anew by each turn of a busy feed, it would never end.
void Properties::reportLater()
{
    if (!m_changeTimer->isActive())
        m_changeTimer->start();
}

void Properties::setValues(const Values &values)
{
    const QPointer<Properties> alive(this);
    // What hears of one value may change the caller's map.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const Values copy(values);
    for (auto entry = copy.cbegin(); entry != copy.cend() && alive; ++entry)
        setValue(entry.key(), entry.value().toString());
}

// Stores the value and hands it to the properties of its name. A property may answer at once,
// and then anything may happen before write() returns: objects die, bindings come and go, the
// name gets another value. An exception of one property is thrown on when the others are written.
void Properties::write(const QString &name, const QString &value, const QObject *except)
{
    const QVariant content(value);
    m_values.insert(name, content);

    Write current{name, m_write};
    int answers = 0;
    for (Write *outer = m_write; outer; outer = outer->outer) {
        if (outer->name == name) {
            outer->superseded = true;
            ++answers;
        }
    }
    if (answers > MaxAnswers) {
        qWarning() << "Properties::setValue: the properties bound to" << name << "disagree";
        return;
    }

    QVarLengthArray<Key, 16> keys;
    for (auto it = m_bindings.constFind(name); it != m_bindings.constEnd() && it.key() == name;
         ++it)
        keys.append(*it);

    const QPointer<Properties> alive(this);
    const int bindingChange = m_bindingChanges;
    m_write = &current;
    const auto done = qScopeGuard([&] {
        if (alive)
            m_write = current.outer;
    });
    std::exception_ptr failure;
    for (const Key &key : keys) {
        if (key.object == except)
            continue;
        if (m_bindingChanges != bindingChange && !m_bindings.contains(current.name, key))
            continue;
        if (!isAlive(key.object)) {
            forget(key.object);
            continue;
        }
        try {
            key.object->metaObject()->property(key.index).write(key.object, content);
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
        if (!alive || current.superseded)
            break;
    }
    if (failure)
        std::rethrow_exception(failure);
}

void Properties::propertyChanged()
{
    QObject *const from = sender();
    const Key key = m_notifyKeys.value({from, senderSignalIndex()});
    reportLater();
    if (!key.object)
        return;
    const QString name = m_keyNames.value(key);
    const QString content = from->metaObject()->property(key.index).read(from).toString();
    if (content != m_values.value(name).toString())
        write(name, content, from);
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
