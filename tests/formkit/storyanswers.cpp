// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include <formkit/partnerselectorbox.h>

#include <QAccessible>
#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>

namespace {

using Player = StoryPlayer *;
using Words = const QString &;

// The labels of an expectation, "id=1 name=Gazelle rail", with the values that they have now.
QString labelled(Player p, Words expectation)
{
    static const QRegularExpression Label("(?:^| )([A-Za-z][\\w.]*)=");
    QStringList all;
    for (auto match = Label.globalMatch(expectation); match.hasNext();) {
        const QString label = match.next().captured(1);
        all << label + '=' + p->answer(label);
    }
    return all.join(' ');
}

CountingControl *counting(Player p, Words label)
{
    return p->find<CountingControl>(label.section('.', 0, 0));
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

QString lightOf(const QAbstractItemView *list, const QString &count = {})
{
    return list->isVisible() ? litRow(list) + count : "closed";
}

QString column(Player player, const QAbstractItemModel *model, int role)
{
    const bool isPartner = qobject_cast<PartnerSelectorBox *>(player->current);
    // What tells partners apart is their name.
    const int place = role == Qt::DisplayRole ? player->box()->modelColumn() : isPartner ? 2 : 0;
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row)
        texts << model->index(row, place).data(isPartner ? int(Qt::DisplayRole) : role).toString();
    return texts.join(' ');
}

QString roles(Player p, Words expected)
{
    const int row = expected.section(' ', 0, 0).toInt();
    const QModelIndex index = p->box()->model()->index(row, 0);
    QString all = QString::number(row);
    for (int role = Qt::UserRole + 1; index.data(role).isValid(); ++role)
        all += QString(" %1=").arg(index.data(role).typeName()) + index.data(role).toString();
    return all;
}

QString judgement(Player p, Words expected)
{
    const ComboBoxValidator *const validator = p->box()->comboBoxValidator();
    QString input = expected.section('=', 0, 0);
    int pos = 0;
    const QString verdict = input + '=' + QString::number(validator->validate(input, pos));
    validator->fixup(input);
    return verdict + ' ' + input;
}

QString drawnLetters(Player p, Words)
{
    const QAbstractItemView *const list = p->list();
    const ComboBox *const box = p->box();
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

QString signsOn(Player p, Words label)
{
    const QWidget *const control = p->control(label.section('.', 1));
    QStringList tips;
    for (const QWidget *child : control->findChildren<QWidget *>()) {
        if (child->inherits("FieldSign") && child->isVisible())
            tips << child->toolTip();
    }
    return tips.join("; ");
}

QString namesOfObjects(Player p, Words label)
{
    QStringList names;
    for (const QObject *object : p->hub()->objects(label.section('.', 1)))
        names << object->objectName();
    return names.join(' ');
}

QString reasons(Player p, Words)
{
    const QMap<QString, QString> errors = p->rules->errors();
    QStringList all;
    for (auto it = errors.cbegin(); it != errors.cend(); ++it)
        all << it.key() + ": " + *it;
    return all.join("; ");
}

QString openCalendar(Player, Words)
{
    auto *const open = qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
    return open ? open->selectedDate().toString(Qt::ISODate) : "closed";
}

} // namespace

StoryAnswers storyVerbs()
{
    return {
        {"shows", labelled},
        {"judges", judgement},
        {"roles", roles},
    };
}

StoryAnswers storyLabels()
{
    return {
        {"text", [](Player p, Words) { return p->property("text"); }},
        {"caret", [](Player p, Words) { return p->property("cursorPosition"); }},
        {"edited",
         [](Player p, Words) {
             return p->edit()->text().insert(p->edit()->cursorPosition(), '|');
         }},
        {"row", [](Player p, Words) { return p->property("currentIndex"); }},
        {"tip", [](Player p, Words) { return p->property("edit.toolTip"); }},
        {"list", [](Player p, Words) { return lightOf(p->box()->view()); }},
        {"completions",
         [](Player p, Words) {
             const QAbstractItemView *const view = p->completions();
             return lightOf(view, QString(" of %1").arg(view->model()->rowCount()));
         }},
        {"focus", [](Player p, Words) { return p->focus(); }},
        {"popup",
         [](Player, Words) { return QApplication::activePopupWidget() ? "open" : "closed"; }},
        {"calendar", openCalendar},
        {"spoken",
         [](Player p, Words) {
             return QAccessible::queryAccessibleInterface(p->edit())->text(QAccessible::Name);
         }},
        {"clipboard", [](Player, Words) { return QApplication::clipboard()->text(); }},
        {"wheel", [](Player p, Words) { return p->wheel; }},
        {"lists", [](Player p, Words) { return column(p, p->box()->model(), Qt::DisplayRole); }},
        {"ids",
         [](Player p, Words) { return column(p, p->box()->model(), p->roleOfId(p->box())); }},
        {"source", [](Player p, Words) { return column(p, p->source(), p->roleOfId(p->box())); }},
        {"drawn", drawnLetters},
        {"unshown", [](Player p, Words) { return p->hub()->unshown().join(' '); }},
        {"changed", [](Player p, Words) { return p->hub()->changedNames().join(' '); }},
        {"states", [](Player p, Words) { return std::exchange(p->states, {}).trimmed(); }},
        {"objects.*", namesOfObjects},
        {"check", [](Player p, Words) { return QVariant(p->rules->check()).toString(); }},
        {"wrong", reasons},
        {"at", [](Player, Words) { return QApplication::focusWidget()->objectName(); }},
        {"sign.*", signsOn},
        {"turns",
         [](Player p, Words) {
             QCoreApplication::processEvents();
             return QString::number(std::exchange(p->turns, 0));
         }},
        {"hub.*", [](Player p, Words label) { return p->held(label.section('.', 1)); }},
        {"*.writes",
         [](Player p, Words label) { return QString::number(counting(p, label)->takeWrites()); }},
        {"*.listeners",
         [](Player p, Words label) { return QString::number(counting(p, label)->listeners()); }},
        {"*", [](Player p, Words label) { return p->property(label); }},
    };
}
