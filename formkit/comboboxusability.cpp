// SPDX-License-Identifier: BSD-3-Clause
#include "comboboxusability_p.h"

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>

namespace {

// The text of a caption without the mark of its shortcut; "&&" is an ampersand.
QString spoken(const QString &caption)
{
    QString text;
    for (int i = 0; i < caption.size(); ++i) {
        if (caption.at(i) == QLatin1Char('&') && ++i == caption.size())
            break;
        text += caption.at(i);
    }
    return text;
}

QString captionOf(const QWidget *control)
{
    const QList<QLabel *> labels = control->window()->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        if (label->buddy() == control)
            return spoken(label->text());
    }
    return {};
}

} // namespace

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
        // The open list gets its wheel events itself.
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
        m_box->lineEdit()->setAccessibleName(own.isEmpty() ? captionOf(m_box) : own);
}
