// SPDX-License-Identifier: BSD-3-Clause
#include "numberedits_p.h"

#include "numbereditor.h"
#include "numberrules_p.h"
#include "refusalnotice_p.h"

#include <QPointer>
#include <QTimer>

#include <utility>

namespace {

// What QLineEdit asks about every text, whichever way it came. The text that is edited goes to
// the guard.
class Judge : public DecimalValidator
{
public:
    Judge(NumberEditor *editor, int digits, NumberEdits *edits)
        : DecimalValidator(digits, true, true, editor), m_editor(editor), m_edits(edits)
    {
    }

    State validate(QString &input, int &pos) const override
    {
        return input == m_editor->text() ? m_edits->judge(input, pos)
                                         : DecimalValidator::validate(input, pos);
    }

private:
    NumberEditor *m_editor;
    NumberEdits *m_edits;
};

} // namespace

NumberEdits::NumberEdits(NumberEditor *editor, int digits, const NumberRules &rules)
    : validator(new Judge(editor, digits, this))
    , guard(*validator, rules)
    , notice(new RefusalNotice(editor))
    , q(editor)
    , m_rules(rules)
{
}

bool NumberEdits::isGuarded() const
{
    return q->validator() == validator;
}

// What QLineEdit reports with the text before or after an edit; see judge().
EditGuard::Edit NumberEdits::editOf(const QString &text, int caret) const
{
    EditGuard::Edit edit{text, caret, 0, by, m_isCut, m_view.caret(), m_view.selected() > 0};
    const QString &before = guard.text();
    // A text that the program sets comes without a history. QLineEdit's own undo leads back in it.
    if (!q->QLineEdit::isUndoAvailable() && !q->QLineEdit::isRedoAvailable())
        edit.by = EditGuard::Program;
    else if (q->QLineEdit::isRedoAvailable())
        edit.by = EditGuard::History;
    if (edit.by == EditGuard::Program || edit.by == EditGuard::History)
        return edit;
    edit.inserted = composed >= 0 ? composed : text.size() - (before.size() - m_view.selected());
    edit.inserted = qBound(0, edit.inserted, caret);
    const QStringView all(text);
    if (!before.startsWith(all.left(caret - edit.inserted)) || !before.endsWith(all.mid(caret)))
        edit.inserted = edit.caret = text.size();
    return edit;
}

QValidator::State NumberEdits::judge(QString &input, int &pos)
{
    if (input == guard.text())
        return guard.state();
    const EditGuard::Edit edit = editOf(input, pos);
    if (edit.by == EditGuard::Program)
        m_history.clear();
    // setMaxLength() cuts what is shown.
    if (edit.by == EditGuard::Program && input.size() == q->maxLength() &&
        guard.text().startsWith(input)) {
        guard.showForeign(input, EditGuard::wordOfLength());
        markDoubt();
        return guard.state();
    }
    const auto past = edit.by == EditGuard::History ? m_history.undo(now()) : std::nullopt;
    if (!past)
        return judgeEdit(edit, &input, &pos);
    guard.restore(past->shown);
    input = guard.text();
    pos = past->view.caret();
    markDoubt();
    return guard.state();
}

QValidator::State NumberEdits::judgeEdit(EditGuard::Edit edit, QString *input, int *pos)
{
    const EditHistory::State before = now();
    const bool wasMarked = guard.isMarked();
    const EditGuard::Verdict verdict = guard.judge(edit, q->maxLength());
    m_isCut = false;
    noteReason(verdict.reason);
    if (!verdict.isTaken) {
        m_refused = *input;
        return QValidator::Invalid;
    }
    record(edit, verdict, before);
    *input = verdict.text;
    *pos = verdict.caret;
    if (guard.isMarked() && !wasMarked && edit.by != EditGuard::Program)
        noteReason(guard.doubt());
    markDoubt();
    return guard.state();
}

void NumberEdits::record(const EditGuard::Edit &edit, const EditGuard::Verdict &verdict,
                         const EditHistory::State &before)
{
    if (edit.by == EditGuard::Program || verdict.text == before.shown.text)
        return;
    const bool isTyped = edit.inserted == 1 && edit.by != EditGuard::Insertion;
    const bool isDeleted = edit.inserted == 0 && !edit.hadSelection;
    const EditHistory::Kind kind = verdict.isMultiplied ? EditHistory::Multiplication
                                   : isTyped            ? EditHistory::Typing
                                   : isDeleted          ? EditHistory::Deletion
                                                        : EditHistory::Other;
    m_history.record(before, kind, verdict.caret);
}

