// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QList>
#include <QMultiMap>
#include <QPointer>
#include <QStringList>
#include <QWidget>

class Properties;

/// Shows which fields of a form are invalid. The terminal checks the hub's values and passes the
/// names that it rejects; the captions of the controls bound under those names turn red. A caption
/// is a QLabel whose buddy is the control.
///
/// - The class owns the style sheet of every caption that it has painted: a caption that becomes
///   valid again has none, also if it had one before.
/// - Red alone does not say what is wrong: let the caption's tool tip give the reason.
/// - Label::setError() paints its caption by itself: a form uses that or this class, not both.
/// - Captions may be destroyed at any time.
class FORMKIT_EXPORT FormValidation
{
public:
    /// Finds the captions in a widget tree, and the names under which the hub's connectAll() has
    /// bound their buddies: call it after connectAll(). Each call adds captions, so call it again
    /// for a sub-form that is bound later. Does nothing for a null widget.
    void setupPropWidgets(const Properties &hub, QWidget *widget);

    /// Shows the captions of these names as invalid, and no others. Names without a caption are
    /// ignored.
    void set(const QStringList &names);

    /// Shows these widgets as invalid, and no others. Only labels are painted.
    void setInvalidWidgets(const QList<QWidget *> &widgets);

    /// Paints one widget, if it is a label, and remembers nothing.
    void setWidgetState(QWidget *widget, bool valid);

private:
    void forgetDeadLabels();

    QList<QPointer<QWidget>> m_invalidWidgets;
    QMultiMap<QString, QPointer<QWidget>> m_captionLabels;
};
