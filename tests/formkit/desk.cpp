#include "desk.h"

#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/checkbox.h>
#include <formkit/dateedit.h>
#include <formkit/decimalvalidator.h>
#include <formkit/formselector.h>
#include <formkit/label.h>
#include <formkit/lineedit.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/pushbuttonsend.h>
#include <formkit/quantityeditor.h>
#include <formkit/radiobutton.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>
#include <formkit/stockselectormodel.h>
#include <formkit/summator.h>

#include <support/stricttest.h>

#include <QAbstractItemModelTester>
#include <QAbstractProxyModel>
#include <QAccessible>
#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QCompleter>
#include <QMetaProperty>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace {

using Words = const QString &;

QString word(Words words, int place)
{
    return words.section(' ', place, place);
}

template <typename T> T *as(QObject *object)
{
    return qobject_cast<T *>(object);
}

template <typename... Controls> QObject *createOneOf(const QString &name, QWidget *form)
{
    QObject *made = nullptr;
    const auto tryOne = [&](const QMetaObject &meta, auto make) {
        if (name == meta.className())
            made = make();
    };
    (tryOne(Controls::staticMetaObject, [form] { return new Controls(form); }), ...);
    return made;
}

struct Iconless : QProxyStyle
{
    QIcon standardIcon(StandardPixmap, const QStyleOption *, const QWidget *) const override
    {
        return {};
    }
};

template <typename Box, typename Model> void changeModel(QWidget *control, const QString &how)
{
    if (auto *const box = qobject_cast<Box *>(control))
        box->setSourceModel(how == "none" ? nullptr : new Model);
}

template <typename... Listed> void populateAny(QObject *object)
{
    const auto populate = [](auto *listed) { listed ? listed->populate() : void(); };
    (populate(qobject_cast<Listed *>(object)), ...);
}

QPoint placeOf(const QAbstractItemView *list, int row)
{
    return list->visualRect(list->model()->index(row, 0)).center();
}

// The row that a list shows lit where a user can see it; -1 for none.
int litRow(const QAbstractItemView *list)
{
    const int row = list->currentIndex().row();
    const QRect place = list->visualRect(list->currentIndex());
    const bool isSeen = list->viewport()->rect().contains(place) &&
                        list->indexAt(place.center()).row() == row &&
                        list->selectionModel()->isRowSelected(row, {});
    return isSeen ? row : -1;
}

} // namespace

void Probe::setValue(const QString &text)
{
    ++m_writes;
    const QString letters = property("letters").toString();
    value = letters == "upper" ? text.toUpper() : letters == "lower" ? text.toLower() : text;
    if (value != text)
        emit changed();
    else if (const auto deed = onWrite)
        deed();
}

void Probe::enter(const QString &text)
{
    value = text;
    emit changed();
}

QString Probe::state()
{
    const int writes = std::exchange(m_writes, 0);
    return value + QString(" %1 ").arg(writes) + listeners();
}

int Desk::roleOfId(const ComboBox *box)
{
    return qobject_cast<const SecuritySelectorBox *>(box) ? SecuritySelectorModel::SecurityIdRole
           : qobject_cast<const StockSelectorBox_Code *>(box) ? int(Qt::UserRole)
                                                              : Qt::UserRole + 1;
}

Desk::Desk(TestHost *host, const QString &story) : m_host(host)
{
    learnHandling();
    learnHubSteps();
    learnHostSteps();
    learnModelSteps();
    learnAnswers();
    build("stories/" + story + ".txt");
}

QList<DataRow> Desk::storiesOf(const QString &name)
{
    QList<DataRow> rows = rowsOf("stories/" + name + ".txt");
    while (!rows.isEmpty() && rows.first().size() > 1 && rows.first().first().at(0).isLower())
        rows.removeFirst();
    return rows;
}

