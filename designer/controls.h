// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QSize>
#include <QString>
#include <QVector>

class QObject;
class QWidget;
struct QMetaObject;

/// A property that a control reads although no class declares it, so that a form designer must
/// offer it by name.
struct DynamicProperty
{
    enum Kind {
        Text,        ///< a text; an empty one removes the property ("field" would be an empty name)
        Words,       ///< the same, for the user's eyes: it may be translated
        Lines,       ///< a text of several lines
        PresetText,  ///< a text that every new control has, empty at first
        PageText,    ///< a text that each page of the control has, empty at first
        ParentSwitch ///< a switch that the control reads from its parent
    };

    QByteArray name;
    QString title;
    QString help;
    Kind kind;
};

/// What a form designer shows of a control, and how it makes the control.
struct Control
{
    const QMetaObject *meta = nullptr;
    QWidget *(*create)(QWidget *parent) = nullptr;
    /// Makes the control for a form that is being designed.
    QWidget *(*createDesigned)(QWidget *parent) = nullptr;
    QString header;
    QString group;
    QString toolTip;
    QString whatsThis;
    QSize firstSize;
    /// The properties and pages of a new control, in the words of a form file.
    QString firstContent;
    QVector<DynamicProperty> dynamicProperties;
    /// The method by which a form file adds pages; empty if the control has none.
    QString addPageMethod;
    bool isContainer = false;

    QString name() const;
    /// The Qt class that the control extends.
    QString baseName() const;
    /// The control's entry in Designer's widget box.
    QString domXml() const;
};

/// Every control of the library, in the order of the widget box.
const QVector<Control> &controls();
/// The dynamic property "boards" of a FormSelector's pages.
const DynamicProperty &boardsProperty();
/// The control of an object's class; null if the object is no control of the library.
const Control *controlOf(const QObject *object);
