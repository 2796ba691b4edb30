// SPDX-License-Identifier: BSD-3-Clause
#include "storyform.h"

#include <formkit/boardselectorbox.h>
#include <formkit/checkbox.h>
#include <formkit/choicebox.h>
#include <formkit/dateedit.h>
#include <formkit/formselector.h>
#include <formkit/groupbox.h>
#include <formkit/label.h>
#include <formkit/lineedit.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/pushbuttonsend.h>
#include <formkit/quantityeditor.h>
#include <formkit/radiobutton.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/securitysteps.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>
#include <formkit/summator.h>

#include <QAbstractProxyModel>
#include <QCompleter>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace {

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

} // namespace

StoryFile::StoryFile(const QString &name)
{
    for (const DataRow &row : rowsOf("stories/" + name + ".txt")) {
        const QString &about = row.first();
        if (about == "make")
            controls << row.mid(1);
        else if (about == "labels")
            for (const QString &pair : row.mid(1))
                labels[pair.section('=', 0, 0)] = pair.section('=', 1);
        else if (about == "hears")
            reports[row[1].toLatin1()] = row[2];
        else if (about == "sessions")
            sessions << SessionId{row[1].toInt(), row[2].toInt()};
        else if (about == "row" || about == "later") {
            QVariantList cells;
            for (const QString &cell : row.mid(3))
                cells << (cell.isEmpty() ? QVariant() : QVariant(cell));
            rows[row[1]][row[2]] = cells;
            if (about == "row")
                offeredAtStart[row[1]] << cells;
        } else if (about.at(0).isUpper()) {
            stories << row;
        }
    }
}

StoryForm::StoryForm(TestHost *testHost, const QString &fileName) : file(fileName), host(testHost)
{
    for (auto table = file.offeredAtStart.cbegin(); table != file.offeredAtStart.cend(); ++table)
        host->table(table.key()).setRows(*table);
    host->setSessions(file.sessions);

    connect(hub(), &Properties::hasChanged, this, [this] { ++turns; });
    connect(hub(), &Properties::changedStateChanged, this,
            [this](bool isChanged) { states += QString(" %1").arg(isChanged); });
    auto *const layout = new QVBoxLayout(&window);
    for (const QStringList &words : file.controls)
        make(words);
    layout->addWidget(m_next = new QLineEdit);
    const auto isCaption = [](const QStringList &words) { return words[0] == "Label"; };
    if (std::count_if(file.controls.begin(), file.controls.end(), isCaption) + 1 <
        file.controls.size())
        m_hub->connectAll(&window);
    validation.setupPropWidgets(*m_hub, &window);
    if (auto *const selector = window.findChild<FormSelector *>())
        selector->setHub(hub());
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    use(file.controls.first()[1]);
    log.clear();
}

QObject *StoryForm::create(const QString &className, QWidget *form)
{
    return createOneOf<LineEdit, ChoiceBox, CheckBox, RadioButton, PushButtonSend, Label,
                       NumberEditor, QuantityEditor, DateEdit, ComboBox, StockSelectorBox,
                       StockSelectorBox_Code, BoardSelectorBox, SecuritySelectorBox,
                       PartnerSelectorBox, Summator, FormSelector, GroupBox, SecuritySteps,
                       CountingControl, QWidget>(className, form);
}

void StoryForm::make(const QStringList &words)
{
    QObject *const made = create(words[0], m_place);
    QVERIFY2(made, qPrintable("no class " + words[0]));
    made->setObjectName(words[1]);
    for (const QString &pair : words.mid(2))
        made->setProperty(pair.section('=', 0, 0).toLatin1(), pair.section('=', 1));
    for (const QByteArray &name : file.reports.keys()) {
        if (made->metaObject()->indexOfSignal(name + "(QString)") >= 0)
            connect(made, '2' + name + "(QString)", this, SLOT(note(QString)));
        else if (made->metaObject()->indexOfSignal(name + "()") >= 0)
            connect(made, '2' + name + "()", this, SLOT(note()));
    }
    auto *const widget = qobject_cast<QWidget *>(made);
    if (words[0] == "QWidget") {
        m_place = widget;
        new QVBoxLayout(widget);
        window.findChild<FormSelector *>()->addPage(widget);
    } else if (widget) {
        m_place->layout()->addWidget(widget);
        widget->show();
    }
    if (auto *const label = qobject_cast<QLabel *>(made))
        label->setBuddy(control(made->property("of").toString()));
}

void StoryForm::use(const QString &name)
{
    current = control(name);
    QVERIFY2(current, qPrintable("no control " + name));
    current->setFocus();
}

// The offscreen platform may have taken a closed list for the active window.
void StoryForm::leave()
{
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    m_next->setFocus();
}

QString StoryForm::focus() const
{
    return box() && box()->view()->isVisible() ? "list" : m_next->hasFocus() ? "next" : "box";
}

void StoryForm::note(const QString &text)
{
    const QByteArray signal = sender()->metaObject()->method(senderSignalIndex()).name();
    log += ' ' + file.reports[signal] + '=' + text;
}

bool StoryForm::turnWheel(int angle) const
{
    const bool isOpen = box() && box()->view()->isVisible();
    QWidget *const target = isOpen ? box()->view()->viewport() : current.data();
    QWheelEvent event({4, 4}, target->mapToGlobal(QPoint(4, 4)), {}, {0, angle}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(target, &event);
    return event.isAccepted();
}

QLineEdit *StoryForm::edit() const
{
    auto *const combo = qobject_cast<QComboBox *>(current.data());
    return combo ? combo->lineEdit() : qobject_cast<QLineEdit *>(current.data());
}

QAbstractItemView *StoryForm::completions() const
{
    return box()->completer()->popup();
}

QAbstractItemView *StoryForm::list() const
{
    return box()->view()->isVisible() ? box()->view() : completions();
}

QAbstractItemModel *StoryForm::source() const
{
    QAbstractItemModel *const model = box() ? box()->model() : nullptr;
    auto *const proxy = qobject_cast<QAbstractProxyModel *>(model);
    return proxy ? proxy->sourceModel() : model;
}

int StoryForm::roleOfId(const ComboBox *box)
{
    return qobject_cast<const SecuritySelectorBox *>(box) ? SecuritySelectorModel::SecurityIdRole
           : qobject_cast<const StockSelectorBox_Code *>(box) ? int(Qt::UserRole)
                                                              : Qt::UserRole + 1;
}

QObject *StoryForm::owner(QString *path) const
{
    const QStringList parts = path->split('.');
    *path = parts.last();
    if (parts.first() == "edit")
        return edit();
    if (parts.first() == "form")
        return const_cast<QWidget *>(&window);
    if (parts.size() > 1)
        return find<QObject>(parts.first());
    for (QObject *const object : QObjectList{current, edit()}) {
        if (object && object->metaObject()->indexOfProperty(path->toLatin1()) >= 0)
            return object;
    }
    return nullptr;
}

QString StoryForm::property(const QString &path) const
{
    QString name = path;
    const QObject *const object = owner(&name);
    const QVariant value = object ? object->property(name.toLatin1()) : "none has " + path;
    if (value.userType() == QMetaType::QIcon)
        return value.value<QIcon>().isNull() ? "none" : "shown";
    const bool isEnum = QMetaType(value.userType()).flags() & QMetaType::IsEnumeration;
    return isEnum ? QString::number(value.toInt()) : value.toString();
}
