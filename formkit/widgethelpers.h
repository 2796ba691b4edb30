// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QChar>
#include <QString>
#include <Qt>

class QWidget;

/// The widget, or its nearest ancestor, that is a window; the outermost ancestor if none is. Null
/// for null.
FORMKIT_EXPORT QWidget *appTopLevelWidget(QWidget *widget);

/// Moves a widget (a window or a child; nothing happens for null) into an area: that of another
/// widget or, if that is null, of the screen with the middle of the widget (of the widget's own
/// screen if the middle is on none). Screens count whole, panels included.
///
/// - Left, right, top and bottom leave five per cent of the area's width or height, rounded down,
///   to its edge. For a centre, half pixels are rounded down.
/// - Of several flags for one direction left goes before centre before right, and top before centre
///   before bottom.
/// - Without a flag for a direction, the widget goes to the left or top edge itself.
FORMKIT_EXPORT void moveWidgetRelatively(QWidget *widget, const QWidget *relativeTo,
                                         Qt::Alignment alignment);

/// The text in the middle of `width` characters, filled up on both sides. If the sides cannot be
/// equal, the right one has one character more. A text that is not shorter is returned as it is.
FORMKIT_EXPORT QString centerJustified(const QString &text, int width, QChar fill);
