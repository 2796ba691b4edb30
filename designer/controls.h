// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QSize>
#include <QString>
#include <QVector>

class QObject;
class QWidget;
struct QMetaObject;

/// A property that a control reads though no class declares it: a designer must offer it by name.
struct DynamicProperty
{
    enum Kind {
        Text,        ///< a text; an empty one is no property ("field" would be an empty name)
        Words,       ///< the same, for the user's eyes: a translator may change it
        Lines,       ///< a text of several lines
        PresetText,  ///< a text that every new control carries, empty
        PageText,    ///< a text of each page of the control, carried from the start, empty
        ParentSwitch ///< a switch that the control reads from its parent
    };

    QByteArray name;
    QString title;
    QString help;
    Kind kind;
};

/// What a form designer shows of one control, and how it makes it.
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
    /// The properties of a new control, and its pages, as a form file writes them.
    QString firstContent;
    QVector<DynamicProperty> dynamicProperties;
    /// The method by which a form file adds pages, empty for all but containers of pages.
    QString addPageMethod;
    bool isContainer = false;

    QString name() const;
    /// The Qt class that the control extends.
    QString baseName() const;
    /// The control's entry of a form file's widget box.
    QString domXml() const;
};

/// Every control of the library, in the order of the widget box.
const QVector<Control> &controls();
/// The dynamic property "boards" of a FormSelector's pages.
const DynamicProperty &boardsProperty();
/// The control of an object's class, null when the object is none of the library's.
const Control *controlOf(const QObject *object);
