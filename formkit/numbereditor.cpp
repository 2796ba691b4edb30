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
        connect(editor, &QLineEdit::selectionChanged, this,
                [this] { m_selected = m_editor->selectedText().size(); });
    }

    // Shows a text that is not to be read as another number than it says.
    void show(const QString &text)
    {
        const QScopedValueRollback<bool> given(m_isGiven, true);
        m_editor->setText(text);
    }

    State validate(QString &input, int &pos) const override
    {
        if (input != m_editor->text())
            return DecimalValidator::validate(input, pos);
        QString text = input;
        int caret = pos;
        State state = isMisread(input, pos) ? Invalid : DecimalValidator::validate(text, caret);
        // What is given is a number as the locale writes it, or is to be shown as it is.
        if (m_isGiven && text != input)
            state = Invalid;
        if (state != Invalid) {
            input = text;
            pos = caret;
        } else if (mayStay(input)) {
            state = Intermediate;
        } else {
            return Invalid;
        }
        if (input != m_shown)
            m_selected = 0;
        m_shown = input;
        return state;
    }

private:
    // A text that the program sets comes without a history.
    bool isOfProgram() const { return !m_editor->isUndoAvailable() && !isUndone(); }
    // Undoing leads back to what was shown before.
    bool isUndone() const { return m_editor->isRedoAvailable(); }

    bool refusesShown() const
    {
        QString shown = m_shown;
        int pos = 0;
        return isMisgrouped(shown, LocaleSymbols(locale())) ||
               DecimalValidator::validate(shown, pos) == Invalid;
    }

    bool mayStay(const QString &text) const
    {
        return isOfProgram() || isUndone() || (isRemainder(text, m_shown) && refusesShown());
    }

    // Whether separators out of place would be dropped, and make another number: anywhere in a
    // value that is given, in a text that is asked about again and in a refused one that is
    // edited; otherwise in what one edit put in front of the caret in place of the selection.
    // Single characters are typed; the groups move around them.
    bool isMisread(const QString &text, int pos) const
    {
        const LocaleSymbols symbols(locale());
        if (m_isGiven || text == m_shown)
            return isMisgrouped(text, symbols);
        if (isOfProgram())
            return false;
        if (refusesShown())
            return isMisgrouped(text, symbols);
        const int size = text.size() - (m_shown.size() - m_selected);
        return size > 1 && size <= pos &&
               isMisgrouped(QStringView(text).mid(pos - size, size), symbols);
    }

    QLineEdit *m_editor;
    bool m_isGiven = false;
    mutable QString m_shown;
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
    if (looksNew)
        showText(newText);
}

void NumberEditor::setValue(decimal newValue)
{
    setValue(newValue.toString());
}

void NumberEditor::showText(const QString &newText)
{
    if (newText == text())
        return;
    const bool wasBlocked = blockSignals(true);
    m_validator->show(newText);
    blockSignals(wasBlocked);
}

void NumberEditor::edit_changed(const QString &newText)
{
    const QString newValue = fromText(newText);
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
    QLineEdit::keyPressEvent(event);
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
    return m_validator->validate(without, position) != QValidator::Invalid && without == text();
}
