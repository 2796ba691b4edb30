#pragma once

#include <formkit/formkit_export.h>
#include <hostapi/decimal.h>

#include <QLineEdit>

class DecimalValidator;

// A line edit for a decimal number. Value is the number in system form ("-1234.50"); the user
// sees and types it in the locale of the editor's validator, regrouped while typing.
//
// A number set by program is shown in full, also beyond the limits for typing; a value that is
// no number is shown as it is. While the editor shows such a refused text, an edit that leads to
// another refused text is undone unless it only removes characters. A number stays grouped
// meanwhile; in a text that is none, separators out of place are not dropped, so that it becomes
// no other number. Once the text is a number within the limits, everything is as usual.
//
// The group separators count for maxLength(): an edit that needs more of them than fit is
// refused. A longer text that setValue() shows raises maxLength(), rather than being cut.
//
// What is pasted, dropped or composed at one go is refused when its group separators do not
// stand where the locale groups: "1.50" is not taken for 150 under a locale whose point is a
// comma. A separator that is typed alone vanishes, like any key that does not fit.
//
// Delete in front of a group separator moves the caret over it, as Backspace does behind one;
// deleting to the end of the word goes on from behind it. The keypad's decimal key types the
// decimal point of the system's locale (QLocale::system()), which is not that of the validator
// when the program chose another.
class FORMKIT_EXPORT NumberEditor : public QLineEdit
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    // The greatest numbers of fraction and of integer digits, and whether a minus and a zero are
    // allowed: see DecimalValidator. Changing them does not touch the text that is shown.
    Q_PROPERTY(int digits READ digits WRITE setDigits)
    Q_PROPERTY(int numDigits READ numDigits WRITE setNumDigits)
    Q_PROPERTY(bool CanNegative READ getCanNegative WRITE setCanNegative)
    Q_PROPERTY(bool CanBeZero READ getCanBeZero WRITE setCanBeZero)
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    // Two fraction digits, as most prices have, any number of integer digits, minus and zero
    // allowed, aligned to the right.
    explicit NumberEditor(QWidget *parent = nullptr, int digits = 2);

    // The properties of these names.
    int digits() const;
    void setDigits(int digits);
    int numDigits() const;
    void setNumDigits(int numDigits);
    bool getCanNegative() const;
    void setCanNegative(bool canNegative);
    bool getCanBeZero() const;
    void setCanBeZero(bool canBeZero);

    // The editor's own validator. Its locale is the one that the user reads and types; after
    // setLocale() on it the value is shown anew, and Undo does not lead back to texts of the
    // locale before. (The widget's locale does not count.)
    DecimalValidator *decimalValidator() const;

    // The value in system form, empty when the editor is. A text that is no number yet, such as
    // a lone sign or point, is its own value.
    QString getValue() const { return m_value; }
    // The value as a number; zero when there is none.
    decimal getDecimal() const;
    // Whether the form may be sent: there is a value and, unless CanBeZero, it is a number other
    // than zero.
    bool isValid() const;

    // From the text of the locale to the system form and back. What is no number comes back
    // unchanged.
    QString fromText(const QString &text) const;
    QString toText(const QString &value) const;

public slots:
    // Shows a value given in system form. Silent: changedValue() is for what the user does, and
    // textChanged() does not come either. An equal value leaves the text and the caret alone.
    void setValue(const QString &newValue);
    void setValue(decimal newValue);
    // QLineEdit's, for the keys and the context menu; leaves nothing selected.
    void redo();

signals:
    // The user changed the value. Regrouping, or a point without digits behind it, does not.
    void changedValue(const QString &newValue);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;

private slots:
    void edit_changed(const QString &newText);

private:
    class EditGuard;

    void showText(const QString &newText);
    void typeSystemPoint(QKeyEvent *event);
    bool wouldComeBack(int position) const;

    EditGuard *m_validator;
    QString m_value;
};
