// SPDX-License-Identifier: BSD-3-Clause
#include "formrules.h"

#include "bindinginfo_p.h"
#include "captions_p.h"
#include "checkbox.h"
#include "dateedit.h"
#include "fieldfaults_p.h"
#include "fieldmark_p.h"
#include "formpages_p.h"
#include "formvalidation.h"
#include "properties.h"
#include "rule_p.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDynamicPropertyChangeEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSet>
#include <QTimer>

#include <algorithm>
#include <map>
#include <tuple>

namespace {

using Reasons = QMap<QString, QString>;

// What is asked of a name, in code or by its field.
struct Demands
{
    bool isRequired = false;
    QString missing; // the message when it is empty
    QString message; // in place of the texts of rules and limits
    QVector<Rule> rules;
};

const char *const isRequiredProperty = "required";
const char *const ruleProperty = "rule";
const char *const messageProperty = "message";

Demands demandsOf(const QWidget *control)
{
    Demands demands;
    const QString required = control->property(isRequiredProperty).toString();
    demands.isRequired = !required.isEmpty() && required != QLatin1String("false");
    if (required != QLatin1String("true"))
        demands.missing = required;
    demands.message = control->property(messageProperty).toString();
    demands.rules = Rules::read(control->property(ruleProperty).toString());
    return demands;
}

Rule withMessage(const Rule &rule, const QString &message)
{
    if (message.isEmpty())
        return rule;
    return [rule, message](const QString &value, const QWidget *control) {
        return rule(value, control).isEmpty() ? QString() : message;
    };
}

bool isMissing(const QString &value, const QWidget *control)
{
    if (const auto *box = qobject_cast<const CheckBox *>(control))
        return !box->isChecked();
    return value.trimmed().isEmpty() || (value == QLatin1String("0") && control &&
                                         BindingInfo::mainPropertyOf(control).endsWith("Id"));
}

QString missingText(const QWidget *control)
{
    if (qobject_cast<const CheckBox *>(control))
        return FormRules::tr("Check this box");
    const bool isList =
        qobject_cast<const QComboBox *>(control) && !qobject_cast<const DateEdit *>(control);
    const bool isChosen = isList || qobject_cast<const QAbstractButton *>(control);
    return isChosen ? FormRules::tr("Choose one") : FormRules::tr("Fill this in");
}

// By a child of the form that bears the text as its name: alerts have no text of their own.
void announce(const QString &text, QWidget *form)
{
    const QString objectName = QStringLiteral("formkit_announcement");
    auto *teller = form->findChild<QWidget *>(objectName, Qt::FindDirectChildrenOnly);
    if (!teller) {
        teller = new QWidget(form);
        teller->setObjectName(objectName);
        teller->hide();
    }
    teller->setAccessibleName(text);
    QAccessibleEvent alert(teller, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

QString otherThan(const QString &message, const QString &text)
{
    return message.isEmpty() || text.isEmpty() ? text : message;
}

} // namespace

struct Q_DECL_HIDDEN FormRules::Private
{
    struct Field
    {
        QPointer<QWidget> control;
        QVector<QPointer<QWidget>> members; // all whose own value it is, such as radio buttons
        Demands demands;
        QPointer<FieldMark> mark;
    };
    struct Added
    {
        QStringList names;
        Judge judge;
    };

    Private(FormRules *rules, Properties *properties, QWidget *widget)
        : q(rules), hub(properties), form(widget)
    {
    }

    void collect();
    void makeField(const QString &name, const QVector<QPointer<QWidget>> &members);
    QString nameOf(const QObject *widget) const;
    QLabel *captionOf(const QString &name, const Captions &captions) const;
    QString titleOf(const QString &name, const Captions &captions) const;

    Reasons judge();
    QString reasonFor(const QString &name, const Values &values);
    QString valueReason(const QString &name, const Values &values, const Field *field);
    static QString answerOf(const Added &added, const Values &values);

    void refreshLater();
    void refresh();
    void leave(const QString &name);
    void note(const Reasons &now);
    void show();
    void showField(const QString &name, Field *field, const Captions &captions);
    QStringList inTabOrder(const Reasons &errors) const;
    QString told(const QStringList &names, const Reasons &errors) const;
    void goTo(const QStringList &names);

    FormRules *const q;
    const QPointer<Properties> hub;
    const QPointer<QWidget> form;
    FormValidation validation;
    std::map<QString, Field> fields;
    QMap<QString, Demands> demands; // made in code
    QVector<Added> added;
    Values judged;  // the values at the last refresh
    Reasons errors; // those last told
    Reasons shown;
    // What a failed check says before the reason of the first field, until the errors change.
    QString preface;
    QString prefacedName;
    QList<QWidget *> redCaptions;
    // What the fields show: errors, the field that was gone to, changes.
    std::tuple<Reasons, QString, QStringList> painted;
    bool hasNewFields = true; // or new rules
    int bindingVersion = -1;  // that the fields were collected from
    QTimer later;
    bool isOutdated = false;
    bool marksChanges = false;
};

FormRules::FormRules(Properties *hub, QWidget *form)
    : QObject(form), d(std::make_unique<Private>(this, hub, form))
{
    d->marksChanges = form->property("marksChanges").toBool();
    d->judged = hub->values();
    d->later.setSingleShot(true);
    d->later.setInterval(0);
    // Queued, because the hub's report of the same change may make it unnecessary.
    const auto refreshIfOutdated = [this] {
        if (d->isOutdated)
            d->refresh();
    };
    connect(&d->later, &QTimer::timeout, this, refreshIfOutdated, Qt::QueuedConnection);
    connect(hub, &Properties::hasChanged, this, [this] { d->refresh(); });
    connect(hub, &Properties::changedStateChanged, this, [this] { d->refreshLater(); });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *old, QWidget *now) {
        if (!old || !now || !d->form || now->window() != d->form->window())
            return;
        const QString left = d->nameOf(old);
        if (!left.isEmpty() && left != d->nameOf(now))
            d->leave(left);
    });
    d->errors = d->judge();
    d->show();
}

