// SPDX-License-Identifier: BSD-3-Clause
#include "numbereditor.h"

#include "decimalvalidator.h"
#include "keymapper.h"
#include "numbereditguard_p.h"
#include "refusalnotice_p.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QTimer>

#include <utility>

namespace {

// Qt's Wayland platform does not say that a key is one of the keypad. Its symbol does.
bool isOfKeypad(const QKeyEvent &event)
{
    constexpr quint32 FirstOfKeypad = 0xff80;
    return event.modifiers() == Qt::KeypadModifier ||
           (event.modifiers() == Qt::NoModifier && event.nativeVirtualKey() >= FirstOfKeypad &&
            QGuiApplication::platformName().startsWith(QLatin1String("wayland")));
}

} // namespace

// What QLineEdit asks about every text, whichever way it came. The text that is edited goes to
// the guard.
class Q_DECL_HIDDEN NumberEditor::Judge : public DecimalValidator
{
public:
    Judge(NumberEditor *editor, int digits)
        : DecimalValidator(digits, true, true, editor), m_editor(editor)
    {
    }

    State validate(QString &input, int &pos) const override;

private:
    NumberEditor *m_editor;
};

struct Q_DECL_HIDDEN NumberEditor::Private
{
    Private(NumberEditor *editor, int digits)
        : q(editor)
        , validator(new Judge(editor, digits))
        , guard(*validator)
        , notice(new RefusalNotice(editor))
    {
    }

    EditGuard::Edit editOf(const QString &text, int caret) const;
    QValidator::State judge(QString &input, int &pos);
    bool isGuarded() const { return q->validator() == validator; }
    void show();
    void read(const QString &text);
    void hold(const QString &newValue);
    void passMarks(int from, int to);
    void markDoubt();
    void noteCut();
    void noteReason(const QString &newReason);

    NumberEditor *q;
    Judge *validator;
    EditGuard guard;
    RefusalNotice *notice;
    QString value;
    std::optional<decimal> number; // the value's, none if it is no number
    bool showsRefusals = true;

    EditGuard::By by = EditGuard::Key; // more than one character is an insertion in any case
    // Of what is composed QLineEdit tells in advance how much it inserts, not how much it removes.
    int composed = -1;
    int selected = 0;
    bool isCut = false;
    QString refused; // QLineEdit shows it until it has taken it back
    QString reason;  // not said yet
};

NumberEditor::NumberEditor(QWidget *parent, int digits)
    : QLineEdit(parent), d(new Private(this, digits))
{
    connect(this, &QLineEdit::textChanged, this, &NumberEditor::edit_changed);
    connect(this, &QLineEdit::selectionChanged, this,
            [this] { d->selected = selectedText().size(); });
    connect(this, &QLineEdit::cursorPositionChanged, this,
            [this](int from, int to) { d->passMarks(from, to); });
    connect(this, &QLineEdit::inputRejected, this, [this] { d->noteCut(); });
    connect(d->validator, &QValidator::changed, this, [this] { d->show(); });
    setValidator(d->validator);
    setAlignment(Qt::AlignRight);
}

// QLineEdit may still report while it is destroyed.
NumberEditor::~NumberEditor()
{
    setValidator(nullptr);
    disconnect(this, nullptr, this, nullptr);
}

DecimalValidator *NumberEditor::decimalValidator() const
{
    return d->validator;
}

int NumberEditor::digits() const
{
    return d->validator->getDigits();
}

void NumberEditor::setDigits(int digits)
{
    d->validator->setDigits(digits);
}

int NumberEditor::numDigits() const
{
    return d->validator->getNumDigits();
}

void NumberEditor::setNumDigits(int numDigits)
{
    d->validator->setNumDigits(numDigits);
}

bool NumberEditor::getCanNegative() const
{
    return d->validator->getCanNegative();
}

void NumberEditor::setCanNegative(bool canNegative)
{
    d->validator->setCanNegative(canNegative);
}

bool NumberEditor::getCanBeZero() const
{
    return d->validator->getCanBeZero();
}

