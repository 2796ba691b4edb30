// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QList>
#include <QMultiMap>
#include <QPointer>
#include <QStringList>
#include <QWidget>

class Properties;

/// Shows which fields of a form are invalid: the terminal checks the hub's values and hands
/// over the names that it rejects, and the captions of the controls bound under those names
/// turn red. A caption is a QLabel whose buddy is the control.
///
/// The class owns the style sheet of every caption that it has painted: a caption that becomes
/// valid again has none, whatever a designer gave it. As red alone does not say what is wrong,
/// let the caption's tool tip give the reason.
///
/// Captions that are destroyed are forgotten.
class FORMKIT_EXPORT FormValidation
{
public:
    /// Learns the captions in a widget tree, for the names under which the hub's connectAll()
    /// has bound their buddies: call it after connectAll(). It adds to what is known, so a
    /// sub-form that is bound later is learnt by a call of its own. Does nothing for a null
    /// widget.
    void setupPropWidgets(const Properties &hub, QWidget *widget);

    /// Shows the captions of exactly these names as invalid. Names without a caption are
    /// passed over; no names, no red.
    void set(const QStringList &names);

    /// Shows exactly these widgets as invalid. Only labels are painted.
    void setInvalidWidgets(const QList<QWidget *> &widgets);

    /// Paints one widget, if it is a label, and remembers nothing.
    void setWidgetState(QWidget *widget, bool valid);

private:
    void forgetDeadLabels();

    QList<QPointer<QWidget>> m_invalidWidgets;
    QMultiMap<QString, QPointer<QWidget>> m_captionLabels;
};
