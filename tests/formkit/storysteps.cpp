// SPDX-License-Identifier: BSD-3-Clause
#include "storysteps.h"

#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/decimalvalidator.h>
#include <formkit/numbereditor.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/pushbuttonsend.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/securitysteps.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>
#include <formkit/stockselectormodel.h>

#include <support/keys.h>
#include <support/stricttest.h>

#include <QAbstractProxyModel>
#include <QApplication>
#include <QClipboard>
#include <QCompleter>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMetaProperty>
#include <QProxyStyle>
#include <QStandardItemModel>

namespace {

using Words = const QString &;

QString first(Words words)
{
    return words.section(' ', 0, 0);
}

QString rest(Words words)
{
    return words.section(' ', 1);
}

template <typename T> T *as(QObject *object)
{
    return qobject_cast<T *>(object);
}

struct Iconless : QProxyStyle
{
    QIcon standardIcon(StandardPixmap, const QStyleOption *, const QWidget *) const override
    {
        return {};
    }
};

void setProperty(const StoryForm *p, Words words)
{
    QString name = first(words);
    QObject *const object = p->owner(&name);
    QVERIFY2(object, qPrintable("none has " + first(words)));
    object->setProperty(name.toLatin1(), rest(words));
}

void callSlot(const StoryForm *p, Words words)
{
    const QByteArray name = first(words).toLatin1();
    const bool isCalled =
        words.contains(' ')
            ? QMetaObject::invokeMethod(p->current, name, Q_ARG(QString, rest(words)))
            : QMetaObject::invokeMethod(p->current, name);
    QVERIFY2(isCalled, qPrintable("no slot " + words));
}

void compose(QWidget *edit, Words text, int replaced = 0)
{
    QInputMethodEvent event;
    event.setCommitString(text, -replaced, replaced);
    QApplication::sendEvent(edit, &event);
}

void pressKeypadPoint(QWidget *edit)
{
    constexpr quint32 MacKeypadDecimal = 0x41;
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 1, MacKeypadDecimal, 0,
                    ".");
    QApplication::sendEvent(edit, &press);
}

// As a user opens the menu and chooses, by the beginning of the entry.
void chooseInMenu(QWidget *edit, Words entry)
{
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {4, 4}, edit->mapToGlobal({4, 4}));
    QApplication::sendEvent(edit, &event);
    auto *const menu = as<QMenu>(QApplication::activePopupWidget());
    QVERIFY(menu);
    for (QAction *const action : menu->actions()) {
        if (action->text().remove('&').startsWith(entry) && action->isEnabled())
            action->trigger();
    }
    menu->close();
}

QPoint placeOf(const QAbstractItemView *list, Words row)
{
    return list->visualRect(list->model()->index(row.toInt(), 0)).center();
}

void setCompleter(QComboBox *box, Words how)
{
    if (how == "inline")
        box->completer()->setCompletionMode(QCompleter::InlineCompletion);
    else
        box->setCompleter(how == "none" ? nullptr : new QCompleter(box->model(), box));
}

void fiddle(StoryPlayer *p)
{
    const QMetaProperty key = p->current->metaObject()->userProperty();
    key.write(p->current, "1");
    p->act("row 1; type x; press Return F4 Down Escape; populate; leave; turn; back");
    key.write(p->current, "1");
}

void insertForeignModel(QComboBox *box, Words what)
{
    auto *const foreign = new QStandardItemModel(2, 1, box);
    if (what == "list")
        box->setModel(foreign);
    else
        as<QAbstractProxyModel>(box->model())->setSourceModel(foreign);
}

template <typename Box, typename Model> void changeModel(QWidget *control, Words how)
{
    if (auto *const box = as<Box>(control))
        box->setSourceModel(how == "none" ? nullptr : new Model);
}

void limit(const StoryForm *p, Words words)
{
    auto *const box = as<BoardSelectorBox>(p->current);
    auto *const model = as<BoardSelectorModel>(p->source());
    const QString what = first(words);
    bool isList = false;
    if (what == "on")
        box->setBoardFlagsOnFilter(rest(words).toInt());
    else if (what == "off")
        box->setBoardFlagsOffFilter(rest(words).toInt());
    else if (what == "sectype")
        box->setSecTypeFilter(rest(words).at(0));
    else if (what == "positions")
        model->setForPositions(true);
    else
        model->setFilterBoards(boardListFromString(rest(words), &isList));
}

template <typename... Listed> void populateAny(QObject *object)
{
    const auto populate = [](auto *listed) { listed ? listed->populate() : void(); };
    (populate(as<Listed>(object)), ...);
}