void NumberEditor::setCanBeZero(bool canBeZero)
{
    d->validator->setCanBeZero(canBeZero);
}

bool NumberEditor::showsRefusals() const
{
    return d->showsRefusals;
}

void NumberEditor::setShowsRefusals(bool shows)
{
    d->showsRefusals = shows;
    d->markDoubt();
}

QString NumberEditor::getValue() const
{
    return d->value;
}

decimal NumberEditor::getDecimal() const
{
    return d->number && (getCanBeZero() || isValid()) ? *d->number : decimal::zero;
}

bool NumberEditor::isValid() const
{
    return d->number && (getCanBeZero() || !DecimalValidator::isZero(d->number->toDouble()));
}

QString NumberEditor::fromText(const QString &text) const
{
    try {
        return d->validator->textToDecimal(text).toString();
    } catch (...) {
        return text;
    }
}

QString NumberEditor::toText(const QString &value) const
{
    if (value.isEmpty())
        return QString();
    try {
        return d->validator->decimalToText(decimal(value));
    } catch (...) {
        return value;
    }
}

void NumberEditor::setValue(const QString &newValue)
{
    const bool lacksValue = d->value.isEmpty() && !text().isEmpty();
    if (newValue == d->value && !lacksValue)
        return;
    const QString newText = toText(newValue);
    const bool looksNew = lacksValue || newText != toText(d->value);
    const bool wasNumber = d->number.has_value();
    d->hold(newValue);
    if (wasNumber != d->number.has_value() || lacksValue || (looksNew && newText != text()))
        d->show();
}

void NumberEditor::setValue(decimal newValue)
{
    setValue(newValue.toString());
}

void NumberEditor::edit_changed(const QString &newText)
{
    // QLineEdit keeps what it cannot take back, and would refuse nothing from then on.
    if (newText != d->guard.text() && d->isGuarded())
        d->show();
    else if (newText != d->guard.text())
        d->read(newText);
    const std::optional<decimal> &number = d->guard.number();
    if (number && d->number && number->word() == d->number->word() &&
        number->scale() == d->number->scale())
        return;
    const QString newValue = d->guard.value();
    if (newValue == d->value)
        return;
    d->hold(newValue);
    Q_EMIT changedValue(newValue);
}

// What QLineEdit reports with the text before or after an edit; see Private::judge().
EditGuard::Edit NumberEditor::Private::editOf(const QString &text, int caret) const
{
    EditGuard::Edit edit{text, caret, 0, by, isCut};
    const QString &before = guard.text();
    // A text that the program sets comes without a history; undoing leads back in it.
    if (!q->isUndoAvailable() && !q->isRedoAvailable())
        edit.by = EditGuard::Program;
    else if (q->isRedoAvailable())
        edit.by = EditGuard::History;
    if (edit.by == EditGuard::Program || edit.by == EditGuard::History)
        return edit;
    edit.inserted = composed >= 0 ? composed : text.size() - (before.size() - selected);
    edit.inserted = qBound(0, edit.inserted, caret);
    const QStringView all(text);
    if (!before.startsWith(all.left(caret - edit.inserted)) || !before.endsWith(all.mid(caret)))
        edit.inserted = edit.caret = text.size();
    return edit;
}

