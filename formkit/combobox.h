#pragma once

#include <formkit/comboboxvalidator.h>

#include <QComboBox>
#include <QPointer>

// The type-ahead combo box on which the selector boxes are built: editable, completing
// without regard to case, and with a validator that judges texts by the rows. It shows no
// choice at first. It has no value of its own.
//
// Enter on a text that no row has adds no row; the wheel neither focuses the box nor acts
// before it has the focus; the inner line edit is named after the box's caption for screen
// readers.
class FORMKIT_EXPORT ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget *parent = nullptr);

    // Not installed on the line edit: typed text that matches no row yet is no fault. A
    // subclass that sets another model points the completer and the validator at it too. It
    // goes with the line edit: null once that was replaced or taken away.
    ComboBoxValidator *comboBoxValidator() const { return m_validator; }

    // Opens the list. What was highlighted in it no longer is, and the list's view says nothing
    // about that; only the choice, if there is one, is highlighted.
    void showPopup() override;

    // Wide enough for the texts that measureTexts() has read; before it was called, as wide
    // as QComboBox makes it.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    // Reads the texts of a model's first column, once for each population: QComboBox would
    // read them at every size hint.
    void measureTexts(const QAbstractItemModel *model);

    // Makes a row current and shows its text, also where the row was current already and
    // another text had been typed. A row of -1 changes nothing.
    void chooseRow(int row);

    // From now on, when the user leaves the box or presses Enter, a text that one row alone
    // has, ignoring case, chooses that row. A text that no row has stays as it is, in red and
    // with a tool tip that says so. (QComboBox would choose the first of several rows that
    // differ in case alone.)
    void chooseWhenLeft();
    // Marks the text as one that no row has, or takes the mark away.
    void markUnmatched(bool unmatched);

    // The rows of a text, ignoring case.
    struct TextRows
    {
        int first; // -1 for none
        int count;
    };
    // Walks the rows, unless a subclass knows better.
    virtual TextRows rowsOfText(const QString &text) const;

private:
    void leave();

    QPointer<ComboBoxValidator> m_validator;
    bool m_measured = false;
    bool m_opening = false;
    bool m_unmatched = false;
    // The texts of most characters, one of which is likely the widest.
    QStringList m_longest;
};
