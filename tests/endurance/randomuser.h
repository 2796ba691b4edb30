#pragma once

#include <QPointer>
#include <QRandomGenerator>
#include <QWidget>

class OrderWindow;

// Somebody who types, clicks, pastes and turns the wheel at random in an order window, while the
// program behind it sets values at random.
class RandomUser
{
public:
    RandomUser(OrderWindow *window, quint32 seed);

    // One event: a key with its release, a click, a notch of the wheel, a paste, or a value set.
    void act();

private:
    void pressKey();
    void compose();
    void click();
    void turnWheel();
    void setValue();
    QString text();
    QWidget *anyWidget();
    int below(int bound) { return m_random.bounded(bound); }

    QPointer<OrderWindow> m_window;
    QRandomGenerator m_random;
};