QValidator::State NumberEditor::Private::judge(QString &input, int &pos)
{
    if (input == guard.text())
        return guard.state();
    const EditGuard::Edit edit = editOf(input, pos);
    const QString before = guard.text();
    const QString doubt = guard.doubt();
    const bool wasMarked = guard.isMarked();
    // setMaxLength() cuts what is shown.
    if (edit.by == EditGuard::Program && input.size() == q->maxLength() &&
        before.startsWith(input)) {
        guard.showForeign(input, EditGuard::wordOfLength());
        markDoubt();
        return guard.state();
    }
    const EditGuard::Verdict verdict = guard.judge(edit, q->maxLength());
    isCut = false;
    noteReason(verdict.reason);
    // A key that changes nothing does not end QLineEdit's history.
    const bool isVain = verdict.text == before && before.size() + edit.inserted == input.size() &&
                        edit.inserted > 0 && verdict.caret == pos - edit.inserted &&
                        guard.doubt() == doubt && guard.isMarked() == wasMarked;
    if (!verdict.isTaken || isVain) {
        refused = input;
        return QValidator::Invalid;
    }
    if (verdict.text != input)
        guard.endHistory();
    input = verdict.text;
    pos = verdict.caret;
    if (guard.isMarked() && !wasMarked && edit.by != EditGuard::Program)
        noteReason(guard.doubt());
    markDoubt();
    // Undo selects without selectionChanged().
    selected = q->selectedText().size();
    return guard.state();
}

// Silently, and whole.
void NumberEditor::Private::show()
{
    const QString text = q->toText(value);
    const bool wasBlocked = q->blockSignals(true);
    if (text.size() > q->maxLength())
        q->setMaxLength(text.size());
    if (number || text.isEmpty())
        guard.judge({text, int(text.size()), 0, EditGuard::Program}, q->maxLength());
    else
        guard.showForeign(text);
    q->setText(guard.text());
    q->blockSignals(wasBlocked);
    selected = 0;
    markDoubt();
}

// Whatever another validator lets through.
void NumberEditor::Private::read(const QString &text)
{
    guard.judge({text, int(text.size()), 0, EditGuard::Program}, q->maxLength());
    markDoubt();
}

void NumberEditor::Private::hold(const QString &newValue)
{
    value = newValue;
    number.reset();
    if (decimal::canConvert(value, false))
        number = decimal(value);
}

// The caret does not stop inside a sign, at marks that nobody sees.
void NumberEditor::Private::passMarks(int from, int to)
{
    const int sign = q->text() == guard.text() ? guard.markedSign() : 0;
    if (to <= 0 || to >= sign)
        return;
    if (to > from)
        q->cursorForward(q->hasSelectedText(), sign - to);
    else
        q->cursorBackward(q->hasSelectedText(), to);
}

void NumberEditor::Private::markDoubt()
{
    notice->setDoubt(guard.isMarked() && showsRefusals ? guard.doubt() : QString());
}

// QLineEdit says so before it asks about a text that it cut, and after it was told to refuse one.
void NumberEditor::Private::noteCut()
{
    if (q->text() == refused)
        refused.clear();
    else if (q->text() != guard.text())
        isCut = true;
    else if (guard.text().size() >= q->maxLength())
        noteReason(EditGuard::wordOfLength());
}

// The edit is not over yet.
void NumberEditor::Private::noteReason(const QString &newReason)
{
    if (newReason.isEmpty())
        return;
    reason = newReason;
    QTimer::singleShot(0, q, &NumberEditor::sayRefusal);
}

void NumberEditor::sayRefusal()
{
    const QString reason = std::exchange(d->reason, {});
    if (reason.isEmpty())
        return;
    if (d->showsRefusals)
        d->notice->say(reason, cursorRect().bottomLeft());
    Q_EMIT refused(reason);
}

QValidator::State NumberEditor::Judge::validate(QString &input, int &pos) const
{
    return input == m_editor->text() ? m_editor->d->judge(input, pos)
                                     : DecimalValidator::validate(input, pos);
}

void NumberEditor::paste()
{
    const QScopedValueRollback<EditGuard::By> by(d->by, EditGuard::Insertion);
    QLineEdit::paste();
    sayRefusal();
}

void NumberEditor::undo()
{
    const QScopedValueRollback<EditGuard::By> by(d->by, EditGuard::History);
    QLineEdit::undo();
}

// QLineEdit may put the caret behind the end. And behind the redone removal of a selection, as long
// as it remembers that, it takes a refused key back by too many steps, and leaves digits and NULs
// that were never typed. To set the caret mends both.
void NumberEditor::redo()
{
    const QScopedValueRollback<EditGuard::By> by(d->by, EditGuard::History);
    QLineEdit::redo();
    setCursorPosition(qMin(cursorPosition(), int(text().size())));
}