void populate(StoryForm *p, Words name)
{
    const QPointer<QWidget> before = p->current;
    p->current = name.isEmpty() ? before.data() : p->control(name);
    populateAny<StockSelectorBox_Code, PartnerSelectorBox>(p->current);
    populateAny<StockSelectorModel, BoardSelectorModel, SecuritySelectorModel>(p->source());
    p->current = before;
}

void offer(const StoryForm *p, Words words)
{
    const QMap<QString, QVariantList> known = p->file.rows[first(words)];
    QVector<QVariantList> offered;
    for (const QString &nickname : rest(words).split(' ', Qt::SkipEmptyParts)) {
        QVERIFY2(known.contains(nickname), qPrintable("no row " + nickname));
        offered << known[nickname];
    }
    p->host->table(first(words)).setRows(offered);
}

void offerMany(TestHost *host, int count)
{
    QVector<QVariantList> rows;
    for (int i = 1; i <= count; ++i)
        rows << QVariantList{i, 1, 7, QString("C%1").arg(i), QString("N%1").arg(i, 6), {}, 20};
    host->table("securities").setRows(rows);
}

void bind(const StoryForm *p, Words words)
{
    const QStringList pair = rest(words).split('=');
    QWidget *const object = p->control(first(words));
    QVERIFY(pair.size() < 2 ? p->hub()->connectAll(object)
                            : p->hub()->connectOne(pair[1], object, pair[0].toLatin1()));
}

void unbind(const StoryForm *p, Words words)
{
    const QStringList pair = rest(words).split('=');
    QWidget *const object = p->control(first(words));
    QVERIFY(pair.size() < 2 ? p->hub()->disconnectAll(object)
                            : p->hub()->disconnectOne(pair[1], object, pair[0].toLatin1()));
}

void setValues(const StoryForm *p, Words pairs)
{
    Values values;
    for (const QString &pair : pairs.split(' '))
        values.insert(pair.section('=', 0, 0), pair.section('=', 1));
    p->hub()->setValues(values);
}

void destroy(StoryForm *p, Words name)
{
    if (name == "hub")
        p->destroyHub();
    else
        delete (name.isEmpty() ? p->current.data() : p->find<QObject>(name));
}

StorySteps handSteps(StoryPlayer *p)
{
    return {
        {"at", "control", "takes a control in use and gives it the focus", "at price",
         [p](Words name) { p->use(name); }},
        {"type", "text", "types into the control in use", "type 1.5",
         [p](Words text) { keys::type(p->current, text); }},
        {"press", "key ...", "presses keys; an open list gets them", "press Ctrl+A Home F4",
         [p](Words names) { keys::press(p->current, names); }},
        {"paste", "text", "pastes from the clipboard", "paste 1,234.50",
         [p](Words text) {
             QApplication::clipboard()->setText(text);
             QMetaObject::invokeMethod(p->edit(), "paste");
         }},
        {"keypad", "", "presses the keypad's decimal key", "keypad",
         [p](Words) { pressKeypadPoint(p->current); }},
        {"compose", "text", "enters a text by an input method", "compose 5",
         [p](Words text) { compose(p->edit(), text); }},
        {"recompose", "count text", "the same in place of so many characters before the caret",
         "recompose 3 abc",
         [p](Words words) { compose(p->edit(), rest(words), first(words).toInt()); }},
        {"caret", "place", "moves the caret", "caret 2",
         [p](Words place) { p->edit()->setCursorPosition(place.toInt()); }},
        {"select", "start length", "selects a part of the text", "select 5 -3",
         [p](Words words) { p->edit()->setSelection(first(words).toInt(), rest(words).toInt()); }},
        {"wheel", "angle", "turns the wheel over the control, or its open list", "wheel -120",
         [p](Words angle) { p->wheel = p->turnWheel(angle.toInt()) ? "taken" : "ignored"; }},
        {"point", "row", "moves the mouse to a row of the open list", "point 1",
         [p](Words row) { QTest::mouseMove(p->list()->viewport(), placeOf(p->list(), row)); }},
        {"click", "row", "clicks a row of the open list; see `wait`", "click 2",
         [p](Words row) {
             QTest::mouseClick(p->list()->viewport(), Qt::LeftButton, {}, placeOf(p->list(), row));
         }},
        {"tap", "", "clicks into the control in use with the left button", "tap",
         [p](Words) {
             p->current->setFocus(p->current->hasFocus() ? Qt::OtherFocusReason
                                                         : Qt::MouseFocusReason);
             QTest::mouseClick(p->current, Qt::LeftButton);
         }},
        {"menu", "entry", "chooses from the context menu of the line edit in use", "menu Undo",
         [p](Words entry) { chooseInMenu(p->edit(), entry); }},
        {"wait", "", "waits until a click is none of a double click (after F4)", "wait",
         [](Words) { QTest::qWait(QApplication::doubleClickInterval() + 50); }},
        {"leave", "", "moves the focus to a line edit that the form ends with", "leave",
         [p](Words) { p->leave(); }},
        {"back", "", "gives the control in use the focus again", "back",
         [p](Words) { p->current->setFocus(); }},
        {"fiddle", "", "all that a hand and a program may do to a selector, in short", "fiddle",
         [p](Words) { fiddle(p); }},
    };
}

