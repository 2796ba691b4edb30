// SPDX-License-Identifier: BSD-3-Clause
#include "storyanswers.h"

#include <formkit/partnerselectorbox.h>

#include <QAccessible>
#include <QApplication>
#include <QCalendarWidget>

namespace {

// The labels of an expectation, "id=1 name=Gazelle rail", with the values that they have now.
QString labelled(const QString &expectation,
                 const std::function<QString(const QString &label)> &valueOf)
{
    static const QRegularExpression Label("(?:^| )([A-Za-z][\\w.]*)=");
    QStringList all;
    for (auto match = Label.globalMatch(expectation); match.hasNext();) {
        const QString label = match.next().captured(1);
        all << label + '=' + valueOf(label);
    }
    return all.join(' ');
}

CountingControl *counting(const StoryPlayer *player, const QString &label)
{
    return player->find<CountingControl>(label.section('.', 0, 0));
}

// The row that a list shows lit where a user can see it.
QString litRow(const QAbstractItemView *list)
{
    const int row = list->currentIndex().row();
    const QRect place = list->visualRect(list->currentIndex());
    const bool isSeen = list->viewport()->rect().contains(place) &&
                        list->indexAt(place.center()).row() == row &&
                        list->selectionModel()->isRowSelected(row, {});
    return isSeen ? QString::number(row) : "none";
}

QString litCompletion(const QAbstractItemView *list)
{
    return litRow(list) + QString(" of %1").arg(list->model()->rowCount());
}

QString column(const StoryPlayer *player, const QAbstractItemModel *model, int role)
{
    const bool isPartner = qobject_cast<PartnerSelectorBox *>(player->current);
    // What tells partners apart is their name.
    const int place = role == Qt::DisplayRole ? player->box()->modelColumn() : isPartner ? 2 : 0;
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row)
        texts << model->index(row, place).data(isPartner ? int(Qt::DisplayRole) : role).toString();
    return texts.join(' ');
}

QString roles(const ComboBox *box, const QString &row)
{
    const QModelIndex index = box->model()->index(row.toInt(), 0);
    QString all = row;
    for (int role = Qt::UserRole + 1; index.data(role).isValid(); ++role)
        all += QString(" %1=").arg(index.data(role).typeName()) + index.data(role).toString();
    return all;
}

QString judgement(const ComboBox *box, QString input)
{
    int pos = 0;
    QString verdict = input + '=';
    verdict += QString::number(box->comboBoxValidator()->validate(input, pos));
    box->comboBoxValidator()->fixup(input);
    return verdict + ' ' + input;
}

QString drawnLetters(const StoryPlayer *player)
{
    const QAbstractItemView *const list = player->list();
    const ComboBox *const box = player->box();
    QImage all(list->viewport()->size(), QImage::Format_RGB32); // at any scale of the screen
    list->viewport()->render(&all);
    const int width =
        list->fontMetrics().horizontalAdvance('0') * PartnerSelectorBox::CodeColumnWidth;
    QList<QImage> seen;
    QString letters;
    for (int i = 0; i < 2 * box->count(); ++i) {
        QRect part = list->visualRect(box->model()->index(i / 2, box->modelColumn()));
        i % 2 ? part.setLeft(width) : part.setWidth(width);
        if (!seen.contains(all.copy(part)))
            seen << all.copy(part);
        letters += QChar('A' + int(seen.indexOf(all.copy(part))));
    }
    return letters;
}

QString openCalendar()
{
    auto *const open = qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
    return open ? open->selectedDate().toString(Qt::ISODate) : "closed";
}

} // namespace

StoryAnswers storyVerbs(StoryPlayer *p)
{
    using Words = const QString &;
    return {
        {"shows", "label=value ...", "labels of the file and of the table below",
         "shows text=Xetra row=3 price.Value=1.5",
         [p](Words expected) {
             return labelled(expected, [p](Words label) { return p->answer(label); });
         }},
        {"judges", "text=verdict fixed",
         "the box's validator on a text (0 invalid, 1 intermediate, 2 acceptable), and its fixup",
         "judges ab=1 ABC",
         [p](Words expected) { return judgement(p->box(), expected.section('=', 0, 0)); }},
        {"roles", "row type=value ...", "a row's data from `Qt::UserRole + 1` on, with types",
         "roles 2 int=1 QString=XNAS",
         [p](Words expected) { return roles(p->box(), expected.section(' ', 0, 0)); }},
    };
}