FormRules::~FormRules()
{
    for (const auto &field : d->fields)
        delete field.second.mark;
}

// Sub-forms come and go: the fields are those that the hub has bound now.
void FormRules::Private::collect()
{
    if (!hub || std::exchange(bindingVersion, hub->bindingVersion()) == hub->bindingVersion())
        return;
    const QStringList names = hub->names();
    for (auto it = fields.begin(); it != fields.end();) {
        const bool isThere = it->second.control && names.contains(it->first);
        if (!isThere)
            delete it->second.mark;
        it = isThere ? std::next(it) : fields.erase(it);
    }
    for (const QString &name : names) {
        QVector<QPointer<QWidget>> members;
        const QList<QObject *> objects = hub->objects(name);
        for (QObject *object : objects) {
            auto *const widget = qobject_cast<QWidget *>(object);
            if (widget && hub->ownName(object) == name && form->isAncestorOf(widget))
                members << widget;
        }
        // The same name may stand on several pages.
        std::stable_partition(members.begin(), members.end(), [this](QWidget *member) {
            return FormPages::canBeReached(member, form);
        });
        const auto field = fields.find(name);
        if (field == fields.end() ? !members.isEmpty() : field->second.members != members)
            makeField(name, members);
    }
}

void FormRules::Private::makeField(const QString &name, const QVector<QPointer<QWidget>> &members)
{
    const auto old = fields.find(name);
    if (old != fields.end()) {
        delete old->second.mark;
        fields.erase(old);
    }
    if (members.isEmpty())
        return;
    QWidget *const control = members.first();
    fields[name] = {control, members, demandsOf(control), nullptr};
    hasNewFields = true;
    control->installEventFilter(q);
    const auto *const box = qobject_cast<QComboBox *>(control);
    const QLineEdit *const edit = box ? box->lineEdit() : qobject_cast<const QLineEdit *>(control);
    if (!edit)
        return;
    disconnect(edit, &QLineEdit::textChanged, q, nullptr);
    connect(edit, &QLineEdit::textChanged, q, [this] { refreshLater(); });
}

// The name of the field that a widget is, or is a part of.
QString FormRules::Private::nameOf(const QObject *widget) const
{
    for (const QObject *part = widget; part && part != form; part = part->parent()) {
        const QString name = hub ? hub->ownName(const_cast<QObject *>(part)) : QString();
        if (fields.count(name))
            return name;
    }
    return {};
}

QLabel *FormRules::Private::captionOf(const QString &name, const Captions &captions) const
{
    const auto field = fields.find(name);
    if (field == fields.end())
        return nullptr;
    for (const QPointer<QWidget> &member : field->second.members) {
        if (QLabel *const label = captions.of(member))
            return label;
    }
    return nullptr;
}

QString FormRules::Private::titleOf(const QString &name, const Captions &captions) const
{
    const QLabel *const label = captionOf(name, captions);
    return label ? captions.textOf(label->buddy()) : name;
}