void NumberEditor::keyPressEvent(QKeyEvent *event)
{
    const bool isModifier = event->key() >= Qt::Key_Shift && event->key() <= Qt::Key_ScrollLock;
    if (!isModifier)
        d->notice->unsay();
    if (isReadOnly())
        QLineEdit::keyPressEvent(event);
    else if (event->matches(QKeySequence::Undo))
        undo();
    else if (event->matches(QKeySequence::Redo))
        redo();
    else if (event->matches(QKeySequence::Paste))
        paste();
    else
        typeKey(event);
}

void NumberEditor::typeKey(QKeyEvent *event)
{
    const bool isPoint = isOfKeypad(*event) && KeyMapper::isDecimal(event);
    const bool isDelete = event->matches(QKeySequence::Delete);
    if ((isDelete || event->matches(QKeySequence::DeleteEndOfWord)) && !hasSelectedText() &&
        d->isGuarded() && d->guard.isGroup(cursorPosition())) {
        cursorForward(false);
        if (isDelete)
            return;
    }
    const int sign = d->guard.markedSign();
    const bool meetsSign = cursorPosition() == (isDelete ? 0 : sign) &&
                           (isDelete || event->matches(QKeySequence::Backspace) ||
                            event->matches(QKeySequence::DeleteStartOfWord));
    if (sign > 0 && meetsSign && !hasSelectedText())
        setSelection(0, sign); // it goes with its marks
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        d->noteReason(d->guard.doubt());
    const QScopedValueRollback<EditGuard::By> by(d->by, isPoint ? EditGuard::KeypadPoint
                                                        : event->text().isEmpty()
                                                            ? EditGuard::Insertion
                                                            : EditGuard::Key);
    if (isPoint)
        typeSystemPoint(event);
    else
        QLineEdit::keyPressEvent(event);
    sayRefusal();
}

void NumberEditor::typeSystemPoint(QKeyEvent *event)
{
    QKeyEvent typed(event->type(), event->key(), event->modifiers(),
                    QString(QLocale::system().decimalPoint()), event->isAutoRepeat(),
                    ushort(event->count()));
    QLineEdit::keyPressEvent(&typed);
    event->setAccepted(typed.isAccepted());
}

// A character that comes from an input method alone is typed.
void NumberEditor::inputMethodEvent(QInputMethodEvent *event)
{
    const int size = event->commitString().size();
    const QScopedValueRollback<EditGuard::By> by(d->by,
                                                 size == 1 ? EditGuard::Key : EditGuard::Insertion);
    const QScopedValueRollback<int> composed(d->composed, size);
    const QString before = text();
    const int caret = hasSelectedText() ? -1 : cursorPosition();
    QLineEdit::inputMethodEvent(event);
    // QLineEdit takes back a refused commit, and leaves what that replaced selected.
    if (size > 0 && text() == before && caret >= 0)
        setCursorPosition(caret);
    sayRefusal();
}

// The middle button pastes.
void NumberEditor::mouseReleaseEvent(QMouseEvent *event)
{
    const QScopedValueRollback<EditGuard::By> by(d->by, EditGuard::Insertion);
    QLineEdit::mouseReleaseEvent(event);
    sayRefusal();
}

void NumberEditor::dropEvent(QDropEvent *event)
{
    const QScopedValueRollback<EditGuard::By> by(d->by, EditGuard::Insertion);
    QLineEdit::dropEvent(event);
    sayRefusal();
}

void NumberEditor::focusOutEvent(QFocusEvent *event)
{
    const bool leaves =
        event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason;
    if (leaves && !isReadOnly()) {
        if (!d->guard.isMarked())
            d->noteReason(d->guard.doubt());
        d->guard.leave();
        d->markDoubt();
        if (d->guard.isBare())
            clear();
    }
    QLineEdit::focusOutEvent(event);
    if (leaves)
        sayRefusal();
}
