#include "taskmenu.h"

#include "dynamicpropertycommand.h"

#include <formkit/formselector.h>

#include <QAction>
#include <QDesignerContainerExtension>
#include <QDesignerFormEditorInterface>
#include <QDesignerFormWindowInterface>
#include <QExtensionManager>
#include <QInputDialog>
#include <QUndoStack>

namespace {

QDesignerContainerExtension *pagesOf(QWidget *selector)
{
    auto *form = QDesignerFormWindowInterface::findFormWindow(selector);
    return form ? qt_extension<QDesignerContainerExtension *>(form->core()->extensionManager(),
                                                              selector)
                : nullptr;
}

QWidget *selectorOfPage(QWidget *widget)
{
    return qobject_cast<FormSelector *>(widget->parentWidget());
}

} // namespace

bool TaskMenu::isFor(QWidget *widget)
{
    return controlOf(widget) || selectorOfPage(widget);
}

TaskMenu::TaskMenu(QWidget *widget, QObject *parent) : QObject(parent), m_widget(widget)
{
    if (const Control *control = controlOf(widget)) {
        for (const DynamicProperty &property : control->dynamicProperties)
            addProperty(property);
    }
    if (QWidget *selector = selectorOfPage(widget)) {
        addProperty(boardsProperty());
        addPageSteps(selector);
    } else if (qobject_cast<FormSelector *>(widget)) {
        addPageSteps(widget);
    }
}

QList<QAction *> TaskMenu::taskActions() const
{
    for (QAction *action : m_actions) {
        if (action->isCheckable())
            action->setChecked(
                m_widget->parent()->property(action->objectName().toLatin1()).toBool());
    }
    return m_actions;
}

void TaskMenu::addProperty(const DynamicProperty &property)
{
    auto *action = new QAction(property.title, this);
    action->setObjectName(QString::fromLatin1(property.name));
    action->setStatusTip(property.help);
    m_actions << action;
    if (property.kind == DynamicProperty::ParentSwitch) {
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, name = property.name](bool on) {
            change(m_widget->parentWidget(), name, on ? QVariant(true) : QVariant());
        });
    } else {
        connect(action, &QAction::triggered, this, [this, property] { askForText(property); });
    }
}

void TaskMenu::addPageSteps(QWidget *selector)
{
    const auto add = [&](const QString &text, int step) {
        auto *action = new QAction(text, this);
        m_actions << action;
        connect(action, &QAction::triggered, this, [selector, step] {
            QDesignerContainerExtension *pages = pagesOf(selector);
            if (pages && pages->count() > 0)
                pages->setCurrentIndex((pages->currentIndex() + pages->count() + step) %
                                       pages->count());
        });
    };
    add(tr("Next Page"), 1);
    add(tr("Previous Page"), -1);
}

void TaskMenu::askForText(const DynamicProperty &property)
{
    bool accepted = false;
    QString title = property.title;
    const QString text = QInputDialog::getText(
        m_widget->window(), title.remove(QStringLiteral("...")), property.help + QLatin1Char(':'),
        QLineEdit::Normal, m_widget->property(property.name).toString(), &accepted);
    if (!accepted)
        return;
    const bool isRemoved = text.isEmpty() && property.kind != DynamicProperty::PresetText;
    change(m_widget, property.name, isRemoved ? QVariant() : QVariant(text.toUtf8()));
}

void TaskMenu::change(QWidget *widget, const QByteArray &name, const QVariant &value)
{
    if (auto *form = QDesignerFormWindowInterface::findFormWindow(widget))
        form->commandHistory()->push(new DynamicPropertyCommand(form, widget, name, value));
}
