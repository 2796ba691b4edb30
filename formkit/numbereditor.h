// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/numberentry.h>
#include <hostapi/decimal.h>

class DecimalValidator;
class NumberEdits;
class QMenu;

/// A line edit for a decimal number. Value is the number in system form ("-1234.50"); the user
/// sees and types it in the locale of the editor's validator, regrouped while typing. What is
/// typed, pasted, shown and held is one amount or none; docs/numbers.md has the rules:
///
/// - A typed group separator vanishes into the grouping. Where the digits after it make no group,
///   there is no value. '.' and ',' type the point where they cannot group.
/// - A paste is taken or refused whole. Blanks, a currency and groups in their places are left out.
/// - setValue() shows a number in full, beyond all limits, maxLength() included. A value in no
///   system form is shown as it is.
/// - A text that is not the amount that it looks like is marked, and isValid() is false, until it
///   is replaced or edited so that it is one. The field's tool tip says why. A number outside
///   Minimum and Maximum is marked, too, and is the value all the same.
/// - A field with only a sign, a point or blanks has no value. It is emptied on leaving.
///
/// Unlike a QLineEdit: undo and redo know whole edits, and what the program sets begins a new
/// history; what is copied and cut has no group separators; the first left click selects all;
/// Backspace after a separator, and Delete in front of one, delete the digit next to it; the point
/// cannot be deleted alone while digits stand after it. Where there is a Step, Up and Down change
/// the number by one, Page Up and Page Down by ten, and each of them with Ctrl by a hundred.
class FORMKIT_EXPORT NumberEditor : public NumberEntry
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    /// The greatest numbers of fraction and of integer digits, and whether a minus and a zero are
    /// allowed: see DecimalValidator. Changing them does not touch the text that is shown.
    Q_PROPERTY(int digits READ digits WRITE setDigits)
    Q_PROPERTY(int numDigits READ numDigits WRITE setNumDigits)
    Q_PROPERTY(bool CanNegative READ getCanNegative WRITE setCanNegative)
    Q_PROPERTY(bool CanBeZero READ getCanBeZero WRITE setCanBeZero)
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    /// Two fraction digits, as most prices have, any number of integer digits, minus and zero
    /// allowed, aligned to the right.
    explicit NumberEditor(QWidget *parent = nullptr, int digits = 2);
    ~NumberEditor() override;

    /// The properties of these names.
    int digits() const;
    void setDigits(int digits);
    int numDigits() const;
    void setNumDigits(int numDigits);
    bool getCanNegative() const;
    void setCanNegative(bool canNegative);
    bool getCanBeZero() const;
    void setCanBeZero(bool canBeZero);

    /// The editor's own validator. Its locale is the one that the user reads and types; after
    /// setLocale() on it the value is shown again, and Undo does not lead back to texts of the
    /// locale before. (The widget's locale does not count.) Under another validator, or none, the
    /// text is read in its locale and nothing is refused, regrouped or replaced here.
    DecimalValidator *decimalValidator() const;

    /// Whether the editor itself shows why it refused something, with a tool tip, a short flash of
    /// its frame and an alert for assistive technology. It does at first; refused() comes anyway.
    bool showsRefusals() const;
    void setShowsRefusals(bool shows);

    /// The value in system form, empty when there is none: while the text is empty, only a sign
    /// or a point, or in doubt because of a typed separator. What setValue() was given is the
    /// value until it is edited, even if it is no number; so is a text of that kind after an
    /// edit.
    QString getValue() const;
    /// The value as a number; zero when there is none.
    decimal getDecimal() const;
    /// Whether the form may be sent: the value is a number within Minimum and Maximum and, unless
    /// CanBeZero, not zero. A field
    /// that may be left out is in order when its text is empty, too; its value is also empty while
    /// the text is in doubt.
    bool isValid() const;

    /// From the text of the locale to the system form and back. What is no number comes back
    /// unchanged.
    QString fromText(const QString &text) const;
    QString toText(const QString &value) const;

    /// QLineEdit's, of this editor's own history.
    bool isUndoAvailable() const;
    bool isRedoAvailable() const;
    /// QLineEdit's, with this editor's undo and redo.
    QMenu *createStandardContextMenu();

public Q_SLOTS:
    /// Shows a value given in system form. Silent: changedValue() is for what the user does, and
    /// textChanged() does not come either. An equal value leaves the text and the caret alone,
    /// unless the text is none that has a value.
    void setValue(const QString &newValue);
    void setValue(decimal newValue);
    /// QLineEdit's, for the keys, the context menu and callers; a refused paste says why. Undo and
    /// redo put caret and selection back, too.
    void copy() const;
    void cut();
    void paste();
    void undo();
    void redo();

Q_SIGNALS:
    /// The user changed the value. Regrouping, or a point without digits after it, does not.
    void changedValue(const QString &newValue);
    /// An edit was refused, left zeros out that stood in front, or left the text in doubt; the
    /// reason is for the user, in the words of the installed translation. It comes after the
    /// edit, within the event that made it (from QLineEdit::insert() in the next turn of the
    /// event loop).
    void refused(const QString &reason);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private Q_SLOTS:
    void edit_changed(const QString &newText);

private:
    friend class NumberEdits;
    struct Private;

    void sayRefusal();
    void hold(const QString &newValue);
    void showValue();
    bool doDeed(QKeyEvent *event);
    void typeKey(QKeyEvent *event);
    void typeSystemPoint(QKeyEvent *event);

    std::unique_ptr<Private> d;
};
