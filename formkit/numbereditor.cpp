#include "numbereditor.h"

#include "decimalvalidator.h"
#include "keymapper.h"

#include <QKeyEvent>
#include <QScopedValueRollback>

namespace {

// True when the last group separator in the text has more or fewer digits behind it, up to the
// point or the end, than a group has. Separators at the ends are what is left of a larger number,
// or blanks around it.
bool isMisgrouped(QStringView text, const LocaleSymbols &symbols)
{
    while (!text.isEmpty() && symbols.kindOf(text.back()) == LocaleSymbols::Group)
        text.chop(1);
    bool behindPoint = false;
    bool behindSeparator = false;
    int digits = 0;
    for (const QChar c : text) {
        const LocaleSymbols::Kind kind = symbols.kindOf(c);
        if (kind == LocaleSymbols::Group) {
            behindSeparator = true;
            digits = 0;
        } else if (kind == LocaleSymbols::Point) {
            behindPoint = true;
        } else if (!behindPoint) {
            ++digits;
        }
    }
    return behindSeparator && digits != symbols.lastGroupSize();
}

// True when `shorter` is left of `longer` when characters are removed.
bool isRemainder(const QString &shorter, const QString &longer)
{
    int found = 0;
    for (const QChar c : longer) {
        if (found < shorter.size() && shorter.at(found) == c)
            ++found;
    }
    return found == shorter.size();
}

} // namespace

// The validator of an editor, which knows what the editor showed before. QLineEdit undoes a
// refused edit only as long as no refused text is shown, and never undoes what the program
// sets; so a refused text that has to stay is called Intermediate here, which keeps QLineEdit
// watching over the edits that follow.
class NumberEditor::EditGuard : public DecimalValidator
{
public:
    EditGuard(QLineEdit *editor, int digits)
        : DecimalValidator(digits, true, true, editor), m_editor(editor)
    {
        connect(editor, &QLineEdit::selectionChanged, this, &EditGuard::noteSelection);
    }

    // Shows a text that is not to be read as another number than it says.
    void show(const QString &text)
    {
        const QScopedValueRollback<bool> given(m_isGiven, true);
        if (text.size() > m_editor->maxLength())
            m_editor->setMaxLength(text.size());
        // QLineEdit does not ask again about the same text.
        if (text == m_editor->text())
            m_editor->clear();
        m_editor->setText(text);
    }

    using DecimalValidator::regroup;

    // Whether the shown text says no number, although without its separators it might.
    bool isShownForeign() const { return m_isShownForeign; }
    // Whether the text was refused, so that it is not shown unless QLineEdit cannot undo it.
    bool hasRefused(const QString &text) const { return !text.isEmpty() && text == m_refused; }

    bool isMisgrouped(QStringView text) const
    {
        return ::isMisgrouped(text, LocaleSymbols(locale()));
    }

    State validate(QString &input, int &pos) const override
    {
        if (input != m_editor->text())
            return DecimalValidator::validate(input, pos);
        QString text = input;
        int caret = pos;
        State state = DecimalValidator::validate(text, caret);
        if (state == Invalid) {
            text = input;
            caret = pos;
            regroup(text, caret);
        }
        const bool isMisread = this->isMisread(input, pos);
        // What is given is a number as the locale writes it, or is to be shown as it is.
        const bool isKept = isMisread || !fits(text) || (m_isGiven && text != input);
        if (isKept)
            state = Invalid;
        if (state == Invalid && !mayStay(input)) {
            m_refused = input;
            return Invalid;
        }
        const bool isNumber = state != Invalid || validateParsedString(text) != Invalid;
        if (isNumber && !isKept) {
            input = text;
            pos = caret;
        }
        m_isShownForeign = !isNumber || (isKept && isMisgrouped(input));
        m_shown = input;
        m_refused.clear();
        // Undo selects without selectionChanged().
        noteSelection();
        return state == Invalid ? Intermediate : state;
    }

private:
    void noteSelection() const { m_selected = m_editor->selectedText().size(); }

    // A text that the program sets comes without a history.
    bool isOfProgram() const { return !m_editor->isUndoAvailable() && !isUndone(); }
    // Undoing leads back to what was shown before.
    bool isUndone() const { return m_editor->isRedoAvailable(); }

    // QLineEdit cuts off what does not fit.
    bool fits(const QString &text) const { return text.size() <= m_editor->maxLength(); }

    bool refusesShown() const
    {
        QString shown = m_shown;
        int pos = 0;
        return m_isShownForeign || DecimalValidator::validate(shown, pos) == Invalid ||
               !fits(shown);
    }

    bool mayStay(const QString &text) const
    {
        return isOfProgram() || isUndone() || (isRemainder(text, m_shown) && refusesShown());
    }

    // Whether separators out of place would be dropped, and make another number: anywhere in a
    // value that is given, in a text that was shown before and in one that was no number and is
    // edited; otherwise in what one edit put in front of the caret in place of the selection.
    // Single characters are typed; the groups move around them.
    bool isMisread(const QString &text, int pos) const
    {
        if (m_isGiven || text == m_shown || isUndone())
            return isMisgrouped(text);
        if (isOfProgram())
            return false;
        if (m_isShownForeign)
            return isMisgrouped(text);
        const int size = text.size() - (m_shown.size() - m_selected);
        return size > 1 && size <= pos && isMisgrouped(QStringView(text).mid(pos - size, size));
    }