Reasons FormRules::Private::judge()
{
    Reasons reasons;
    if (!hub || !form)
        return reasons;
    collect();
    const Values values = hub->values();
    const QStringList unshown = hub->unshown();
    QSet<QString> names(unshown.begin(), unshown.end());
    for (const auto &field : fields)
        names.insert(field.first);
    for (auto it = demands.cbegin(); it != demands.cend(); ++it)
        names.insert(it.key());
    for (const Added &one : std::as_const(added))
        names.insert(one.names.value(0));
    for (const QString &name : std::as_const(names)) {
        const QString reason = reasonFor(name, values);
        if (!reason.isEmpty())
            reasons.insert(name, reason);
        else if (unshown.contains(name))
            reasons.insert(name, tr("This is not what was set; enter it again"));
    }
    return reasons;
}

QString FormRules::Private::reasonFor(const QString &name, const Values &values)
{
    const auto found = fields.find(name);
    const Field *const field = found == fields.end() ? nullptr : &found->second;
    if (field && !FormPages::canBeReached(field->control, form))
        return {};
    QString reason = field ? FieldFaults::ofText(field->control) : QString();
    if (reason.isEmpty())
        reason = valueReason(name, values, field);
    for (auto it = added.cbegin(); it != added.cend() && reason.isEmpty(); ++it) {
        if (it->names.value(0) == name)
            reason = answerOf(*it, values);
    }
    return reason;
}

QString FormRules::Private::valueReason(const QString &name, const Values &values,
                                        const Field *field)
{
    const QWidget *const control = field ? field->control.data() : nullptr;
    const QString value = values[name];
    const Demands all[] = {demands.value(name), field ? field->demands : Demands()};
    for (const Demands &one : all) {
        if (one.isRequired && isMissing(value, control))
            return one.missing.isEmpty() ? missingText(control) : one.missing;
    }
    if (value.isEmpty())
        return {};
    QString reason =
        control ? otherThan(all[1].message, FieldFaults::ofLimits(control)) : QString();
    for (const Demands &one : all) {
        for (auto rule = one.rules.cbegin(); rule != one.rules.cend() && reason.isEmpty(); ++rule)
            reason = otherThan(one.message, (*rule)(value, control));
    }
    return reason;
}

QString FormRules::Private::answerOf(const Added &one, const Values &values)
{
    try {
        return one.judge(values);
    } catch (...) {
        return tr("This could not be checked");
    }
}

void FormRules::require(const QString &name, const QString &message)
{
    Demands &demands = d->demands[name];
    demands.isRequired = true;
    demands.missing = message;
    d->hasNewFields = true;
    d->refreshLater();
}

void FormRules::range(const QString &name, const QString &least, const QString &most,
                      const QString &message)
{
    d->demands[name].rules << withMessage(Rules::range(least, most), message);
    d->refreshLater();
}

void FormRules::oneOf(const QString &name, const QStringList &values, const QString &message)
{
    d->demands[name].rules << withMessage(Rules::oneOf(values), message);
    d->refreshLater();
}

void FormRules::matches(const QString &name, const QString &pattern, const QString &message)
{
    d->demands[name].rules << withMessage(Rules::matches(pattern), message);
    d->refreshLater();
}

void FormRules::add(const QStringList &names, const Judge &judge)
{
    if (names.isEmpty() || !judge)
        return;
    d->added << Private::Added{names, judge};
    d->refreshLater();
}

void FormRules::Private::refreshLater()
{
    isOutdated = true;
    later.start();
}

// Something has changed: mends what is marked, and judges the rules over several names.
void FormRules::Private::refresh()
{
    later.stop();
    isOutdated = false;
    const Reasons now = judge();
    for (auto it = shown.begin(); it != shown.end();)
        it = now.contains(it.key()) ? it + 1 : shown.erase(it);
    for (auto it = shown.begin(); it != shown.end(); ++it)
        *it = now.value(it.key());
    const Values values = hub ? hub->values() : Values();
    const QString edited = nameOf(QApplication::focusWidget());
    for (const Added &one : std::as_const(added)) {
        const QString name = one.names.first();
        const auto isChanged = [&](const QString &other) { return values[other] != judged[other]; };
        if (one.names.size() > 1 && name != edited && now.contains(name) &&
            std::any_of(one.names.begin(), one.names.end(), isChanged) &&
            !answerOf(one, values).isEmpty())
            shown.insert(name, now.value(name));
    }
    judged = values;
    note(now);
}

void FormRules::Private::leave(const QString &name)
{
    const Reasons now = judge();
    if (now.contains(name))
        shown.insert(name, now.value(name));
    else
        shown.remove(name);
    note(now);
}

