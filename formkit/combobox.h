// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/comboboxvalidator.h>

#include <QComboBox>
#include <QPointer>

/// The type-ahead combo box on which the selector boxes are built: editable, completing
/// without regard to case, and with a validator that judges texts by the rows. It shows no
/// choice at first. It has no value of its own.
///
/// Enter on a text that no row has adds no row; the wheel neither focuses the closed box nor
/// turns its choice; the inner line edit is named after the box's caption for screen readers.
///
/// A line edit that comes later (setLineEdit(), setEditable()) is given what the first one had:
/// type-ahead, unless it brings its own, a validator, and what the box does when it is left. It
/// has them from the moment on at which it is shown, or from the next turn of the event loop.
class FORMKIT_EXPORT ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget *parent = nullptr);

    /// Not installed on the line edit: typed text that matches no row yet is no fault. A
    /// subclass that sets another model points the completer and the validator at it too. It
    /// goes with the line edit: null while the box cannot be edited.
    ComboBoxValidator *comboBoxValidator() const { return m_validator; }

    /// Opens the list. What was highlighted in it no longer is, and the list's view says nothing
    /// about that; only the choice, if there is one, is highlighted.
    void showPopup() override;

    /// A box whose texts measureTexts() has read is as wide as the widest of them, but not wider
    /// than about 30 characters; sizeAdjustPolicy and minimumContentsLength say otherwise where
    /// they are set. Any other box is as wide as QComboBox makes it.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Reads the texts of a model's first column, once for each population: QComboBox would
    /// read them at every size hint. A box that has been shown keeps the width it had then.
    void measureTexts(const QAbstractItemModel *model);
    /// The same of the model's longest texts, which somebody else has found.
    void measureTexts(const QStringList &longest);

    /// The text of a row as the line edit shows it, which cuts what is too long; empty for -1.
    QString textOfRow(int row) const;

    /// Makes a row current and shows its text, also where the row was current already and
    /// another text had been typed. A row of -1 changes nothing.
    void chooseRow(int row);

    /// From now on, when the user leaves the box or presses Enter, a text that one row alone
    /// has chooses that row, and activated() says so: the only row that has it letter for letter,
    /// or where none has it so, the only one that has it in any case. A text that no row has
    /// stays as it is, in red and with a tool tip that says so.
    void chooseWhenLeft();
    /// Shows the text in red with a tool tip that says why, or, for an empty one, takes that
    /// away. While the box is empty the reason stands in its field.
    void mark(const QString &why);

    /// The rows that a text may mean.
    struct TextRows
    {
        int first; ///< -1 for none
        int count;
    };
    /// Those that have it letter for letter, or, where there are none, in any case. Walks the
    /// rows, unless a subclass knows better.
    virtual TextRows rowsOfText(const QString &text) const;

    /// Type-ahead for a new line edit.
    virtual QCompleter *makeCompleter();
    void replaceCompleter();

    bool event(QEvent *event) override;

private:
    void furnishLineEdit();
    void leave();
    QSize sizeFor(bool ofContents) const;

    QPointer<QLineEdit> m_furnished;
    QPointer<ComboBoxValidator> m_validator;
    QPointer<QCompleter> m_completer;
    bool m_choosesWhenLeft = false;
    bool m_measured = false;
    bool m_wasShown = false;
    bool m_opening = false;
    /// Why the line edit is marked, and what of it the mark has replaced.
    QString m_mark;
    QStringList m_unmarked;
    /// The texts of most characters, one of which is likely the widest.
    QStringList m_longest;
};
