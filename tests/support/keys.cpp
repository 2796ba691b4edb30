// SPDX-License-Identifier: BSD-3-Clause
#include "support/keys.h"

#include <QApplication>
#include <QPointer>
#include <QtTest>

void keys::press(QWidget *widget, const QString &keys)
{
    const QPointer<QWidget> alive(widget);
    for (const QString &key : keys.split(' ')) {
        QWidget *const popup = QApplication::activePopupWidget();
        QWidget *const open = popup && popup->focusWidget() ? popup->focusWidget() : popup;
        const int code = QKeySequence(key)[0];
        if (open || alive)
            QTest::keyClick(open ? open : alive.data(), Qt::Key(code & ~Qt::KeyboardModifierMask),
                            Qt::KeyboardModifiers(code & Qt::KeyboardModifierMask));
    }
}

void keys::type(QWidget *widget, const QString &text)
{
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key(0), c, Qt::NoModifier);
}
