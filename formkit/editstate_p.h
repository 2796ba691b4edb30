// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLineEdit>

/// The text, caret and selection of a line edit, to be put back later: a refresh of a box's list
/// disturbs them. A box that was made not editable has none.
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

    /// A text with the caret at a place, or all of it selected.
    EditState(const QString &text, int caret, bool isSelected)
        : m_text(text)
        , m_caret(caret)
        , m_selectionStart(isSelected ? 0 : -1)
        , m_selectionLength(isSelected ? text.size() : 0)
    {
    }

    QString text() const { return m_text; }
    int caret() const { return m_caret; }
    /// How many characters are selected.
    int selected() const { return m_selectionLength; }

    /// Puts caret and selection back, if the edit shows the text.
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
