// SPDX-License-Identifier: BSD-3-Clause
#include "formpages_p.h"

#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>
#include <QToolBox>

namespace {

// A widget that was never shown is hidden, too, but not explicitly.
bool isHiddenByProgram(const QWidget *widget)
{
    const QWidget *const parent = widget->parentWidget();
    return widget->testAttribute(Qt::WA_WState_Hidden) &&
           widget->testAttribute(Qt::WA_WState_ExplicitShowHide) &&
           !qobject_cast<const QStackedWidget *>(parent) && !qobject_cast<const QToolBox *>(parent);
}

template <typename Pages> void openIn(QWidget *widget, const QWidget *field)
{
    auto *const pages = qobject_cast<Pages *>(widget);
    for (int i = 0; pages && i < pages->count(); ++i) {
        if (pages->widget(i) == field || pages->widget(i)->isAncestorOf(field))
            pages->setCurrentIndex(i);
    }
}

} // namespace

bool FormPages::canBeReached(const QWidget *field, const QWidget *form)
{
    if (!field || !field->isEnabledTo(form))
        return false;
    for (const QWidget *w = field; w && w != form; w = w->parentWidget()) {
        if (isHiddenByProgram(w))
            return false;
    }
    return true;
}

void FormPages::open(QWidget *field, QWidget *form)
{
    for (QWidget *w = field; w; w = w == form ? nullptr : w->parentWidget()) {
        openIn<QTabWidget>(w, field);
        openIn<QToolBox>(w, field);
        if (!qobject_cast<QTabWidget *>(w->parentWidget()))
            openIn<QStackedWidget>(w, field);
        if (auto *const area = qobject_cast<QScrollArea *>(w))
            area->ensureWidgetVisible(field);
    }
}
