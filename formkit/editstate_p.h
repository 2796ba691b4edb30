// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLineEdit>

/// The text, caret and selection of a box's line edit, kept while a refresh of the list disturbs
/// them. A box that is not editable has no line edit.
class EditState
{
public:
    EditState() = default;
    explicit EditState(const QLineEdit *edit)
    {
        if (!edit)
            return;
        m_text = edit->text();
        m_caret = edit->cursorPosition();
        m_selectionStart = edit->selectionStart();
        m_selectionLength = edit->selectionLength();
    }

    QString text() const { return m_text; }

    /// Restores caret and selection if the edit shows the text.
    void restoreCaret(QLineEdit *edit) const
    {
        if (!edit || edit->text() != m_text)
            return;
        if (m_selectionStart < 0)
            edit->setCursorPosition(m_caret);
        else if (m_caret == m_selectionStart)
            edit->setSelection(m_selectionStart + m_selectionLength, -m_selectionLength);
        else
            edit->setSelection(m_selectionStart, m_selectionLength);
    }

private:
    QString m_text;
    int m_caret = 0;
    int m_selectionStart = -1;
    int m_selectionLength = 0;
};
