// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QKeyEvent>
#include <QWheelEvent>

#include <utility>

/// By how many steps a key changes a number: up or down by one with the arrows, by ten with Page Up
/// and Page Down, by a hundred with Ctrl; 0 for any other key.
inline int stepsOfKey(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool isPage = event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
    const bool isUp = event.key() == Qt::Key_Up || event.key() == Qt::Key_PageUp;
    const bool isDown = event.key() == Qt::Key_Down || event.key() == Qt::Key_PageDown;
    if ((!isUp && !isDown) || (modifiers & ~Qt::ControlModifier))
        return 0;
    const int steps = modifiers ? 100 : isPage ? 10 : 1;
    return isUp ? steps : -steps;
}

/// Gathers the notches of a wheel, which may come in parts.
class WheelTurn
{
public:
    /// The whole notches since the last one, upwards.
    int notchesOf(const QWheelEvent &event)
    {
        constexpr int Notch = 120;
        const int angle = event.angleDelta().y();
        m_angle = (m_angle > 0) == (angle > 0) ? m_angle + angle : angle;
        return std::exchange(m_angle, m_angle % Notch) / Notch;
    }

private:
    int m_angle = 0;
};