QObject *Desk::create(const QString &className, QWidget *form)
{
    return createOneOf<LineEdit, CheckBox, RadioButton, PushButtonSend, Label, NumberEditor,
                       QuantityEditor, DateEdit, ComboBox, StockSelectorBox, StockSelectorBox_Code,
                       BoardSelectorBox, SecuritySelectorBox, PartnerSelectorBox, Summator,
                       FormSelector, Probe, QWidget>(className, form);
}

void Desk::build(const QString &file)
{
    QMap<QString, QVector<QVariantList>> offered;
    QVector<SessionId> sessions;
    QList<DataRow> controls;
    for (const DataRow &row : rowsOf(file)) {
        const QString about = row.first();
        if (about == "make")
            controls << row;
        if (about == "shows")
            m_shows = row.mid(1);
        if (about == "hears")
            m_reports[row[1].toLatin1()] = row[2];
        if (about == "sessions")
            sessions << SessionId{row[1].toInt(), row[2].toInt()};
        if (about != "row" && about != "later")
            continue;
        QVariantList cells;
        for (const QString &cell : row.mid(3))
            cells << (cell.isEmpty() ? QVariant() : QVariant(cell));
        m_known[row[1]][row[2]] = cells;
        if (about == "row")
            offered[row[1]] << cells;
    }
    for (auto table = offered.cbegin(); table != offered.cend(); ++table)
        m_host->table(table.key()).setRows(*table);
    m_host->setSessions(sessions);

    connect(m_hub.get(), &Properties::hasChanged, this, [this] { ++m_turns; });
    auto *const layout = new QVBoxLayout(&m_form);
    for (const DataRow &row : qAsConst(controls))
        make(row.mid(1));
    layout->addWidget(m_next = new QLineEdit);
    const auto isCaption = [](const DataRow &row) { return row[1] == "Label"; };
    if (std::count_if(controls.begin(), controls.end(), isCaption) + 1 < controls.size())
        m_hub->connectAll(&m_form);
    m_validation.setupPropWidgets(*m_hub, &m_form);
    if (auto *const selector = m_form.findChild<FormSelector *>())
        selector->setHub(m_hub.get());
    m_form.show();
    QVERIFY(QTest::qWaitForWindowActive(&m_form));
    act("at " + controls.first()[2]);
    m_log.clear();
}

void Desk::make(const QStringList &words)
{
    QObject *const made = create(words[0], m_place);
    QVERIFY2(made, qPrintable(words[0]));
    made->setObjectName(words[1]);
    for (const QString &pair : words.mid(2))
        made->setProperty(pair.section('=', 0, 0).toLatin1(), pair.section('=', 1));
    for (const QByteArray &name : m_reports.keys()) {
        if (made->metaObject()->indexOfSignal(name + "(QString)") >= 0)
            connect(made, '2' + name + "(QString)", this, SLOT(note(QString)));
    }
    auto *const widget = qobject_cast<QWidget *>(made);
    if (words[0] == "QWidget") {
        m_place = widget;
        new QVBoxLayout(widget);
        m_form.findChild<FormSelector *>()->addPage(widget);
    } else if (widget) {
        m_place->layout()->addWidget(widget);
        widget->show();
    }
    if (auto *const label = qobject_cast<QLabel *>(made))
        label->setBuddy(control(made->property("of").toString()));
}

void Desk::note(const QString &text)
{
    const QByteArray signal = sender()->metaObject()->method(senderSignalIndex()).name();
    m_log += ' ' + m_reports[signal] + '=' + text;
}

QLineEdit *Desk::edit() const
{
    auto *const combo = qobject_cast<QComboBox *>(m_control.data());
    return combo ? combo->lineEdit() : qobject_cast<QLineEdit *>(m_control.data());
}

// Where a user's key goes. QTest's keyClicks() knows Latin characters only.
void Desk::sendKey(int key, const QString &text) const
{
    QWidget *const popup = QApplication::activePopupWidget();
    QWidget *const view = popup && popup->focusWidget() ? popup->focusWidget() : popup;
    QWidget *const target = view && text.isEmpty() ? view : m_control.data();
    if (text.isEmpty() && !(key & Qt::KeyboardModifierMask)) {
        QTest::keyClick(target, Qt::Key(key));
    } else {
        QKeyEvent press(QEvent::KeyPress, int(key & ~Qt::KeyboardModifierMask),
                        Qt::KeyboardModifiers(key & Qt::KeyboardModifierMask), text);
        QApplication::sendEvent(target, &press);
    }
}

