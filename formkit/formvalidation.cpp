// SPDX-License-Identifier: BSD-3-Clause
#include "formvalidation.h"

#include "properties.h"

#include <QLabel>

#include <utility>

void FormValidation::setupPropWidgets(const Properties &hub, QWidget *widget)
{
    if (!widget)
        return;
    for (QObject *child : widget->children()) {
        if (child->isWidgetType())
            setupPropWidgets(hub, static_cast<QWidget *>(child));
    }
    const auto *label = qobject_cast<QLabel *>(widget);
    if (!label || !label->buddy())
        return;
    const QStringList names = hub.objectProperty(label->buddy());
    for (const QString &name : names)
        m_captionLabels.insert(name, widget);
}

void FormValidation::set(const QStringList &names)
{
    forgetDeadLabels();
    QList<QWidget *> labels;
    for (const QString &name : names) {
        for (auto it = m_captionLabels.constFind(name);
             it != m_captionLabels.constEnd() && it.key() == name; ++it)
            labels << *it;
    }
    setInvalidWidgets(labels);
}

// A change of style runs code of the form, which may destroy labels.
void FormValidation::setInvalidWidgets(const QList<QWidget *> &widgets)
{
    QList<QPointer<QWidget>> invalid;
    for (QWidget *widget : widgets)
        invalid << widget;
    const QList<QPointer<QWidget>> before = std::exchange(m_invalidWidgets, invalid);
    for (const QPointer<QWidget> &widget : before)
        setWidgetState(widget, true);
    for (const QPointer<QWidget> &widget : std::as_const(invalid))
        setWidgetState(widget, false);
}

void FormValidation::setWidgetState(QWidget *widget, bool valid)
{
    if (auto *label = qobject_cast<QLabel *>(widget))
        label->setStyleSheet(valid ? QString() : QStringLiteral("color: red"));
}

void FormValidation::forgetDeadLabels()
{
    for (auto it = m_captionLabels.begin(); it != m_captionLabels.end();)
        it = *it ? it + 1 : m_captionLabels.erase(it);
}
