// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "editstate_p.h"
#include "numbereditguard_p.h"

/// The edits that a user made to a number editor since the program set its text last, for undo and
/// redo. An edit is a run of typed characters, a run of deleted ones, or any other change as a
/// whole. Only what has been shown comes back.
class EditHistory
{
public:
    enum Kind {
        Typing,
        Deletion,
        Multiplication, ///< by a suffix
        Other
    };

    /// What a field showed, with the caret and the selection.
    struct State
    {
        EditGuard::Shown shown;
        EditState view;
    };

    void clear();
    /// An edit was made, which leaves the caret at a place. It is part of the run if the last one
    /// was of its kind and nothing happened in between.
    void record(const State &before, Kind kind, int caretAfter);
    /// The caret stands at a place; elsewhere than where the last edit left it, the next edit is
    /// another one.
    void noteCaret(int caret)
    {
        if (caret != m_caret)
            endRun();
    }
    void endRun() { m_run = Other; }

    bool canUndo() const { return !m_past.isEmpty(); }
    bool canRedo() const { return !m_future.isEmpty(); }
    /// Whether the last edit was a multiplication, and nothing happened since.
    bool isMultiplied() const { return m_run == Multiplication; }
    /// The state before the last edit, or that of the last undo; none if there is no such.
    std::optional<State> undo(const State &now) { return go(&m_past, &m_future, now); }
    std::optional<State> redo(const State &now) { return go(&m_future, &m_past, now); }

private:
    std::optional<State> go(QVector<State> *from, QVector<State> *to, const State &now);

    QVector<State> m_past;
    QVector<State> m_future;
    Kind m_run = Other;
    int m_caret = 0; ///< where the last edit has left it
};