StorySteps programSteps(StoryPlayer *p)
{
    return {
        {"set", "[control.]property value", "sets a property; `edit.` is the line edit in use",
         "set Value 1.5", [p](Words words) { setProperty(p, words); }},
        {"call", "slot [text]", "calls a slot of the control in use", "call setError too much",
         [p](Words words) { callSlot(p, words); }},
        {"edit", "[text]", "sets the text of the line edit in use", "edit Xetra",
         [p](Words text) { p->edit()->setText(text); }},
        {"row", "number", "chooses a row of the box", "row 1",
         [p](Words row) { p->box()->setCurrentIndex(row.toInt()); }},
        {"hub", "name [value]", "sets a value in the hub", "hub Price 1.5",
         [p](Words words) { p->hub()->setValue(first(words), rest(words)); }},
        {"hubs", "name=value ...", "sets values in the hub in one call", "hubs StockId=1 BoardId=7",
         [p](Words pairs) { setValues(p, pairs); }},
        {"again", "", "has the hub show its values again", "again",
         [p](Words) { p->hub()->showAgain(); }},
        {"baseline", "", "makes the hub's values the baseline", "baseline",
         [p](Words) { p->hub()->setBaseline(); }},
        {"revert", "[name]", "sets the hub's values back to the baseline, or one", "revert Price",
         [p](Words name) { name.isEmpty() ? p->hub()->revert() : p->hub()->revert(name); }},
        {"rules", "[lower name and name]",
         "makes rules for the form; the first of two names must be below the second",
         "rules Stop Price",
         [p](Words names) {
             p->rules = new FormRules(p->hub(), &p->window);
             if (names.isEmpty())
                 return;
             const QString low = first(names);
             const QString high = rest(names);
             p->rules->add({low, high}, [low, high](const Values &values) {
                 return values[low].toDouble() < values[high].toDouble() ? "" : "Below " + high;
             });
         }},
        {"tie", "button policy", "ties a PushButtonSend to the rules", "tie send DisabledByErrors",
         [p](Words words) {
             as<PushButtonSend>(p->control(first(words)))
                 ->setRules(p->rules, rest(words) == "DisabledByErrors"
                                          ? PushButtonSend::DisabledByErrors
                                          : PushButtonSend::ChecksOnClick);
         }},
        {"dots", "", "has the rules mark what has changed", "dots",
         [p](Words) { p->rules->setMarksChanges(true); }},
        {"invalid", "[name ...]", "marks the captions of these names", "invalid Price",
         [p](Words names) { p->validation.set(names.split(' ', Qt::SkipEmptyParts)); }},
        {"make", "class name [property=value ...]", "makes a control, which is not bound",
         "make CheckBox margin field=Margin", [p](Words words) { p->make(words.split(' ')); }},
        {"another", "name", "makes one of the class in use, takes it in use", "another alone",
         [p](Words name) {
             p->make({p->current->metaObject()->className(), name});
             p->use(name);
         }},
        {"delete", "[control]", "destroys a control, or the hub, or the control in use",
         "delete price", [p](Words name) { destroy(p, name); }},
        {"bind", "control [property=name]", "binds a control, or a property of it under a name",
         "bind price Value=Price", [p](Words words) { bind(p, words); }},
        {"unbind", "control [property=name]", "undoes that", "unbind price",
         [p](Words words) { unbind(p, words); }},
        {"enter", "control text", "changes a CountingControl as a user would", "enter a text",
         [p](Words words) { p->find<CountingControl>(first(words))->enter(rest(words)); }},
        {"upon", "control [step & ...]", "what a CountingControl does at each write from now on",
         "upon a hub Price 2 & delete b",
         [p](Words words) {
             p->find<CountingControl>(first(words))->onWrite = [p, steps = rest(words)] {
                 if (!steps.isEmpty())
                     p->act(steps, " & ");
             };
         }},
        {"warns", "pattern", "announces a warning; unannounced ones fail", "warns .* is gone",
         [](Words pattern) { StrictTest::expectWarning(pattern); }},
        {"turn", "", "lets the event loop turn once", "turn",
         [](Words) { QCoreApplication::processEvents(); }},
    };
}

