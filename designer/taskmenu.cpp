// SPDX-License-Identifier: BSD-3-Clause
#include "taskmenu.h"

#include "designedformselector.h"
#include "dynamicpropertycommand.h"

#include <QAction>
#include <QInputDialog>
#include <QUndoStack>

namespace {

DesignedFormSelector *selectorOf(QWidget *widget)
{
    if (auto *selector = dynamic_cast<DesignedFormSelector *>(widget))
        return selector;
    return widget ? dynamic_cast<DesignedFormSelector *>(widget->parentWidget()) : nullptr;
}

} // namespace

bool TaskMenu::isFor(QWidget *widget)
{
    return controlOf(widget) || selectorOf(widget);
}

TaskMenu::TaskMenu(QWidget *widget, QObject *parent)
    : QObject(parent), m_widget(widget), m_selector(selectorOf(widget))
{
    if (const Control *control = controlOf(widget)) {
        for (const DynamicProperty &property : control->dynamicProperties) {
            if (property.kind == DynamicProperty::ParentSwitch)
                addSwitch(property);
            else
                addText(property);
        }
    }
    if (m_selector && m_selector != widget)
        addText(boardsProperty());
    if (m_selector) {
        addPageStep(tr("Next Page"), 1);
        addPageStep(tr("Previous Page"), -1);
    }
}

QList<QAction *> TaskMenu::taskActions() const
{
    for (QAction *action : m_actions) {
        if (action->isCheckable())
            action->setChecked(m_widget->parent()->property(action->data().toByteArray()).toBool());
    }
    return m_actions;
}

void TaskMenu::addSwitch(const DynamicProperty &property)
{
    auto *action = new QAction(property.title, this);
    action->setData(property.name);
    action->setCheckable(true);
    m_actions << action;
    connect(action, &QAction::triggered, this, [this, name = property.name](bool on) {
        change(m_widget->parentWidget(), name, on ? QVariant(true) : QVariant());
    });
}

void TaskMenu::addText(const DynamicProperty &property)
{
    auto *action = new QAction(property.title, this);
    m_actions << action;
    connect(action, &QAction::triggered, this, [this, property] {
        const bool isOfPage = property.kind == DynamicProperty::PageText && m_selector == m_widget;
        if (QWidget *owner = isOfPage ? m_selector->page(m_selector->currentIndex()) : m_widget)
            askForText(owner, property);
    });
}

void TaskMenu::addPageStep(const QString &text, int step)
{
    auto *action = new QAction(text, this);
    m_actions << action;
    connect(action, &QAction::triggered, this, [this, step] {
        const int count = m_selector->count();
        if (count > 0)
            m_selector->setCurrentIndex((m_selector->currentIndex() + count + step) % count);
    });
}

void TaskMenu::askForText(QWidget *owner, const DynamicProperty &property)
{
    bool accepted = false;
    QString title = property.title;
    title.remove(QStringLiteral("..."));
    const QString question = property.help + QLatin1Char(':');
    const QString old = owner->property(property.name).toString();
    const QString text =
        property.kind == DynamicProperty::Lines
            ? QInputDialog::getMultiLineText(owner->window(), title, question, old, &accepted)
            : QInputDialog::getText(owner->window(), title, question, QLineEdit::Normal, old,
                                    &accepted);
    if (!accepted)
        return;
    const bool staysEmpty =
        property.kind == DynamicProperty::PresetText || property.kind == DynamicProperty::PageText;
    if (text.isEmpty() && !staysEmpty)
        change(owner, property.name, QVariant());
    else if (property.kind == DynamicProperty::Words)
        change(owner, property.name, text);
    else
        change(owner, property.name, text.toUtf8());
}

void TaskMenu::change(QWidget *owner, const QByteArray &name, const QVariant &value)
{
    if (auto *form = QDesignerFormWindowInterface::findFormWindow(owner))
        form->commandHistory()->push(new DynamicPropertyCommand(form, owner, name, value));
}