void Desk::learnHandling()
{
    m_steps["at"] = [this](Words name) {
        m_control = control(name);
        QVERIFY2(m_control, qPrintable(name));
        m_control->setFocus();
    };
    m_steps["set"] = [this](Words words) {
        QString name = word(words, 0);
        const QString value = words.section(' ', 1);
        QObject *const object = owner(&name);
        if (object)
            object->setProperty(name.toLatin1(), value);
        else
            QVERIFY2(QMetaObject::invokeMethod(m_control, name.toLatin1(), Q_ARG(QString, value)),
                     qPrintable(words));
    };
    m_steps["call"] = [this](Words slot) {
        QVERIFY(QMetaObject::invokeMethod(m_control, slot.toLatin1()));
    };
    m_steps["iconless"] = [this](Words) {
        auto *const style = new Iconless;
        style->setParent(m_control);
        m_control->setStyle(style);
    };
    m_steps["locale"] = [this](Words name) {
        qobject_cast<NumberEditor *>(m_control)->decimalValidator()->setLocale(QLocale(name));
    };
    m_steps["type"] = [this](Words text) {
        for (const QChar c : text)
            sendKey(0, c);
    };
    m_steps["press"] = [this](Words keys) {
        for (const QString &key : keys.split(' '))
            sendKey(QKeySequence(key)[0], {});
    };
    m_steps["paste"] = [this](Words text) {
        QApplication::clipboard()->setText(text);
        QMetaObject::invokeMethod(edit(), "paste");
    };
    m_steps["keypad"] = [this](Words) {
        constexpr quint32 MacKeypadDecimal = 0x41;
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 1, MacKeypadDecimal,
                        0, ".");
        QApplication::sendEvent(m_control, &press);
    };
    m_steps["compose"] = [this](Words text) {
        QInputMethodEvent event;
        event.setCommitString(text);
        QApplication::sendEvent(edit(), &event);
    };
    // Composes a text in place of as many characters in front of the caret: recompose 3 abc
    m_steps["recompose"] = [this](Words words) {
        const int count = word(words, 0).toInt();
        QInputMethodEvent event;
        event.setCommitString(words.section(' ', 1), -count, count);
        QApplication::sendEvent(edit(), &event);
    };
    m_steps["wheel"] = [this](Words angle) { turnWheel(angle.toInt()); };
    // QComboBox takes a click that comes with the one that opened the list for a part of it.
    m_steps["wait"] = [](Words) { QTest::qWait(QApplication::doubleClickInterval() + 50); };
    m_steps["point"] = [this](Words row) {
        QTest::mouseMove(list()->viewport(), placeOf(list(), row.toInt()));
    };
    m_steps["click"] = [this](Words row) {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, placeOf(list(), row.toInt()));
    };
    m_steps["edit"] = [this](Words text) { edit()->setText(text); };
    m_steps["caret"] = [this](Words place) { edit()->setCursorPosition(place.toInt()); };
    m_steps["row"] = [this](Words row) { box()->setCurrentIndex(row.toInt()); };
    m_steps["select"] = [this](Words words) {
        edit()->setSelection(word(words, 0).toInt(), word(words, 1).toInt());
    };
    // The offscreen platform may have taken a closed list for the active window.
    m_steps["leave"] = [this](Words) {
        m_form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&m_form));
        m_next->setFocus();
    };
    m_steps["back"] = [this](Words) { m_control->setFocus(); };
    m_steps["turn"] = [](Words) { QCoreApplication::processEvents(); };
    // What a form author may put in the place of the type-ahead.
    m_steps["completer"] = [this](Words how) {
        if (how == "inline")
            box()->completer()->setCompletionMode(QCompleter::InlineCompletion);
        else
            box()->setCompleter(how == "none" ? nullptr : new QCompleter(box()->model(), box()));
    };
    m_steps["lineEdit"] = [this](Words) { box()->setLineEdit(new QLineEdit); };
    // All that a hand and a program may do to any selector.
    m_steps["fiddle"] = [this](Words) {
        const QMetaProperty key = m_control->metaObject()->userProperty();
        key.write(m_control, "1");
        for (const char *step : {"row 1", "type x", "press Return", "press F4", "press Down",
                                 "press Escape", "populate", "leave", "turn", "back"})
            act(step);
        key.write(m_control, "1");
    };
}

