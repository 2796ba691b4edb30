#include "formsequence.h"

#include "boundform.h"
#include "formmodel.h"
#include "formtexts.h"

#include <embeddedhost/embeddedhost.h>

#include <QCoreApplication>
#include <QKeySequence>
#include <QSignalSpy>

#include <algorithm>

namespace {

QStringList warnings;

void noteWarning(QtMsgType type, const QMessageLogContext & /*context*/, const QString &text)
{
    // What the offscreen platform says whenever a pop-up opens.
    if (type != QtDebugMsg && !text.startsWith("This plugin does not support "))
        warnings << text;
}

bool isBox(const QString &name)
{
    return name == "exchange" || name == "board" || name == "security";
}

bool isNumber(const QString &name)
{
    return name == "quantity" || name == "offset" || name.startsWith("price");
}

// A form and its model, side by side.
class Pair
{
public:
    Pair(EmbeddedHost *host, const QString &file)
        : m_form(host, file), m_changed(&m_form.hub(), &Properties::hasChanged)
    {
        m_form.activateWindow();
        QCoreApplication::processEvents();
        compare();
    }

    // Does one action; answers what is wrong behind it.
    QString act(const FormAction &action)
    {
        const auto before = m_model.values();
        m_changed.clear();
        doOnProgram(action);
        if (m_model.isAtHand(action.target))
            doAsUser(action);
        QCoreApplication::processEvents();
        compare();
        const bool isOther = m_model.values() != before;
        if (m_changed.count() > 1 || (isOther && m_changed.isEmpty()))
            blame("hasChanged", isOther ? "once" : "once at most",
                  QString::number(m_changed.count()));
        return m_faults.join('\n');
    }
    QString faults() const { return m_faults.join('\n'); }

private:
    void doOnProgram(const FormAction &action)
    {
        const QString &target = action.target;
        if (action.verb == "set") {
            m_form.hub().setValue(target, action.text);
            m_model.set(target, action.text);
        } else if (action.verb == "fill") {
            fill(action.text.split('|'));
        } else if (action.verb == "load" || action.verb == "reload") {
            if (!m_form.load(action.text.toInt()))
                m_faults << "the host does not load";
            m_model.load(action.text.toInt());
            for (const char *box : {"exchange", "board", "security"}) {
                if (action.verb == "reload" && m_model.exists(box)) {
                    m_form.refresh(box);
                    m_model.refresh(box);
                }
            }
        } else if (action.verb == "refresh" && m_model.exists(target)) {
            m_form.refresh(target);
            m_model.refresh(target);
        } else if (action.verb == "destroy" || action.verb == "create" || action.verb == "remake") {
            remake(target, action.verb != "create", action.verb != "destroy");
        } else if (action.verb == "locale") {
            m_form.setLocale(action.text);
            m_model.setLocale(action.text);
        }
    }

    void remake(const QString &target, bool isToGo, bool isToCome)
    {
        if (isToGo && m_model.exists(target)) {
            m_form.destroy(target);
            m_model.destroy(target);
        }
        if (isToCome && !m_model.exists(target)) {
            m_form.create(target);
            m_model.create(target);
        }
    }

    void fill(const QStringList &pairs)
    {
        Values values;
        for (const QString &pair : pairs)
            values.insert(pair.section('=', 0, 0), pair.section('=', 1));
        m_form.hub().setValues(values);
        for (auto entry = values.cbegin(); entry != values.cend(); ++entry)
            m_model.set(entry.key(), entry.value().toString());
    }

    void doAsUser(const FormAction &action)
    {
        const QString &target = action.target;
        if (!QStringList{"type", "paste", "replace", "key", "choose", "step", "focus", "click",
                         "complete", "pick"}
                 .contains(action.verb))
            return;
        takeFocus(target, action.verb == "focus" ? Qt::TabFocusReason : Qt::MouseFocusReason);
        if (action.verb == "type") {
            for (const QChar c : action.text)
                edit(target, [&] { m_form.press(target, 0, c); });
        } else if (action.verb == "paste") {
            edit(target, [&] { m_form.paste(target, action.text); });
        } else if (action.verb == "replace") {
            replace(target, action.text);
        } else if (action.verb == "key") {
            const auto press = [&] { m_form.press(target, QKeySequence(action.text)[0], {}); };
            if (action.text == "Return") {
                press();
                m_model.leave(target);
            } else {
                edit(target, press);
            }
        } else if (action.verb == "choose") {
            const int row = action.text.toInt();
            if (row < m_model.listed(target).size()) {
                m_form.choose(target, row);
                m_model.choose(target, row);
            }
        } else if (action.verb == "step") {
            m_form.press(target, action.text == "Up" ? Qt::Key_Up : Qt::Key_Down, {});
            m_model.step(target, action.text == "Up" ? -1 : 1);
        } else if (action.verb == "complete") {
            complete(target, QString(action.text).remove('+'), action.text.count('+'));
        } else if (action.verb == "pick") {
            m_form.pick(target, QDate::fromString(action.text, "yyyy.MM.dd"));
            m_model.pick(target, action.text);
        } else if (action.verb == "click") {
            m_form.press(target, Qt::Key_Space, " ");
            m_model.click(target);
        }
    }

    void takeFocus(const QString &target, Qt::FocusReason reason)
    {
        const QString left = m_form.focused();
        if (left == target)
            return;
        m_form.focus(target, reason);
        if (!left.isEmpty())
            m_model.leave(left);
    }

