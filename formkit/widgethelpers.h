// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QChar>
#include <QString>
#include <Qt>

class QWidget;

/// The widget itself or its nearest ancestor that is a window; the outermost one when none is.
/// Null for null.
FORMKIT_EXPORT QWidget *appTopLevelWidget(QWidget *widget);

/// Moves a widget (a window or a child; nothing happens for null) into the area of another one or,
/// when that is null, of the screen that the middle of the widget lies on (of the widget's own
/// screen when it lies on none). Screen areas are whole screens, panels included.
///
/// Left, right, top and bottom keep five per cent of the area's width or height, rounded down, from
/// its edge. A centre counts half pixels down. Of several flags of one direction left goes before
/// centre before right, top before centre before bottom. Without a flag, and for those not named
/// here, the widget goes to the area's left or top edge itself.
FORMKIT_EXPORT void moveWidgetRelatively(QWidget *widget, const QWidget *relativeTo,
                                         Qt::Alignment alignment);

/// The text in the middle of `width` characters, filled up on both sides; when they do not share
/// out evenly, the right side has one more. A text that is as wide, or wider, is returned as it is.
FORMKIT_EXPORT QString centerJustified(const QString &text, int width, QChar fill);
