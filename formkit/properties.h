// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

/// The hub between a form and the terminal: one text for each name, bound to any number of Qt
/// properties of the form's objects. docs/hub.md has the rules in full.
///
/// - A value that the terminal sets is written into every property bound under its name.
/// - When a bound property reports a change by its notify signal, the hub reads it and writes the
///   value into the other properties of that name.
/// - After any number of changes in one turn of the event loop the hub emits hasChanged() once.
/// - The hub owns no bound object and forgets one that is destroyed. Bindings may be made and
///   undone, and the hub itself may be destroyed, in any notification and any write of a property.
/// - It is used on one thread, with everything bound to it.
///
/// Before a program acts on the values it asks unshown() whether the form shows what it has set.
class FORMKIT_EXPORT Properties : public QObject
{
    Q_OBJECT

public:
    /// A member of an object: the index of a property, or the method index of a notify signal, in
    /// the object's meta-object.
    struct Key
    {
        QObject *object = nullptr;
        int index = -1;

        friend bool operator<(const Key &a, const Key &b)
        {
            return a.object != b.object ? std::less<QObject *>()(a.object, b.object)
                                        : a.index < b.index;
        }
        friend bool operator==(const Key &a, const Key &b)
        {
            return a.object == b.object && a.index == b.index;
        }
    };

    explicit Properties(QObject *parent = nullptr);
    ~Properties() override;

    /// Binds one property under a name, once more for each call. If the hub holds a value of
    /// the name, the property takes it; otherwise the hub takes the content of the property, if it
    /// has a notify signal. hasChanged() reports neither. A property without a notify signal only
    /// receives. False, with a warning, when there is no such property.
    bool connectOne(const QString &name, QObject *object, const QByteArray &property);
    /// The same under the property's own name.
    bool connectOne(QObject *object, const QByteArray &property);
    /// Binds what the objects of a tree offer. The class information "Properties" of a class says
    /// what that is: "this" its own properties, with the children after them; "thisOnly" its own
    /// properties alone; "super" what its base class says. Other objects offer their children. The
    /// dynamic properties "field" and "fields" give properties other names: "Price", "A=StockId
    /// B=BoardId".
    ///
    /// A binding that the hub holds already is not added again, but works in both directions
    /// afterwards and shows the hub's value, so that a sub-form may come and go. True when anything
    /// in the tree is bound.
    bool connectAll(QObject *object);

    /// Undoes every connectOne() of the property under the name, and stops listening to it.
    /// The values stay. False, with a warning, when there is no such property.
    bool disconnectOne(const QString &name, QObject *object, const QByteArray &property);
    bool disconnectOne(QObject *object, const QByteArray &property);
    /// Unbinds an object tree: each property that the objects' own classes declare, under its
    /// own name. It is not the exact reverse of connectAll(): it does not follow "super", and
    /// bindings made by "field" and "fields" stay and still receive, though the hub does not listen
    /// to the property any more. True when the tree has such a property, bound or not.
    bool disconnectAll(QObject *object);

    /// Writes a value into every property bound under the name, unless the hub holds it already (a
    /// name that is absent counts as empty). hasChanged() follows in either case. When a property
    /// answers with another form of the value, the hub takes that over. When one throws, the others
    /// are still written, the hub keeps the value, and the exception passes through afterwards.
    void setValue(const QString &name, const QString &value);
    /// Calls setValue() for each entry, by ascending name, and then again for those that the hub
    /// held already, which were not written: a later entry may have changed them (an exchange
    /// empties a board). An exception passes through when all are set.
    void setValues(const Values &values);
    Values values() const;

    /// The names, ascending, that the program has set to a value that the form does not show. Ask
    /// before an order is accepted. A name is listed when
    /// - its value has become another since then, and not by the user, or
    /// - a property that the hub listens to does not read the value (an id that is not in the list
    ///   yet, say), or throws.
    /// A change that a property reports by itself is the user's, and takes off the list its name
    /// and the names that change in consequence. Not the user's are changes while the hub writes or
    /// binds for the program, and while formkit's controls follow new data of the host or another
    /// sub-form. docs/hub.md says when two texts count as one value.
    QStringList unshown() const;
    /// Writes every value that the hub holds once more into every property bound under its name,
    /// by ascending name, as if the program set it: for data that have come after the values.
    /// hasChanged() follows. An exception passes through when all are written.
    void showAgain();

    /// Makes the present values the baseline: what the user, or the program, changes from now on
    /// counts as changed, until it is as it was. Call it when the form is filled. Before the first
    /// call the baseline is what the form's properties brought into the hub.
    ///
    /// It counts as no change when a property brings a new name into the hub, answers the
    /// baseline's value in a form of its own (as unshown() says), or shows something where there
    /// was nothing because new data of the host have come. Nor does "0" where there was no id.
    void setBaseline();
    /// Whether anything has changed, or one name.
    bool isChanged() const;
    bool isChanged(const QString &name) const;
    /// The names that have changed, ascending.
    QStringList changedNames() const;
    /// Sets all values, or one, to those of the baseline, and shows them in place of what is typed;
    /// a name that the baseline lacks becomes empty. As setValues() and setValue() do it: what goes
    /// with an exchange or a board is best set back by revert(), not by its name alone.
    void revert();
    void revert(const QString &name);

    /// The names that anything is bound under now, ascending.
    QStringList names() const;
    /// The objects that are bound under the name: first those whose own value it is, each group in
    /// the order of binding.
    QList<QObject *> objects(const QString &name) const;
    /// Grows with every change of what is bound.
    int bindingVersion() const;
    /// The name under which connectAll() bound the object's own value: its user property, or its
    /// `Value`. Empty for none.
    QString ownName(QObject *object) const;
    /// The names under which connectAll() bound the object's properties, the latest first.
    QStringList objectProperty(QObject *object) const;
    /// Writes every object bound by connectAll(), with its names, to the debug output.
    void dumpObjProp();

Q_SIGNALS:
    /// Some value may have changed: read values(). Comes from the event loop, once for any number
    /// of changes, also when a change left the value as it was.
    void hasChanged();
    /// Whether anything has changed since setBaseline(). Emitted after hasChanged(), or by
    /// setBaseline() itself, when it is another answer than the last.
    void changedStateChanged(bool isChanged);

protected Q_SLOTS:
    /// Reads the property whose notify signal calls it. For signals only: it asks for the sender.
    void propertyChanged();

private:
    struct Private;

    void forget(QObject *object);

    std::unique_ptr<Private> d;
};
