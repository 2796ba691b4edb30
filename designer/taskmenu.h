#pragma once

#include "controls.h"

#include <QDesignerTaskMenuExtension>
#include <QList>
#include <QObject>

// The library's part of the context menu of a control, or of a page of a FormSelector: its
// dynamic properties, and a way from page to page.
class TaskMenu : public QObject, public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    // Whether the library has a menu for the widget.
    static bool isFor(QWidget *widget);

    TaskMenu(QWidget *widget, QObject *parent);

    QList<QAction *> taskActions() const override;

private:
    void addProperty(const DynamicProperty &property);
    void addPageSteps(QWidget *selector);
    void askForText(const DynamicProperty &property);
    void change(QWidget *widget, const QByteArray &name, const QVariant &value);

    QWidget *m_widget;
    QList<QAction *> m_actions;
};