    QLineEdit *m_editor;
    bool m_isGiven = false;
    mutable QString m_shown;
    mutable QString m_refused;
    mutable bool m_isShownForeign = false;
    mutable int m_selected = 0;
};

NumberEditor::NumberEditor(QWidget *parent, int digits)
    : QLineEdit(parent), m_validator(new EditGuard(this, digits))
{
    connect(this, &QLineEdit::textChanged, this, &NumberEditor::edit_changed);
    connect(m_validator, &QValidator::changed, this, [this] { showText(toText(m_value)); });
    setValidator(m_validator);
    setAlignment(Qt::AlignRight);
}

DecimalValidator *NumberEditor::decimalValidator() const
{
    return m_validator;
}

int NumberEditor::digits() const
{
    return m_validator->getDigits();
}

void NumberEditor::setDigits(int digits)
{
    m_validator->setDigits(digits);
}

int NumberEditor::numDigits() const
{
    return m_validator->getNumDigits();
}

void NumberEditor::setNumDigits(int numDigits)
{
    m_validator->setNumDigits(numDigits);
}

bool NumberEditor::getCanNegative() const
{
    return m_validator->getCanNegative();
}

void NumberEditor::setCanNegative(bool canNegative)
{
    m_validator->setCanNegative(canNegative);
}

bool NumberEditor::getCanBeZero() const
{
    return m_validator->getCanBeZero();
}

void NumberEditor::setCanBeZero(bool canBeZero)
{
    m_validator->setCanBeZero(canBeZero);
}

decimal NumberEditor::getDecimal() const
{
    if (!decimal::canConvert(m_value, false))
        return decimal::zero;
    if (!getCanBeZero() && DecimalValidator::isZero(m_value.toDouble()))
        return decimal::zero;
    return decimal(m_value);
}

bool NumberEditor::isValid() const
{
    if (getCanBeZero())
        return !m_value.isEmpty();
    bool isNumber = false;
    const double number = m_value.toDouble(&isNumber);
    return isNumber && !DecimalValidator::isZero(number);
}

QString NumberEditor::fromText(const QString &text) const
{
    try {
        return m_validator->textToDecimal(text).toString();
    } catch (...) {
        return text;
    }
}

QString NumberEditor::toText(const QString &value) const
{
    if (value.isEmpty())
        return QString();
    try {
        return m_validator->decimalToText(decimal(value));
    } catch (...) {
        return value;
    }
}

void NumberEditor::setValue(const QString &newValue)
{
    if (newValue == m_value)
        return;
    const QString newText = toText(newValue);
    const bool looksNew = newText != toText(m_value);
    m_value = newValue;
    if (looksNew && newText != text())
        showText(newText);
}

void NumberEditor::setValue(decimal newValue)
{
    setValue(newValue.toString());
}

void NumberEditor::showText(const QString &newText)
{
    const bool wasBlocked = blockSignals(true);
    m_validator->show(newText);
    blockSignals(wasBlocked);
}

void NumberEditor::edit_changed(const QString &newText)
{
    // After a limit has changed, Redo may bring back what is refused now. QLineEdit keeps that,
    // and would refuse nothing from then on.
    if (m_validator->hasRefused(newText))
        showText(newText);
    const QString newValue = m_validator->isShownForeign() ? newText : fromText(newText);
    if (newValue == m_value || toText(newValue) == toText(m_value))
        return;
    m_value = newValue;
    emit changedValue(m_value);
}

void NumberEditor::keyPressEvent(QKeyEvent *event)
{
    if (event->modifiers() == Qt::KeypadModifier && KeyMapper::isDecimal(event)) {
        typeSystemPoint(event);
        return;
    }
    const bool isDelete = event->matches(QKeySequence::Delete);
    if ((isDelete || event->matches(QKeySequence::DeleteEndOfWord)) && !hasSelectedText() &&
        !isReadOnly() && wouldComeBack(cursorPosition())) {
        cursorForward(false);
        if (isDelete)
            return;
    }
    if (event->matches(QKeySequence::Redo) && !isReadOnly())
        redo();
    else
        QLineEdit::keyPressEvent(event);
}

// QLineEdit may put the caret behind the end. And behind the redone removal of a selection, as long
// as it remembers that, it takes a refused key back by too many steps, and leaves digits and NULs
// that were never typed. To set the caret mends both.
void NumberEditor::redo()
{
    QLineEdit::redo();
    setCursorPosition(qMin(cursorPosition(), int(text().size())));
}

// The guard knows how much was selected, but not how much a commit replaces besides.
void NumberEditor::inputMethodEvent(QInputMethodEvent *event)
{
    const QString &composed = event->commitString();
    QInputMethodEvent none;
    const bool isRefused = composed.size() > 1 && m_validator->isMisgrouped(composed);
    QLineEdit::inputMethodEvent(isRefused ? &none : event);
}

void NumberEditor::typeSystemPoint(QKeyEvent *event)
{
    QKeyEvent typed(event->type(), event->key(), event->modifiers(),
                    QString(QLocale::system().decimalPoint()), event->isAutoRepeat(),
                    ushort(event->count()));
    QLineEdit::keyPressEvent(&typed);
    event->setAccepted(typed.isAccepted());
}

// True for a group separator where it belongs: the validator inserts it again when it is removed.
bool NumberEditor::wouldComeBack(int position) const
{
    if (position >= text().size())
        return false;
    QString without = text();
    without.remove(position, 1);
    m_validator->regroup(without, position);
    return without == text();
}
