// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

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

using Player = StoryPlayer *;
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
    explicit Iconless(QWidget *owner) { setParent(owner); }
    QIcon standardIcon(StandardPixmap, const QStyleOption *, const QWidget *) const override
    {
        return {};
    }
};

void setProperty(Player p, Words words)
{
    QString name = first(words);
    QObject *const object = p->owner(&name);
    QVERIFY2(object, qPrintable("none has " + first(words)));
    object->setProperty(name.toLatin1(), rest(words));
}

void callSlot(Player p, Words words)
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

void paste(Player p, Words text)
{
    QApplication::clipboard()->setText(text);
    QMetaObject::invokeMethod(p->edit(), "paste");
}

void pressKeypadPoint(Player p, Words)
{
    constexpr quint32 MacKeypadDecimal = 0x41;
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 1, MacKeypadDecimal, 0,
                    ".");
    QApplication::sendEvent(p->current, &press);
}

// As a user opens the menu and chooses, by the beginning of the entry.
void chooseInMenu(Player p, Words entry)
{
    QWidget *const edit = p->edit();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {4, 4}, edit->mapToGlobal(QPoint(4, 4)));
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

void setCompleter(Player p, Words how)
{
    QComboBox *const box = p->box();
    if (how == "inline")
        box->completer()->setCompletionMode(QCompleter::InlineCompletion);
    else
        box->setCompleter(how == "none" ? nullptr : new QCompleter(box->model(), box));
}

void setLineEdit(Player p, Words how)
{
    auto *const edit = new QLineEdit;
    if (how == "completing")
        edit->setCompleter(new QCompleter(QStringList("own"), edit));
    p->box()->setLineEdit(edit);
}

void fiddle(Player p, Words)
{
    const QMetaProperty key = p->current->metaObject()->userProperty();
    key.write(p->current, "1");
    p->act("row 1; type x; press Return F4 Down Escape; populate; leave; turn; back");
    key.write(p->current, "1");
}

