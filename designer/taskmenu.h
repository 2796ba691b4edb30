// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "controls.h"

#include <QDesignerTaskMenuExtension>
#include <QList>
#include <QObject>

class DesignedFormSelector;

/// The library's entries in the context menu of a control or of a FormSelector's page: for dynamic
/// properties, and for going from page to page.
class TaskMenu : public QObject, public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    /// Whether the library has entries for the widget.
    static bool isFor(QWidget *widget);

    TaskMenu(QWidget *widget, QObject *parent);

    QList<QAction *> taskActions() const override;

private:
    void addSwitch(const DynamicProperty &property);
    void addText(const DynamicProperty &property);
    void addPageStep(const QString &text, int step);
    void askForText(QWidget *owner, const DynamicProperty &property);
    void change(QWidget *owner, const QByteArray &name, const QVariant &value);

    QWidget *m_widget;
    /// The widget if it is a selector, or the selector whose page it is; otherwise null.
    DesignedFormSelector *m_selector;
    QList<QAction *> m_actions;
};