    // What becomes of the text is Qt's and the validators' affair; what it means is the model's.
    template <typename Do> void edit(const QString &target, Do change)
    {
        const QString before = m_form.shown(target);
        m_form.takeEdited();
        change();
        const QString after = m_form.shown(target);
        if (m_form.takeEdited() || after != before)
            m_model.edit(target, after, true);
        const QString locale = m_model.locale();
        if (isNumber(target) && FormTexts::isTidy(before, locale) &&
            !FormTexts::isTidy(after, locale))
            blame(target, FormTexts::write(FormTexts::read(after, locale), locale), after);
    }

    void complete(const QString &target, const QString &text, int place)
    {
        edit(target, [&] { m_form.press(target, Qt::CTRL + Qt::Key_A, {}); });
        for (int i = 0; i < text.size(); ++i) {
            const bool isLast = i + 1 == text.size();
            edit(target, [&] { m_form.press(target, 0, text.mid(i, 1), isLast); });
        }
        const int count = m_model.completions(target, text).size();
        if (count == 0 || place == 0 || text.isEmpty())
            return m_form.press(target, Qt::Key_Shift, {});
        m_form.complete(target, std::min(place, count));
        m_model.complete(target, text, std::min(place, count));
    }

    // What is pasted over all is that number, or is refused.
    void replace(const QString &target, const QString &text)
    {
        edit(target, [&] { m_form.press(target, Qt::CTRL + Qt::Key_A, {}); });
        const QString before = m_form.shown(target);
        edit(target, [&] { m_form.paste(target, text); });
        const QString after = m_form.shown(target);
        const QString meant = FormTexts::readStrictly(text.trimmed(), m_model.locale());
        if (isNumber(target) && after != before &&
            FormTexts::readStrictly(after, m_model.locale()) != meant)
            blame(target, meant, after);
    }

    void compare()
    {
        const Values held = m_form.hub().values();
        const QMap<QString, QString> values = m_model.values();
        for (const QString &name : QSet<QString>(held.keyBegin(), held.keyEnd()) +
                                       QSet<QString>(values.keyBegin(), values.keyEnd())) {
            if (!held.contains(name) || !values.contains(name) || held[name] != values[name])
                blame(name, values.value(name, "(absent)"),
                      held.contains(name) ? held[name] : "(absent)");
        }
        for (const char *name : {"exchange", "board", "security", "price", "quantity", "total",
                                 "till", "till2", "when", "buy", "sell", "hidden", "comment",
                                 "mirror", "noteA", "offset", "noteB", "price2", "remark"})
            compareShown(name);
        if (m_form.page() != m_model.page())
            blame("page", m_model.page(), m_form.page());
        m_faults += warnings;
        warnings.clear();
    }

    void compareShown(const QString &name)
    {
        if (bool(m_form.control(name)) != m_model.exists(name))
            return blame(name, m_model.exists(name) ? "exists" : "is gone", {});
        if (!m_model.exists(name))
            return;
        if (m_form.shown(name) != m_model.shown(name))
            blame(name, m_model.shown(name), m_form.shown(name));
        if (isBox(name) && m_form.listed(name) != m_model.listed(name))
            blame(name + "'s list", m_model.listed(name).join('|'), m_form.listed(name).join('|'));
    }

    void blame(const QString &what, const QString &wanted, const QString &found)
    {
        m_faults << what + ": wanted '" + wanted + "', found '" + found + '\'';
    }

    BoundForm m_form;
    FormModel m_model;
    QSignalSpy m_changed;
    QStringList m_faults;
};

} // namespace

QString FormSequence::play(const QVector<FormAction> &actions)
{
    const QtMessageHandler before = qInstallMessageHandler(noteWarning);
    warnings.clear();
    QString fault;
    if (!m_host->loadNow(m_file + '0'))
        fault = m_host->errorText();
    if (fault.isEmpty()) {
        Pair pair(m_host, m_file);
        fault = pair.faults();
        for (int i = 0; i < actions.size() && fault.isEmpty(); ++i) {
            ++m_played;
            fault = pair.act(actions[i]);
            if (!fault.isEmpty())
                fault =
                    QString("behind action %1, %2:\n").arg(i + 1).arg(actions[i].toLine()) + fault;
        }
    }
    qInstallMessageHandler(before);
    return fault;
}

QVector<FormAction> FormSequence::shrunk(QVector<FormAction> actions)
{
    for (bool isShorter = true; isShorter;) {
        isShorter = false;
        for (int run = actions.size() / 2; run > 0; run /= 2) {
            for (int first = actions.size() - run; first >= 0; --first) {
                if (first + run <= actions.size())
                    isShorter |= tryReplacing(&actions, first, run, {});
            }
        }
        for (int i = 0; i < actions.size(); ++i) {
            for (const FormAction &simpler : actions[i].simpler()) {
                if (tryReplacing(&actions, i, 1, {simpler})) {
                    isShorter = true;
                    break;
                }
            }
        }
    }
    return actions;
}

bool FormSequence::tryReplacing(QVector<FormAction> *actions, int first, int count,
                                const QVector<FormAction> &with)
{
    const QVector<FormAction> other = actions->mid(0, first) + with + actions->mid(first + count);
    if (play(other).isEmpty())
        return false;
    *actions = other;
    return true;
}
