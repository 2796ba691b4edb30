// SPDX-License-Identifier: BSD-3-Clause
#include "widgethelpers.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace {

// Where a widget goes in one direction, horizontal or vertical.
enum Place { Edge, Near, Middle, Far };

Place placeOf(Qt::Alignment alignment, Qt::AlignmentFlag near, Qt::AlignmentFlag middle,
              Qt::AlignmentFlag far)
{
    if (alignment & near)
        return Near;
    if (alignment & middle)
        return Middle;
    return alignment & far ? Far : Edge;
}

// The first pixel of a widget in an area whose pixels are `first` to `last`. At the far place it is
// the widget's last pixel, not the one after it, that keeps the margin.
int position(Place place, int first, int last, int extent)
{
    const int margin = (last + 1 - first) / 20;
    switch (place) {
    case Near:
        return first + margin;
    case Middle:
        return (first + last) / 2 - (extent - 1) / 2;
    case Far:
        return last - margin - (extent - 1);
    case Edge:
        break;
    }
    return first;
}

// QWidget::screen() is the primary one for a window that has been moved but not shown yet.
QRect screenArea(const QWidget &widget)
{
    const QScreen *screen = QGuiApplication::screenAt(widget.mapToGlobal(widget.rect().center()));
    return (screen ? screen : widget.screen())->geometry();
}

} // namespace

QWidget *appTopLevelWidget(QWidget *widget)
{
    return widget ? widget->window() : nullptr;
}

void moveWidgetRelatively(QWidget *widget, const QWidget *relativeTo, Qt::Alignment alignment)
{
    if (!widget)
        return;
    const QRect area = relativeTo ? relativeTo->rect() : screenArea(*widget);
    const Place across = placeOf(alignment, Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight);
    const Place down = placeOf(alignment, Qt::AlignTop, Qt::AlignVCenter, Qt::AlignBottom);
    QPoint target(position(across, area.left(), area.right(), widget->width()),
                  position(down, area.top(), area.bottom(), widget->height()));
    if (relativeTo)
        target = relativeTo->mapToGlobal(target);
    widget->move(widget->mapToParent(widget->mapFromGlobal(target)));
}

QString centerJustified(const QString &text, int width, QChar fill)
{
    const int room = qMax(width, text.size()) - text.size();
    return QString(room / 2, fill) + text + QString(room - room / 2, fill);
}
