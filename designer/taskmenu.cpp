#include "taskmenu.h"

#include <formkit/formselector.h>

#include <QAction>
#include <QDesignerContainerExtension>
#include <QDesignerDynamicPropertySheetExtension>
#include <QDesignerFormEditorInterface>
#include <QDesignerFormWindowCursorInterface>
#include <QDesignerFormWindowInterface>
#include <QDesignerPropertyEditorInterface>
#include <QDesignerPropertySheetExtension>
#include <QExtensionManager>
#include <QInputDialog>

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
        connect(action, &QAction::triggered, this, [this, action](bool on) {
            setProperty(m_widget->parentWidget(), action->objectName(), on);
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
    if (accepted)
        setProperty(m_widget, QString::fromLatin1(property.name), text);
}

void TaskMenu::setProperty(QWidget *widget, const QString &name, const QVariant &value)
{
    auto *form = QDesignerFormWindowInterface::findFormWindow(widget);
    if (!form)
        return;
    QDesignerFormEditorInterface *core = form->core();
    auto *sheet = qt_extension<QDesignerPropertySheetExtension *>(core->extensionManager(), widget);
    auto *dynamicSheet =
        qt_extension<QDesignerDynamicPropertySheetExtension *>(core->extensionManager(), widget);
    if (sheet->indexOf(name) < 0)
        dynamicSheet->addDynamicProperty(name, value);
    form->cursor()->setWidgetProperty(widget, name, value);
    core->propertyEditor()->setObject(core->propertyEditor()->object());
}
