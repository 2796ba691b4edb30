// SPDX-License-Identifier: BSD-3-Clause
#include "lineedit.h"

#include <QCompleter>

LineEdit::LineEdit(QWidget *parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::textEdited, this, &LineEdit::edit_changed);
}

void LineEdit::setValue(const QString &value)
{
    if (text() != value)
        setText(value);
    m_known = text();
}

void LineEdit::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    listenToCompleter();
}

// Qt sets a completion by setText(), which it does not report as an edit. It does so in connections
// that it makes when the edit gets the focus and removes when the focus leaves. Ours are made after
// them, so they are called after them, and Qt removes them too.
void LineEdit::listenToCompleter()
{
    if (!completer())
        return;
    connect(completer(), QOverload<const QString &>::of(&QCompleter::highlighted), this,
            &LineEdit::takeCompletion, Qt::UniqueConnection);
    connect(completer(), QOverload<const QString &>::of(&QCompleter::activated), this,
            &LineEdit::takeCompletion, Qt::UniqueConnection);
}

// A row of the list is highlighted first and then activated, which is one edit.
void LineEdit::takeCompletion()
{
    if (text() != m_known)
        edit_changed(text());
}

void LineEdit::edit_changed(const QString &newValue)
{
    // A completer may have been set after the edit got the focus.
    listenToCompleter();
    m_known = newValue;
    Q_EMIT changedValue(newValue);
}
