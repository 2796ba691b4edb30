// SPDX-License-Identifier: BSD-3-Clause
#include "numbereditor.h"

#include "decimalvalidator.h"
#include "entryclick_p.h"
#include "keymapper.h"
#include "numberedits_p.h"
#include "numberrules_p.h"
#include "refusalnotice_p.h"
#include "stepkeys_p.h"
#include "unitlabels_p.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QScopedValueRollback>

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

struct Q_DECL_HIDDEN NumberEditor::Private
{
    Private(NumberEditor *q, int digits, const NumberRules &rules)
        : edits(q, digits, rules), units(q)
    {
    }

    NumberEdits edits;
    UnitLabels units;
    EntryClick click;
    WheelTurn wheel;
    QString value;
    std::optional<decimal> number; // the value's, none if it is no number
};

NumberEditor::NumberEditor(QWidget *parent, int digits)
    : NumberEntry(parent), d(new Private(this, digits, *NumberEntry::d))
{
    NumberEdits *const edits = &d->edits;
    connect(this, &QLineEdit::textChanged, this, &NumberEditor::edit_changed);
    connect(this, &QLineEdit::selectionChanged, this, [edits] { edits->noteView(); });
    connect(this, &QLineEdit::cursorPositionChanged, this, [edits](int from, int to) {
        edits->passMarks(from, to);
        edits->noteView();
    });
    connect(this, &QLineEdit::inputRejected, this, [edits] { edits->noteRejected(); });
    connect(edits->validator, &QValidator::changed, this, [this] { showValue(); });
    NumberEntry::d->changed = [this] {
        d->edits.markDoubt();
        d->units.show(getPrefix(), getSuffix());
    };
    setValidator(edits->validator);
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
    return d->edits.validator;
}

int NumberEditor::digits() const
{
    return d->edits.validator->getDigits();
}

void NumberEditor::setDigits(int digits)
{
    d->edits.validator->setDigits(digits);
}

int NumberEditor::numDigits() const
{
    return d->edits.validator->getNumDigits();
}

void NumberEditor::setNumDigits(int numDigits)
{
    d->edits.validator->setNumDigits(numDigits);
}

bool NumberEditor::getCanNegative() const
{
    return d->edits.validator->getCanNegative();
}

void NumberEditor::setCanNegative(bool canNegative)
{
    d->edits.validator->setCanNegative(canNegative);
}

bool NumberEditor::getCanBeZero() const
{
    return d->edits.validator->getCanBeZero();
}

void NumberEditor::setCanBeZero(bool canBeZero)
{
    d->edits.validator->setCanBeZero(canBeZero);
}

bool NumberEditor::showsRefusals() const
{
    return d->edits.showsRefusals();
}

void NumberEditor::setShowsRefusals(bool shows)
{
    d->edits.setShowsRefusals(shows);
}

QString NumberEditor::getValue() const
{
    return d->value;
}

decimal NumberEditor::getDecimal() const
{
    const bool isZero = !d->number || DecimalValidator::isZero(d->number->toDouble());
    return d->number && (getCanBeZero() || !isZero) ? *d->number : decimal::zero;
}

bool NumberEditor::isValid() const
{
    return d->number && NumberEntry::d->sideOf(*d->number) == 0 &&
           (getCanBeZero() || !DecimalValidator::isZero(d->number->toDouble()));
}

QString NumberEditor::fromText(const QString &text) const
{
    try {
        return d->edits.validator->textToDecimal(text).toString();
    } catch (...) {
        return text;
    }
}

