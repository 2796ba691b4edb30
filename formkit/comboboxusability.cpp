// SPDX-License-Identifier: BSD-3-Clause
#include "comboboxusability_p.h"

#include "captions_p.h"

#include <QComboBox>
#include <QEvent>
#include <QLineEdit>

ComboBoxUsability::ComboBoxUsability(QComboBox *box) : QObject(box), m_box(box)
{
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setFocusPolicy(Qt::StrongFocus);
    box->installEventFilter(this);
}

bool ComboBoxUsability::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Wheel:
        // This is the closed box; the open list gets the wheel itself.
        event->ignore();
        return true;
    case QEvent::Show:
    case QEvent::ChildPolished:
    case QEvent::FocusIn:
        nameLineEdit();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ComboBoxUsability::nameLineEdit()
{
    const QString own = m_box->accessibleName();
    if (m_box->lineEdit())
        m_box->lineEdit()->setAccessibleName(own.isEmpty() ? Captions(m_box->window()).textOf(m_box)
                                                           : own);
}