void insertForeignModel(Player p, Words what)
{
    auto *const box = as<QComboBox>(p->current);
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

void limit(Player p, Words words)
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

void waitForRows(Player p)
{
    for (const auto *model : p->window.findChildren<SecuritySelectorModel *>())
        QTRY_VERIFY(!model->isPopulating());
}

bool populateLater(Player p)
{
    auto *const model = as<SecuritySelectorModel>(p->source());
    if (!model || !p->populatesLater)
        return false;
    model->populateLater();
    waitForRows(p);
    return true;
}

void announce(Player p)
{
    auto *const model = as<SecuritySelectorModel>(p->source());
    if (model && p->populatesLater)
        model->updateSessionsFilter();
    if (!populateLater(p))
        Q_EMIT p->host->decoder()->aNewSessions();
    waitForRows(p);
}

void populate(Player p, Words name)
{
    const QPointer<QWidget> before = p->current;
    p->current = name.isEmpty() ? before.data() : p->control(name);
    populateAny<StockSelectorBox_Code, PartnerSelectorBox>(p->current);
    if (!populateLater(p))
        populateAny<StockSelectorModel, BoardSelectorModel, SecuritySelectorModel>(p->source());
    p->current = before;
}

void offer(Player p, Words words)
{
    const QMap<QString, QVariantList> known = p->file.rows[first(words)];
    QVector<QVariantList> offered;
    for (const QString &nickname : rest(words).split(' ', Qt::SkipEmptyParts)) {
        QVERIFY2(known.contains(nickname), qPrintable("no row " + nickname));
        offered << known[nickname];
    }
    p->host->table(first(words)).setRows(offered);
}

void offerMany(Player p, Words count)
{
    QVector<QVariantList> rows;
    for (int i = 1; i <= count.toInt(); ++i)
        rows << QVariantList{i, 1, 7, QString("C%1").arg(i), QString("N%1").arg(i, 6), {}, 20};
    p->host->table("securities").setRows(rows);
}

// Binds a whole control, or one of its properties under a name, or undoes it.
template <bool (Properties::*All)(QObject *),
          bool (Properties::*One)(const QString &, QObject *, const QByteArray &)>
void bind(Player p, Words words)
{
    const QStringList pair = rest(words).split('=');
    QWidget *const object = p->control(first(words));
    QVERIFY(pair.size() < 2 ? (p->hub()->*All)(object)
                            : (p->hub()->*One)(pair[1], object, pair[0].toLatin1()));
}

void setValues(Player p, Words pairs)
{
    Values values;
    for (const QString &pair : pairs.split(' '))
        values.insert(pair.section('=', 0, 0), pair.section('=', 1));
    p->hub()->setValues(values);
}

void destroy(Player p, Words name)
{
    if (name == "hub")
        p->destroyHub();
    else
        delete (name.isEmpty() ? p->current.data() : p->find<QObject>(name));
}

void upon(Player p, Words words)
{
    p->find<CountingControl>(first(words))->onWrite = [p, steps = rest(words)] {
        if (!steps.isEmpty())
            p->act(steps, " & ");
    };
}

void makeRules(Player p, Words names)
{
    p->rules = new FormRules(p->hub(), &p->window);
    if (names.isEmpty())
        return;
    const QString low = first(names);
    const QString high = rest(names);
    p->rules->add({low, high}, [low, high](const Values &values) {
        return values[low].toDouble() < values[high].toDouble() ? "" : "Below " + high;
    });
}

const StorySteps HandSteps = {
    {"at", [](Player p, Words name) { p->use(name); }},
    {"type", [](Player p, Words text) { keys::type(p->current, text); }},
    {"press", [](Player p, Words names) { keys::press(p->current, names); }},
    {"paste", paste},
    {"keypad", pressKeypadPoint},
    {"compose", [](Player p, Words text) { compose(p->edit(), text); }},
    {"recompose",
     [](Player p, Words words) { compose(p->edit(), rest(words), first(words).toInt()); }},
    {"caret", [](Player p, Words place) { p->edit()->setCursorPosition(place.toInt()); }},
    {"select",
     [](Player p, Words words) {
         p->edit()->setSelection(first(words).toInt(), rest(words).toInt());
     }},
    {"wheel",
     [](Player p, Words angle) { p->wheel = p->turnWheel(angle.toInt()) ? "taken" : "ignored"; }},
    {"point",
     [](Player p, Words row) { QTest::mouseMove(p->list()->viewport(), placeOf(p->list(), row)); }},
    {"click",
     [](Player p, Words row) {
         QTest::mouseClick(p->list()->viewport(), Qt::LeftButton, {}, placeOf(p->list(), row));
     }},
    {"tap",
     [](Player p, Words) {
         const bool hasFocus = p->current->hasFocus();
         p->current->setFocus(hasFocus ? Qt::OtherFocusReason : Qt::MouseFocusReason);
         QTest::mouseClick(p->current, Qt::LeftButton);
     }},
    {"menu", chooseInMenu},
    {"wait", [](Player, Words) { QTest::qWait(QApplication::doubleClickInterval() + 50); }},
    {"leave", [](Player p, Words) { p->leave(); }},
    {"back", [](Player p, Words) { p->current->setFocus(); }},
    {"fiddle", fiddle},
};

const StorySteps ProgramSteps = {
    {"set", setProperty},
    {"call", callSlot},
    {"edit", [](Player p, Words text) { p->edit()->setText(text); }},
    {"row", [](Player p, Words row) { p->box()->setCurrentIndex(row.toInt()); }},
    {"hub", [](Player p, Words words) { p->hub()->setValue(first(words), rest(words)); }},
    {"hubs", setValues},
    {"again", [](Player p, Words) { p->hub()->showAgain(); }},
    {"baseline", [](Player p, Words) { p->hub()->setBaseline(); }},
    {"revert",
     [](Player p, Words name) { name.isEmpty() ? p->hub()->revert() : p->hub()->revert(name); }},
    {"rules", makeRules},
    {"tie",
     [](Player p, Words words) {
         as<PushButtonSend>(p->control(first(words)))
             ->setRules(p->rules, rest(words) == "DisabledByErrors"
                                      ? PushButtonSend::DisabledByErrors
                                      : PushButtonSend::ChecksOnClick);
     }},
    {"dots", [](Player p, Words) { p->rules->setMarksChanges(true); }},
    {"invalid",
     [](Player p, Words names) { p->validation.set(names.split(' ', Qt::SkipEmptyParts)); }},
    {"make", [](Player p, Words words) { p->make(words.split(' ')); }},
    {"another",
     [](Player p, Words name) {
         p->make({p->current->metaObject()->className(), name});
         p->use(name);
     }},
    {"delete", destroy},
    {"bind", bind<&Properties::connectAll, &Properties::connectOne>},
    {"unbind", bind<&Properties::disconnectAll, &Properties::disconnectOne>},
    {"enter",
     [](Player p, Words words) { p->find<CountingControl>(first(words))->enter(rest(words)); }},
    {"upon", upon},
    {"warns", [](Player, Words pattern) { StrictTest::expectWarning(pattern); }},
    {"turn", [](Player, Words) { QCoreApplication::processEvents(); }},
};

const StorySteps BoxSteps = {
    {"locale",
     [](Player p, Words name) {
         as<NumberEditor>(p->current)->decimalValidator()->setLocale(QLocale(name));
     }},
    {"iconless", [](Player p, Words) { p->current->setStyle(new Iconless(p->current)); }},
    {"completer", setCompleter},
    {"lineEdit", setLineEdit},
    {"items", [](Player p, Words texts) { p->box()->addItems(texts.split(' ')); }},
    {"model",
     [](Player p, Words how) {
         changeModel<StockSelectorBox, StockSelectorModel>(p->current, how);
         changeModel<BoardSelectorBox, BoardSelectorModel>(p->current, how);
         changeModel<SecuritySelectorBox, SecuritySelectorModel>(p->current, how);
     }},
    {"kill", [](Player p, Words) { delete p->source(); }},
    {"foreign", insertForeignModel},
    {"loseList", [](Player p, Words) { delete as<QComboBox>(p->current)->model(); }},
    {"display",
     [](Player p, Words role) {
         using Role = SecuritySelectorModel::ItemDataRole;
         as<SecuritySelectorModel>(p->source())
             ->setDefaultDataRole(Role(Qt::UserRole + role.toInt()));
     }},
    {"limit", limit},
};

const StorySteps HostSteps = {
    {"offer", offer},
    {"many", offerMany},
    {"populate", populate},
    {"sessions",
     [](Player p, Words words) {
         p->host->setSessions({{first(words).toInt(), rest(words).toInt()}});
     }},
    {"ticks",
     [](Player p, Words words) {
         const QStringList parts = words.split(' ');
         p->host->setSteps(parts[0].toLongLong(),
                           {decimal(QStringView(parts[1])), parts[2].toInt()});
     }},
    {"steps",
     [](Player p, Words words) {
         auto *const steps = new SecuritySteps(&p->window);
         steps->addPrice(as<NumberEditor>(p->control(first(words))));
         steps->addQuantity(as<NumberEditor>(p->control(rest(words))));
         p->hub()->connectAll(steps);
     }},
    {"announce", [](Player p, Words) { announce(p); }},
    {"lack", [](Player p, Words table) { p->host->removeTable(table); }},
    {"away",
     [](Player, Words) {
         ICore::install(nullptr);
         StrictTest::expectWarning("ICore::table: no host is installed: lists stay empty");
     }},
};

} // namespace

StorySteps storySteps()
{
    StorySteps all = HandSteps;
    for (const StorySteps *more : {&ProgramSteps, &BoxSteps, &HostSteps})
        all.insert(*more);
    return all;
}