QString NumberEditor::toText(const QString &value) const
{
    if (value.isEmpty())
        return QString();
    try {
        return d->edits.validator->decimalToText(decimal(value));
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
    hold(newValue);
    if (wasNumber != d->number.has_value() || lacksValue || (looksNew && newText != text()))
        showValue();
}

void NumberEditor::setValue(decimal newValue)
{
    setValue(newValue.toString());
}

void NumberEditor::hold(const QString &newValue)
{
    d->value = newValue;
    d->number.reset();
    if (decimal::canConvert(newValue, false))
        d->number = decimal(newValue);
}

void NumberEditor::showValue()
{
    const QString text = toText(d->value);
    d->edits.show(text, d->number || text.isEmpty());
}

void NumberEditor::edit_changed(const QString &newText)
{
    const EditGuard &guard = d->edits.guard;
    // QLineEdit keeps what it cannot take back, and would refuse nothing from then on.
    if (newText != guard.text() && d->edits.isGuarded())
        showValue();
    else if (newText != guard.text())
        d->edits.read(newText);
    const std::optional<decimal> &number = guard.number();
    if (number && d->number && number->word() == d->number->word() &&
        number->scale() == d->number->scale())
        return;
    const QString newValue = guard.value();
    if (newValue == d->value)
        return;
    hold(newValue);
    Q_EMIT changedValue(newValue);
}

void NumberEditor::sayRefusal()
{
    const QString reason = d->edits.takeReason();
    if (reason.isEmpty())
        return;
    if (showsRefusals())
        d->edits.notice->say(reason, cursorRect().bottomLeft());
    Q_EMIT refused(reason);
}

void NumberEditor::copy() const
{
    if (!d->edits.isGuarded() || echoMode() != Normal)
        QLineEdit::copy();
    else if (hasSelectedText())
        QGuiApplication::clipboard()->setText(d->edits.guard.ungrouped(selectedText()));
}

void NumberEditor::cut()
{
    if (!hasSelectedText() || isReadOnly())
        return;
    copy();
    del();
    sayRefusal();
}

void NumberEditor::paste()
{
    const QScopedValueRollback<EditGuard::By> by(d->edits.by, EditGuard::Insertion);
    QLineEdit::paste();
    sayRefusal();
}

void NumberEditor::undo()
{
    if (!d->edits.isGuarded())
        QLineEdit::undo();
    else if (isUndoAvailable())
        d->edits.undo();
}

void NumberEditor::redo()
{
    if (!d->edits.isGuarded())
        QLineEdit::redo();
    else if (isRedoAvailable())
        d->edits.redo();
}

bool NumberEditor::isUndoAvailable() const
{
    return d->edits.isGuarded() ? !isReadOnly() && d->edits.history().canUndo()
                                : QLineEdit::isUndoAvailable();
}

bool NumberEditor::isRedoAvailable() const
{
    return d->edits.isGuarded() ? !isReadOnly() && d->edits.history().canRedo()
                                : QLineEdit::isRedoAvailable();
}

// Undo and Redo come first, and only where the text may be edited.
QMenu *NumberEditor::createStandardContextMenu()
{
    QMenu *const menu = QLineEdit::createStandardContextMenu();
    const QList<QAction *> actions = menu->actions();
    if (!isReadOnly() && actions.size() > 1) {
        actions.at(0)->setEnabled(isUndoAvailable());
        actions.at(1)->setEnabled(isRedoAvailable());
    }
    return menu;
}

void NumberEditor::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *const menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

void NumberEditor::keyPressEvent(QKeyEvent *event)
{
    const bool isModifier = event->key() >= Qt::Key_Shift && event->key() <= Qt::Key_ScrollLock;
    if (!isModifier)
        d->edits.notice->unsay();
    if (event->matches(QKeySequence::Copy))
        copy();
    else if (isReadOnly())
        QLineEdit::keyPressEvent(event);
    else if (!doDeed(event))
        typeKey(event);
}

// What is done with the text as a whole.
bool NumberEditor::doDeed(QKeyEvent *event)
{
    static const QPair<QKeySequence::StandardKey, void (NumberEditor::*)()> deeds[] = {
        {QKeySequence::Undo, &NumberEditor::undo},
        {QKeySequence::Redo, &NumberEditor::redo},
        {QKeySequence::Cut, &NumberEditor::cut},
        {QKeySequence::Paste, &NumberEditor::paste}};
    for (const auto &deed : deeds) {
        if (event->matches(deed.first)) {
            (this->*deed.second)();
            return true;
        }
    }
    const bool isBackspace = event->key() == Qt::Key_Backspace && !event->modifiers();
    if (isBackspace && d->edits.isGuarded() && d->edits.undoMultiplication())
        return true;
    const int steps = stepsOfKey(*event);
    const bool isStep = steps != 0 && d->edits.step(steps);
    if (isStep)
        sayRefusal();
    return isStep;
}

void NumberEditor::typeKey(QKeyEvent *event)
{
    const bool isPoint = isOfKeypad(*event) && KeyMapper::isDecimal(event);
    if (event->matches(QKeySequence::DeleteEndOfWord) && !hasSelectedText() &&
        d->edits.isGuarded() && d->edits.guard.isGroup(cursorPosition()))
        cursorForward(false);
    d->edits.selectSign(*event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        d->edits.finish();
    const QScopedValueRollback<EditGuard::By> by(d->edits.by, isPoint ? EditGuard::KeypadPoint
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

void NumberEditor::wheelEvent(QWheelEvent *event)
{
    const bool isStepping = hasFocus() && !isReadOnly() && wheelSteps();
    const int notches = isStepping ? d->wheel.notchesOf(*event) : 0;
    if (notches != 0)
        d->edits.step(notches * (event->modifiers() & Qt::ControlModifier ? 100 : 1));
    event->setAccepted(isStepping && NumberEntry::d->step.number);
    sayRefusal();
}

// A character that comes from an input method alone is typed.
void NumberEditor::inputMethodEvent(QInputMethodEvent *event)
{
    const int size = event->commitString().size();
    const QScopedValueRollback<EditGuard::By> by(d->edits.by,
                                                 size == 1 ? EditGuard::Key : EditGuard::Insertion);
    const QScopedValueRollback<int> composed(d->edits.composed, size);
    const QString before = text();
    const int caret = hasSelectedText() ? -1 : cursorPosition();
    QLineEdit::inputMethodEvent(event);
    // QLineEdit takes back a refused commit, and leaves what that replaced selected.
    if (size > 0 && text() == before && caret >= 0)
        setCursorPosition(caret);
    sayRefusal();
}

void NumberEditor::mousePressEvent(QMouseEvent *event)
{
    d->click.press(*event);
    QLineEdit::mousePressEvent(event);
}

// The middle button pastes.
void NumberEditor::mouseReleaseEvent(QMouseEvent *event)
{
    const QScopedValueRollback<EditGuard::By> by(d->edits.by, EditGuard::Insertion);
    QLineEdit::mouseReleaseEvent(event);
    if (d->click.release(*event) && !hasSelectedText())
        selectAll();
    sayRefusal();
}

void NumberEditor::dropEvent(QDropEvent *event)
{
    const QScopedValueRollback<EditGuard::By> by(d->edits.by, EditGuard::Insertion);
    QLineEdit::dropEvent(event);
    sayRefusal();
}

void NumberEditor::focusInEvent(QFocusEvent *event)
{
    d->click.enter(event->reason());
    QLineEdit::focusInEvent(event);
}

void NumberEditor::focusOutEvent(QFocusEvent *event)
{
    const bool leaves =
        event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason;
    if (leaves && !isReadOnly())
        d->edits.leave();
    QLineEdit::focusOutEvent(event);
    if (leaves)
        sayRefusal();
}