// True when somebody took the event.
bool Desk::turnWheel(int angle) const
{
    const bool isOpen = box() && box()->view()->isVisible();
    QWidget *const target = isOpen ? box()->view()->viewport() : m_control.data();
    QWheelEvent wheel({4, 4}, target->mapToGlobal({4, 4}), {}, {0, angle}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(target, &wheel);
    return wheel.isAccepted();
}

void Desk::learnHubSteps()
{
    m_steps["hub"] = [this](Words words) {
        m_hub->setValue(word(words, 0), words.section(' ', 1));
    };
    m_steps["hubs"] = [this](Words pairs) {
        Values values;
        for (const QString &pair : pairs.split(' '))
            values.insert(pair.section('=', 0, 0), pair.section('=', 1));
        m_hub->setValues(values);
    };
    m_steps["again"] = [this](Words) { m_hub->showAgain(); };
    m_steps["invalid"] = [this](Words names) {
        m_validation.set(names.split(' ', Qt::SkipEmptyParts));
    };
    m_steps["make"] = [this](Words words) { make(words.split(' ')); };
    m_steps["delete"] = [this](Words name) {
        if (name == "hub")
            m_hub.reset();
        else
            delete (name.isEmpty() ? m_control.data() : m_form.findChild<QObject *>(name));
    };
    // Another of the kind in use, alone.
    m_steps["another"] = [this](Words name) {
        make({m_control->metaObject()->className(), name});
        act("at " + name);
    };
    // A control with all its names, or a property of it under a name: bind price Value=Price
    m_steps["bind"] = [this](Words words) {
        const QStringList pair = word(words, 1).split('=');
        QWidget *const object = control(word(words, 0));
        QVERIFY(pair.size() < 2 ? m_hub->connectAll(object)
                                : m_hub->connectOne(pair[1], object, pair[0].toLatin1()));
    };
    m_steps["unbind"] = [this](Words words) {
        const QStringList pair = word(words, 1).split('=');
        QWidget *const object = control(word(words, 0));
        QVERIFY(pair.size() < 2 ? m_hub->disconnectAll(object)
                                : m_hub->disconnectOne(pair[1], object, pair[0].toLatin1()));
    };
    m_steps["enter"] = [this](Words words) {
        m_form.findChild<Probe *>(word(words, 0))->enter(words.section(' ', 1));
    };
    // What a probe does at each write, steps that are parted by " & ".
    m_steps["upon"] = [this](Words words) {
        const QStringList steps = words.section(' ', 1).split(" & ", Qt::SkipEmptyParts);
        m_form.findChild<Probe *>(word(words, 0))->onWrite = [this, steps] {
            for (const QString &step : steps)
                act(step);
        };
    };
    m_steps["warns"] = [](Words pattern) { StrictTest::expectWarning(pattern); };
}

void Desk::learnHostSteps()
{
    m_steps["offer"] = [this](Words words) {
        QVector<QVariantList> rows;
        for (const QString &nick : words.split(' ').mid(1)) {
            QVERIFY2(m_known[word(words, 0)].contains(nick), qPrintable(words));
            rows << m_known[word(words, 0)][nick];
        }
        m_host->table(word(words, 0)).setRows(rows);
    };
    m_steps["away"] = [](Words) {
        ICore::install(nullptr);
        StrictTest::expectWarning("ICore::table: no host is installed: lists stay empty");
    };
    m_steps["lack"] = [this](Words table) { m_host->removeTable(table); };
    // Securities of ids, codes and names that count up from 1.
    m_steps["many"] = [this](Words count) {
        QVector<QVariantList> rows;
        for (int i = 1; i <= count.toInt(); ++i)
            rows << QVariantList{i, 1, 7, QString("C%1").arg(i), QString("N%1").arg(i, 6), {}, 20};
        m_host->table("securities").setRows(rows);
    };
    // One whose name is longer than a line edit holds.
    m_steps["long"] = [this](Words) {
        m_host->table("securities").setRows({{10, 1, 7, "GA", QString(40000, 'x'), {}, 20}});
    };
    m_steps["sessions"] = [this](Words words) {
        m_host->setSessions({{word(words, 0).toInt(), word(words, 1).toInt()}});
    };
    m_steps["announce"] = [this](Words) { emit m_host->decoder()->aNewSessions(); };
    m_steps["populate"] = [this](Words name) {
        const QPointer<QWidget> before = m_control;
        m_control = name.isEmpty() ? before.data() : control(name);
        populateAny<StockSelectorBox_Code, PartnerSelectorBox>(m_control);
        populateAny<StockSelectorModel, BoardSelectorModel, SecuritySelectorModel>(source());
        m_control = before;
    };
}

void Desk::learnModelSteps()
{
    m_steps["items"] = [this](Words texts) { box()->addItems(texts.split(' ')); };
    m_steps["model"] = [this](Words how) {
        changeModel<StockSelectorBox, StockSelectorModel>(m_control, how);
        changeModel<BoardSelectorBox, BoardSelectorModel>(m_control, how);
        changeModel<SecuritySelectorBox, SecuritySelectorModel>(m_control, how);
    };
    m_steps["kill"] = [this](Words) { delete source(); };
    // In the place of the list, or behind it.
    m_steps["foreign"] = [this](Words what) {
        auto *const combo = qobject_cast<QComboBox *>(m_control);
        auto *const foreign = new QStandardItemModel(2, 1, combo);
        if (what == "list")
            combo->setModel(foreign);
        else
            qobject_cast<QAbstractProxyModel *>(combo->model())->setSourceModel(foreign);
    };
    m_steps["loseList"] = [this](Words) { delete qobject_cast<QComboBox *>(m_control)->model(); };
    m_steps["display"] = [this](Words role) {
        as<SecuritySelectorModel>(source())->setDefaultDataRole(
            SecuritySelectorModel::ItemDataRole(Qt::UserRole + role.toInt()));
    };
    m_steps["limit"] = [this](Words boards) {
        bool isList = false;
        as<BoardSelectorModel>(source())->setFilterBoards(boardListFromString(boards, &isList));
    };
    m_steps["positions"] = [this](Words) {
        as<BoardSelectorModel>(source())->setForPositions(true);
    };
    m_steps["on"] = [this](Words flags) {
        as<BoardSelectorBox>(m_control)->setBoardFlagsOnFilter(flags.toInt());
    };
    m_steps["off"] = [this](Words flags) {
        as<BoardSelectorBox>(m_control)->setBoardFlagsOffFilter(flags.toInt());
    };
    m_steps["sectype"] = [this](Words type) {
        as<BoardSelectorBox>(m_control)->setSecTypeFilter(type.at(0));
    };
}

void Desk::learnAnswers()
{
    m_answers["reports"] = [this](Words) { return m_log.mid(1); };
    m_answers["shows"] = [this](Words) {
        QStringList parts;
        for (const QString &part : m_shows)
            parts << (part == "text"    ? edit()->text()
                      : part == "caret" ? QString::number(edit()->cursorPosition())
                      : part == "row"   ? property("currentIndex")
                                        : property(part));
        return parts.join('|');
    };
    // The text with '|' at the caret.
    m_answers["text"] = [this](Words) {
        return edit()->text().insert(edit()->cursorPosition(), '|');
    };
    m_answers["lit"] = [this](Words) {
        const bool isOpen = box()->view()->isVisible();
        const QString focus = isOpen ? "list" : m_next->hasFocus() ? "next" : "box";
        const QString count = QString::number(completions()->model()->rowCount());
        const QString completion = QString::number(litRow(completions())) + " of " + count;
        return (isOpen ? QString::number(litRow(box()->view())) : "-") + '|' +
               (completions()->isVisible() ? completion : "-") + '|' + focus;
    };
    m_answers["calendar"] = [](Words) {
        auto *const open = qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
        return open ? open->selectedDate().toString(Qt::ISODate) : "closed";
    };
    m_answers["spoken"] = [this](Words) {
        return QAccessible::queryAccessibleInterface(edit())->text(QAccessible::Name);
    };
    m_answers["lists"] = [this](Words) { return column(box()->model(), Qt::DisplayRole); };
    m_answers["ids"] = [this](Words) { return column(box()->model(), roleOfId(box())); };
    m_answers["source"] = [this](Words) { return column(source(), roleOfId(box())); };
    // What a row has under the roles from the first on, with the types: 2 int=1 QString=XNAS
    m_answers["wheel"] = [this](Words angle) {
        return word(angle, 0) + (turnWheel(word(angle, 0).toInt()) ? " taken" : " ignored");
    };
    m_answers["roles"] = [this](Words about) {
        const QModelIndex index = box()->model()->index(word(about, 0).toInt(), 0);
        QString all = word(about, 0);
        for (int role = Qt::UserRole + 1; index.data(role).isValid(); ++role)
            all += QString(" %1=").arg(index.data(role).typeName()) + index.data(role).toString();
        return all;
    };
    // What the validator says to a text: ab=1 ABC
    m_answers["judges"] = [this](Words about) {
        QString input = about.section('=', 0, 0);
        int pos = 0;
        QString verdict = input + '=';
        verdict += QString::number(box()->comboBoxValidator()->validate(input, pos));
        box()->comboBoxValidator()->fixup(input);
        return verdict + ' ' + input;
    };
    // What the open list draws of each partner, code and name: one letter for what looks the same.
    m_answers["drawn"] = [this](Words) {
        const QImage all = list()->viewport()->grab().toImage();
        const int width =
            list()->fontMetrics().horizontalAdvance('0') * PartnerSelectorBox::CodeColumnWidth;
        QList<QImage> seen;
        QString letters;
        for (int i = 0; i < 2 * box()->count(); ++i) {
            QRect part = list()->visualRect(box()->model()->index(i / 2, box()->modelColumn()));
            i % 2 ? part.setLeft(width) : part.setWidth(width);
            if (!seen.contains(all.copy(part)))
                seen << all.copy(part);
            letters += QChar('A' + seen.indexOf(all.copy(part)));
        }
        return letters;
    };
    m_answers["popup"] = [](Words) { return QApplication::activePopupWidget() ? "open" : ""; };
    m_answers["unshown"] = [this](Words) { return m_hub->unshown().join(' '); };
    m_answers["turns"] = [this](Words) {
        QCoreApplication::processEvents();
        return QString::number(std::exchange(m_turns, 0));
    };
    // What the hub holds under the names that are asked for (StockId=1|StockCode=MX), and the
    // states of probes (first=1 0 1).
    const auto learnEach = [this](const QString &verb, auto find) {
        m_answers[verb] = [find](Words about) {
            QStringList all;
            for (const QString &pair : about.split('|')) {
                const QString name = pair.section('=', 0, 0);
                all << name + '=' + find(name);
            }
            return all.join('|');
        };
    };
    learnEach("hub", [this](Words name) { return held(name); });
    learnEach("listeners",
              [this](Words name) { return m_form.findChild<Probe *>(name)->listeners(); });
    learnEach("probes", [this](Words name) { return m_form.findChild<Probe *>(name)->state(); });
}

void Desk::play(const DataRow &story)
{
    const QList<QAbstractItemModel *> models{box() ? box()->model() : nullptr, source()};
    for (QAbstractItemModel *const model : models) {
        if (model)
            new QAbstractItemModelTester(
                model, QAbstractItemModelTester::FailureReportingMode::QtTest, model);
    }
    for (int i = 1; i < story.size() && !QTest::currentTestFailed(); ++i) {
        const QString verb = word(story.at(i), 0);
        const QString told = story.at(i).section(' ', 1);
        const QString words = told == "-" ? QString() : told;
        const QString place = QString("%1:%2: ").arg(story.file).arg(story.line + i);
        if (verb == "given" || verb == "when") {
            for (const QString &step : words.split("; "))
                act(step);
            if (verb == "given") {
                act("turn");
                m_log.clear();
            }
        } else {
            const QString found = answer(verb, words);
            QVERIFY2(found == words, qPrintable(place + verb + " \"" + found + '"'));
            if (verb == "reports")
                m_log.clear();
        }
    }
    const QString place = QString("%1:%2: ").arg(story.file).arg(story.line);
    QVERIFY2(m_log.isEmpty(), qPrintable(place + "also reports" + m_log));
    // A selector answers for the row that it shows.
    const bool isChoice = box() && box()->itemText(box()->currentIndex()) == box()->currentText();
    const QVariant id = isChoice ? box()->currentData(roleOfId(box())) : QVariant();
    if (id.isValid() && !qobject_cast<StockSelectorBox_Code *>(m_control))
        QCOMPARE(box()->metaObject()->userProperty().read(box()).toString(),
                 id.toString().section(',', -1));
}

void Desk::act(const QString &step)
{
    QVERIFY2(m_steps.contains(word(step, 0)), qPrintable(step));
    m_steps[word(step, 0)](step.section(' ', 1));
}

QString Desk::answer(const QString &verb, const QString &about) const
{
    return m_answers.contains(verb) ? m_answers[verb](about) : property(verb);
}

// The object that has a property: a named control, or its line edit ("edit"), or the one in use and
// its line edit.
QObject *Desk::owner(QString *property) const
{
    const QStringList path = property->split('.');
    *property = path.last();
    const QByteArray name = property->toLatin1();
    if (path.first() == "edit")
        return edit();
    if (path.first() == "form")
        return const_cast<QWidget *>(&m_form);
    if (path.size() > 1)
        return m_form.findChild<QObject *>(path.first());
    for (QObject *const object : QObjectList{m_control, edit()}) {
        if (object && object->metaObject()->indexOfProperty(name) >= 0)
            return object;
    }
    return nullptr;
}

QString Desk::property(const QString &path) const
{
    QString name = path;
    const QObject *const object = owner(&name);
    const QVariant value = object ? object->property(name.toLatin1()) : "none has " + path;
    if (value.userType() == QMetaType::QIcon)
        return value.value<QIcon>().isNull() ? "none" : "shown";
    return value.toString();
}

// The list that is open, or the completions.
QAbstractItemView *Desk::list() const
{
    return box()->view()->isVisible() ? box()->view() : completions();
}

QAbstractItemView *Desk::completions() const
{
    return box()->completer()->popup();
}

QAbstractItemModel *Desk::source() const
{
    QAbstractItemModel *const model = box() ? box()->model() : nullptr;
    auto *const proxy = qobject_cast<QAbstractProxyModel *>(model);
    return proxy ? proxy->sourceModel() : model;
}

QString Desk::column(const QAbstractItemModel *model, int role) const
{
    const bool isPartner = qobject_cast<PartnerSelectorBox *>(m_control);
    // What tells partners apart is their name.
    const int column = role == Qt::DisplayRole ? box()->modelColumn() : isPartner ? 2 : 0;
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row)
        texts << model->index(row, column).data(isPartner ? int(Qt::DisplayRole) : role).toString();
    return texts.join(' ');
}
