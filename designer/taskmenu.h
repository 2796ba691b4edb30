// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "controls.h"

#include <QDesignerTaskMenuExtension>
#include <QList>
#include <QObject>

class DesignedFormSelector;

/// The library's part of the context menu of a control, or of a page of a FormSelector: its
/// dynamic properties, and a way from page to page.
class TaskMenu : public QObject, public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    /// Whether the library has a menu for the widget.
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
    /// The selector that the widget, or whose page it is; else null.
    DesignedFormSelector *m_selector;
    QList<QAction *> m_actions;
};
