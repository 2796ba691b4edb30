// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "edithistory_p.h"

#include <QKeyEvent>

class NumberEditor;
class RefusalNotice;

/// What happens to the text of a number editor: has the guard judge each edit that QLineEdit
/// reports, keeps the history, and tells the user of refusals and doubts.
class NumberEdits
{
public:
    NumberEdits(NumberEditor *editor, int digits, const NumberRules &rules);
    Q_DISABLE_COPY(NumberEdits)

    /// What QLineEdit asks about the text that it shows.
    QValidator::State judge(QString &input, int &pos);
    bool isGuarded() const;
    /// Shows a text of the program silently and whole: a number, or what is none.
    void show(const QString &text, bool isNumber);
    /// Takes over a text that another validator let through.
    void read(const QString &text);

    void undo() { travel(&EditHistory::undo); }
    void redo() { travel(&EditHistory::redo); }
    const EditHistory &history() const { return m_history; }
    /// Takes the multiplication back that was the last edit, if it was.
    bool undoMultiplication();
    /// Changes the number by steps, if there is a step.
    bool step(int count);
    /// Ends the edits: what could still become a number is judged as it is, and the user told.
    void finish();
    /// The same when the hand leaves, which also empties a field without a digit.
    void leave();
    /// Marks the field, or takes the mark away.
    void markDoubt();
    void setShowsRefusals(bool shows);
    bool showsRefusals() const { return m_showsRefusals; }
    /// The last reason that was not said yet.
    QString takeReason();
    /// QLineEdit has taken something back, or cut it.
    void noteRejected();
    /// Remembers caret and selection as they were before the next edit.
    void noteView();
    /// Moves the caret on that stops inside a sign, at marks that nobody sees.
    void passMarks(int from, int to);
    /// Selects the sign with its marks when the key deletes it.
    void selectSign(const QKeyEvent &key);

    DecimalValidator *const validator;
    EditGuard guard;
    RefusalNotice *const notice;
    EditGuard::By by = EditGuard::Key; ///< more than one character is an insertion in any case
    /// Of what is composed QLineEdit tells in advance how much it inserts, not how much it removes.
    int composed = -1;

private:
    EditGuard::Edit editOf(const QString &text, int caret) const;
    QValidator::State judgeEdit(EditGuard::Edit edit, QString *input, int *pos);
    void record(const EditGuard::Edit &edit, const EditGuard::Verdict &verdict,
                const EditHistory::State &before);
    EditHistory::State now() const { return {guard.shown(), m_view}; }
    using Way = std::optional<EditHistory::State> (EditHistory::*)(const EditHistory::State &);
    void travel(Way way);
    void put(const EditState &view);
    void settle();
    void makeRoom(const QString &text);
    void noteReason(const QString &reason);

    NumberEditor *const q;
    const NumberRules &m_rules;
    EditHistory m_history;
    EditState m_view;
    bool m_showsRefusals = true;
    bool m_isCut = false;
    QString m_refused; ///< QLineEdit shows it until it has taken it back
    QString m_reason;  ///< not said yet
};
