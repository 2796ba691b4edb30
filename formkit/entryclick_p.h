// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>

/// Tells the click of the left button that brought the focus, without a drag.
class EntryClick
{
public:
    /// The field gets the focus, before the press that brings it.
    void enter(Qt::FocusReason reason) { m_enters = reason == Qt::MouseFocusReason; }
    void press(const QMouseEvent &event)
    {
        m_place = event.pos();
        m_enters = m_enters && event.button() == Qt::LeftButton;
    }
    /// Whether it ends with this release.
    bool release(const QMouseEvent &event)
    {
        const int way = (event.pos() - m_place).manhattanLength();
        return std::exchange(m_enters, false) && event.button() == Qt::LeftButton &&
               way < QGuiApplication::styleHints()->startDragDistance();
    }

private:
    bool m_enters = false;
    QPoint m_place;
};