StorySteps boxSteps(StoryPlayer *p)
{
    return {
        {"locale", "name", "gives a number editor's validator a locale", "locale de_DE",
         [p](Words name) {
             as<NumberEditor>(p->current)->decimalValidator()->setLocale(QLocale(name));
         }},
        {"iconless", "", "gives the control a style without icons", "iconless",
         [p](Words) {
             auto *const style = new Iconless;
             style->setParent(p->current);
             p->current->setStyle(style);
         }},
        {"completer", "inline, none or other", "changes the type-ahead", "completer none",
         [p](Words how) { setCompleter(p->box(), how); }},
        {"lineEdit", "", "gives the box another line edit", "lineEdit",
         [p](Words) { p->box()->setLineEdit(new QLineEdit); }},
        {"items", "text ...", "adds rows to a ComboBox", "items ABC AB",
         [p](Words texts) { p->box()->addItems(texts.split(' ')); }},
        {"model", "new or none", "gives a selector another model", "model new",
         [p](Words how) {
             changeModel<StockSelectorBox, StockSelectorModel>(p->current, how);
             changeModel<BoardSelectorBox, BoardSelectorModel>(p->current, how);
             changeModel<SecuritySelectorBox, SecuritySelectorModel>(p->current, how);
         }},
        {"kill", "", "destroys the model behind the box's list", "kill",
         [p](Words) { delete p->source(); }},
        {"foreign", "list or source", "puts a model of two rows in place of the list, or behind it",
         "foreign list", [p](Words what) { insertForeignModel(as<QComboBox>(p->current), what); }},
        {"loseList", "", "destroys the box's list", "loseList",
         [p](Words) { delete as<QComboBox>(p->current)->model(); }},
        {"display", "role", "what securities are listed by, from `Qt::UserRole` on", "display 6",
         [p](Words role) {
             as<SecuritySelectorModel>(p->source())
                 ->setDefaultDataRole(
                     SecuritySelectorModel::ItemDataRole(Qt::UserRole + role.toInt()));
         }},
        {"limit", "on, off, sectype, boards or positions, value", "limits what boards are listed",
         "limit boards 2,3;1,7", [p](Words words) { limit(p, words); }},
    };
}

StorySteps hostSteps(StoryPlayer *p)
{
    return {
        {"offer", "table [nickname ...]", "gives a table these rows and no others",
         "offer stocks nasdaq late", [p](Words words) { offer(p, words); }},
        {"many", "count", "gives the table of securities so many rows, numbered from 1",
         "many 100000", [p](Words count) { offerMany(p->host, count.toInt()); }},
        {"populate", "[control]", "has a selector read its table again", "populate stock",
         [p](Words name) { populate(p, name); }},
        {"sessions", "exchange session", "what session is open; see `announce`", "sessions 1 20",
         [p](Words words) {
             p->host->setSessions({{first(words).toInt(), rest(words).toInt()}});
         }},
        {"ticks", "security price lot", "the steps of a security of exchange 1 and board 7",
         "ticks 10 0.05 100",
         [p](Words words) {
             const QStringList parts = words.split(' ');
             p->host->setSteps(parts[0].toLongLong(),
                               {decimal(QStringView(parts[1])), parts[2].toInt()});
         }},
        {"steps", "price quantity", "gives the controls the steps of the security that is chosen",
         "steps price quantity",
         [p](Words words) {
             auto *const steps = new SecuritySteps(&p->window);
             steps->addPrice(as<NumberEditor>(p->control(first(words))));
             steps->addQuantity(as<NumberEditor>(p->control(rest(words))));
             p->hub()->connectAll(steps);
         }},
        {"announce", "", "announces new sessions, which has securities read again", "announce",
         [p](Words) { Q_EMIT p->host->decoder()->aNewSessions(); }},
        {"lack", "table", "takes a table from the host", "lack stocks",
         [p](Words table) { p->host->removeTable(table); }},
        {"away", "", "takes the host away", "away",
         [](Words) {
             ICore::install(nullptr);
             StrictTest::expectWarning("ICore::table: no host is installed: lists stay empty");
         }},
    };
}

} // namespace

StorySteps storySteps(StoryPlayer *player)
{
    return handSteps(player) + programSteps(player) + boxSteps(player) + hostSteps(player);
}