void FormRules::Private::note(const Reasons &now)
{
    const bool isOther = std::exchange(errors, now) != now;
    if (isOther)
        prefacedName.clear();
    show();
    if (isOther)
        Q_EMIT q->changed();
}

void FormRules::Private::show()
{
    if (!form || !hub)
        return;
    const auto wanted =
        std::make_tuple(shown, prefacedName, marksChanges ? hub->changedNames() : QStringList());
    if (std::exchange(painted, wanted) == wanted && !std::exchange(hasNewFields, false))
        return;
    const Captions captions(form);
    QList<QWidget *> red;
    for (auto &field : fields) {
        showField(field.first, &field.second, captions);
        QLabel *const label = captionOf(field.first, captions);
        if (label && shown.contains(field.first))
            red << label;
    }
    if (red != redCaptions)
        validation.setInvalidWidgets(red);
    redCaptions = red;
}

void FormRules::Private::showField(const QString &name, Field *field, const Captions &captions)
{
    const QString reason = shown.value(name);
    const bool isRequired = field->demands.isRequired || demands.value(name).isRequired;
    const bool isChanged = std::get<QStringList>(painted).contains(name);
    if (!field->mark && reason.isEmpty() && !isRequired && !isChanged)
        return;
    if (!field->mark)
        field->mark = new FieldMark(field->control);
    field->mark->setRequired(isRequired ? titleOf(name, captions) : QString());
    field->mark->setReason(reason, name == prefacedName ? preface : QString());
    field->mark->setChanged(isChanged);
}

QStringList FormRules::Private::inTabOrder(const Reasons &wrong) const
{
    QStringList names;
    for (const QWidget *w = form->nextInFocusChain(); w != form; w = w->nextInFocusChain()) {
        const QString name = form->isAncestorOf(w) ? nameOf(w) : QString();
        if (wrong.contains(name) && !names.contains(name))
            names << name;
    }
    for (auto it = wrong.cbegin(); it != wrong.cend(); ++it) {
        if (!names.contains(it.key()))
            names << it.key();
    }
    return names;
}

QString FormRules::Private::told(const QStringList &names, const Reasons &wrong) const
{
    const Captions captions(form);
    QStringList parts;
    for (const QString &name : names)
        parts << tr("%1: %2").arg(titleOf(name, captions), wrong.value(name));
    return parts.join(QLatin1String(". "));
}

// What cannot take the focus is passed over.
void FormRules::Private::goTo(const QStringList &names)
{
    for (const QString &name : names) {
        const auto field = fields.find(name);
        QWidget *const control = field == fields.end() ? nullptr : field->second.control.data();
        if (!control || control->focusPolicy() == Qt::NoFocus)
            continue;
        FormPages::open(control, form);
        control->setFocus(Qt::OtherFocusReason);
        return;
    }
}

// Assistive technology that hears no alerts reads the field that gets the focus, with its
// description, so that begins with the count.
bool FormRules::check()
{
    if (!d->form)
        return true;
    const Reasons now = d->judge();
    d->shown = now;
    const QStringList names = d->inTabOrder(now);
    const int count = names.size();
    const QString preface =
        count == 1 ? tr("1 field needs attention") : tr("%n fields need attention", nullptr, count);
    const QPointer<FormRules> alive(this);
    d->note(now);
    if (!alive || now.isEmpty())
        return now.isEmpty();
    d->preface = preface;
    d->prefacedName = names.first();
    d->show();
    d->goTo(names);
    if (alive)
        announce(tr("%1: %2").arg(preface, d->told(names, now)), d->form);
    return false;
}

bool FormRules::isValid() const
{
    return errors().isEmpty();
}

Reasons FormRules::errors() const
{
    return d->judge();
}

QString FormRules::firstError() const
{
    const Reasons now = d->judge();
    return now.isEmpty() ? QString() : d->told(d->inTabOrder(now).mid(0, 1), now);
}

bool FormRules::marksChanges() const
{
    return d->marksChanges;
}

void FormRules::setMarksChanges(bool marks)
{
    d->marksChanges = marks;
    d->show();
}

bool FormRules::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::DynamicPropertyChange) {
        const QByteArray name = static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName();
        const auto field = d->fields.find(d->nameOf(watched));
        const bool isRule =
            name == isRequiredProperty || name == ruleProperty || name == messageProperty;
        if (isRule && field != d->fields.end() && field->second.control == watched) {
            field->second.demands = demandsOf(field->second.control);
            d->hasNewFields = true;
            d->refreshLater();
        }
    }
    return QObject::eventFilter(watched, event);
}