void NumberEdits::show(const QString &text, bool isNumber)
{
    m_history.clear();
    const bool wasBlocked = q->blockSignals(true);
    makeRoom(text);
    if (isNumber)
        guard.judge({text, int(text.size()), 0, EditGuard::Program}, q->maxLength());
    else
        guard.showForeign(text);
    q->setText(guard.text());
    q->blockSignals(wasBlocked);
    noteView();
    markDoubt();
}

void NumberEdits::read(const QString &text)
{
    m_history.clear();
    guard.judge({text, int(text.size()), 0, EditGuard::Program}, q->maxLength());
    markDoubt();
}

void NumberEdits::makeRoom(const QString &text)
{
    if (text.size() > q->maxLength())
        q->setMaxLength(text.size());
}

void NumberEdits::travel(Way way)
{
    const std::optional<EditHistory::State> there = (m_history.*way)(now());
    if (!there)
        return;
    makeRoom(there->shown.text);
    guard.restore(there->shown);
    put(there->view);
}

// Shows what the guard has. QLineEdit reports it as an edit.
void NumberEdits::put(const EditState &view)
{
    markDoubt();
    const QPointer<NumberEditor> alive(q);
    const bool wasBlocked = q->blockSignals(true);
    q->selectAll();
    q->blockSignals(wasBlocked);
    q->insert(guard.text());
    if (alive)
        view.restoreCaret(q);
}

bool NumberEdits::undoMultiplication()
{
    const bool isLast = m_history.isMultiplied();
    if (isLast)
        undo();
    return isLast;
}

bool NumberEdits::step(int count)
{
    if (!m_rules.step.number || !isGuarded())
        return false;
    const EditHistory::State before = now();
    const bool wasMarked = guard.isMarked();
    const EditGuard::Verdict verdict = guard.step(count, q->maxLength());
    noteReason(verdict.reason);
    if (!verdict.isTaken)
        return true;
    if (guard.isMarked() && !wasMarked)
        noteReason(guard.doubt());
    const int behind = before.shown.text.size() - m_view.caret();
    const bool isAll = m_view.selected() > 0 && m_view.selected() == before.shown.text.size();
    m_history.record(before, EditHistory::Other, 0);
    put(EditState(verdict.text, qMax(0, int(verdict.text.size()) - behind), isAll));
    return true;
}

void NumberEdits::finish()
{
    noteReason(guard.doubt());
    settle();
}

void NumberEdits::settle()
{
    guard.leave();
    m_history.endRun();
    markDoubt();
}

void NumberEdits::leave()
{
    if (!guard.isMarked())
        noteReason(guard.doubt());
    settle();
    if (!guard.isBare() || q->text().isEmpty())
        return;
    if (!isGuarded()) {
        q->clear();
        return;
    }
    guard.restore({});
    put({});
}

void NumberEdits::markDoubt()
{
    notice->setDoubt(guard.isMarked() && m_showsRefusals ? guard.doubt() : QString());
}

void NumberEdits::setShowsRefusals(bool shows)
{
    m_showsRefusals = shows;
    markDoubt();
}

// QLineEdit says so before it asks about a text that it cut, and after it was told to refuse one.
void NumberEdits::noteRejected()
{
    if (q->text() == m_refused)
        m_refused.clear();
    else if (q->text() != guard.text())
        m_isCut = true;
    else if (guard.text().size() >= q->maxLength())
        noteReason(EditGuard::wordOfLength());
}

// The edit is not over yet.
void NumberEdits::noteReason(const QString &reason)
{
    if (reason.isEmpty())
        return;
    m_reason = reason;
    QTimer::singleShot(0, q, &NumberEditor::sayRefusal);
}

QString NumberEdits::takeReason()
{
    return std::exchange(m_reason, {});
}

void NumberEdits::noteView()
{
    m_view = EditState(q);
    m_history.noteCaret(m_view.selected() > 0 ? -1 : m_view.caret());
}

void NumberEdits::passMarks(int from, int to)
{
    const int sign = q->text() == guard.text() ? guard.markedSign() : 0;
    if (to <= 0 || to >= sign)
        return;
    if (to > from)
        q->cursorForward(q->hasSelectedText(), sign - to);
    else
        q->cursorBackward(q->hasSelectedText(), to);
}

void NumberEdits::selectSign(const QKeyEvent &key)
{
    const int sign = guard.markedSign();
    const bool isDelete = key.matches(QKeySequence::Delete);
    const bool isDeletion = isDelete || key.matches(QKeySequence::Backspace) ||
                            key.matches(QKeySequence::DeleteStartOfWord);
    if (sign > 0 && isDeletion && q->cursorPosition() == (isDelete ? 0 : sign) &&
        !q->hasSelectedText())
        q->setSelection(0, sign);
}