StoryAnswers storyLabels(StoryPlayer *p)
{
    using Words = const QString &;
    return {
        {"text", "", "the text of the control in use", "text=Xetra",
         [p](Words) { return p->edit()->text(); }},
        {"caret", "", "the place of its caret", "caret=5",
         [p](Words) { return QString::number(p->edit()->cursorPosition()); }},
        {"edited", "", "its text with a bar at the caret", "edited=1,2|00",
         [p](Words) { return p->edit()->text().insert(p->edit()->cursorPosition(), '|'); }},
        {"row", "", "the chosen row; -1 for none", "row=3",
         [p](Words) { return p->property("currentIndex"); }},
        {"tip", "", "its tool tip", "tip=Not in the list",
         [p](Words) { return p->property("edit.toolTip"); }},
        {"list", "", "the row that is lit in the open list: a number, none or closed", "list=3",
         [p](Words) {
             const QAbstractItemView *const view = p->box()->view();
             return view->isVisible() ? litRow(view) : "closed";
         }},
        {"completions", "", "the same of the completions, and of how many", "completions=1 of 4",
         [p](Words) {
             const QAbstractItemView *const view = p->completions();
             return view->isVisible() ? litCompletion(view) : "closed";
         }},
        {"focus", "", "the control that has the focus: list, box or next", "focus=box",
         [p](Words) { return p->focus(); }},
        {"popup", "", "whether anything is open", "popup=open",
         [](Words) { return QApplication::activePopupWidget() ? "open" : "closed"; }},
        {"calendar", "", "the day that is lit in the calendar, or closed", "calendar=2035-12-31",
         [](Words) { return openCalendar(); }},
        {"spoken", "", "its name as a screen reader says it", "spoken=Buy & sell",
         [p](Words) {
             return QAccessible::queryAccessibleInterface(p->edit())->text(QAccessible::Name);
         }},
        {"wheel", "", "what became of the last `wheel`: taken or ignored", "wheel=ignored",
         [p](Words) { return p->wheel; }},
        {"lists", "", "the rows of the box as they read", "lists=Nasdaq Xetra",
         [p](Words) { return column(p, p->box()->model(), Qt::DisplayRole); }},
        {"ids", "", "the ids of these rows", "ids=1 2",
         [p](Words) { return column(p, p->box()->model(), p->roleOfId(p->box())); }},
        {"source", "", "the ids of all rows, in the order of the box's model", "source=2 1 3",
         [p](Words) { return column(p, p->source(), p->roleOfId(p->box())); }},
        {"drawn", "", "code and name of each listed partner: one letter for what looks the same",
         "drawn=ABAC", [p](Words) { return drawnLetters(p); }},
        {"unshown", "", "the hub's names whose values no control shows", "unshown=BoardId",
         [p](Words) { return p->hub()->unshown().join(' '); }},
        {"turns", "", "turns of the event loop with changes in the hub, since the last `turns`",
         "turns=1",
         [p](Words) {
             QCoreApplication::processEvents();
             return QString::number(std::exchange(p->turns, 0));
         }},
        {"hub.*", "", "what the hub holds under a name", "hub.Price=1.5",
         [p](Words label) { return p->held(label.section('.', 1)); }},
        {"*.writes", "", "how often the hub wrote to a CountingControl since last asked",
         "a.writes=1",
         [p](Words label) { return QString::number(counting(p, label)->takeWrites()); }},
        {"*.listeners", "", "how many listen to a CountingControl", "a.listeners=1",
         [p](Words label) { return QString::number(counting(p, label)->listeners()); }},
        {"*", "",
         "any other property: of the control in use or its line edit, or after its "
         "control's name",
         "Value=1 buy.checked=true", [p](Words label) { return p->property(label); }},
    };
}
