// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

/// The hub between a form and the terminal: one text per name, bound to any number of Qt
/// properties of the form's objects. A value that the terminal sets is written into every
/// property bound under its name; a bound property that reports a change through its notify
/// signal gives the hub its new value, which goes on into the other properties of that name.
/// After any number of changes in one turn of the event loop the hub emits hasChanged() once.
///
/// What connectAll() binds is said by the objects themselves:
/// - Q_CLASSINFO("Properties", …) of a class: "this" binds the properties that the class
///   itself declares and walks on into the children; "thisOnly" binds them and ends the walk;
///   "super" hands over to the base class, its entry and its properties. A class without an
///   entry binds nothing and passes the walk on.
/// - The dynamic property "field" of an object names the hub name for its user property (for
///   its `Value`, where it has no readable user property).
/// - The dynamic property "fields" holds a blank-separated list of pairs, each a hub name, "="
///   and a property ("A=StockId B=BoardId"). It gives the property that name, and binds one that
///   another class of the object declares ("PriceStep=Step") beside the class's own. Any other
///   part is skipped with a warning.
///
/// The hub owns no bound object. It forgets an object that is destroyed, at any moment: also
/// while the hub writes or reports. Bindings may be made and undone, and the hub itself may be
/// destroyed, inside any of its notifications and any write of a property. It belongs to one
/// thread, with everything bound to it.
///
/// A property may answer a write with a form of its own (a date in normal form, say): the hub
/// takes that over and hands it on. Properties of one name that go on contradicting one another
/// are left as they stand after a while, with a warning.
///
/// Before a program acts on the values it asks unshown() whether they are what it set and what the
/// user sees.
class FORMKIT_EXPORT Properties : public QObject
{
    Q_OBJECT

public:
    /// A member of an object: a property index or a notify signal's method index, absolute in
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
    /// the name it is written into the property; otherwise a property with a notify signal
    /// gives its content to the hub. Neither is reported by hasChanged(). A property without
    /// a notify signal only receives. False, with a warning, when there is no such property.
    bool connectOne(const QString &name, QObject *object, const QByteArray &property);
    /// The same under the property's own name.
    bool connectOne(QObject *object, const QByteArray &property);
    /// Binds what an object tree offers (see above). A binding that the hub already holds is
    /// not added again, but works afterwards in both directions and shows the hub's value, so
    /// a sub-form may come and go. True when anything in the tree is bound.
    bool connectAll(QObject *object);

    /// Undoes every connectOne() of the property under the name, and stops listening to it.
    /// The values stay. False, with a warning, when there is no such property.
    bool disconnectOne(const QString &name, QObject *object, const QByteArray &property);
    bool disconnectOne(QObject *object, const QByteArray &property);
    /// Unbinds an object tree: each property that the objects' own classes declare, under its
    /// own name. It is not the exact reverse of connectAll(): "super" is not followed, and
    /// bindings made by "field" and "fields" stay and still receive, though nobody listens to
    /// the property any more. True when the tree has such a property, bound or not.
    bool disconnectAll(QObject *object);

    /// Writes a value into every property bound under the name, unless the hub holds it
    /// already (a name that is absent counts as empty). hasChanged() follows in either case. An
    /// exception that a property throws comes out when all the others are written; the hub keeps
    /// the value.
    void setValue(const QString &name, const QString &value);
    /// setValue() for each entry, by ascending name, and once more for those that were held already
    /// and therefore not written: a later entry may have changed them (an exchange empties a
    /// board). An exception comes out when all are set.
    void setValues(const Values &values);
    Values values() const;

    /// The names, ascending, that the program has set to a value that the form does not show: the
    /// value has become another since, and not by the user; or a property that the hub listens to
    /// does not read it (an id that is not listed yet, say), or throws. Ask before an order is
    /// accepted.
    ///
    /// A property may answer the write of its name in a form of its own: that form counts from
    /// then on, unless it is empty, another number (a spin box cuts 150 to its 99), or an id in
    /// answer to none. Empty and "0" are one for a name that is bound to a property whose own name
    /// ends in "Id". An empty value for a name that the hub does not hold sets nothing.
    ///
    /// What the user changes leaves the list, with everything that changes in consequence. So does
    /// what a control shows after the user's change has been written into a property of it that has
    /// no notify signal (a security box, empty before, when the user chooses another board). The
    /// user's is each change that a property reports by itself: neither while the hub, by order of
    /// the program, writes or binds, nor while formkit's controls follow new data of the host or
    /// another sub-form. A program that sets a control past the hub, and a control of a host's own
    /// that follows its data, count as the user.
    QStringList unshown() const;
    /// Writes every value that the hub holds once more into every property bound under its name,
    /// by ascending name, as if the program set it; for data that have come after the values.
    /// hasChanged() follows. An exception comes out when all are written.
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
    /// Some value may have changed: read values(). Emitted from the event loop, once for any
    /// number of changes, also when a change left the value as it was.
    void hasChanged();
    /// Whether anything has changed since setBaseline(). Emitted after hasChanged(), or by
    /// setBaseline() itself, when it is another answer than the last.
    void changedStateChanged(bool isChanged);

protected Q_SLOTS:
    /// Takes over the value of the property whose notify signal calls it. Only a signal can
    /// call it: it asks for the sender.
    void propertyChanged();

private:
    struct Private;

    void forget(QObject *object);

    std::unique_ptr<Private> d;
};
