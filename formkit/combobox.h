// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/comboboxvalidator.h>

#include <QComboBox>
#include <QPointer>

/// The editable combo box on which the selector boxes are built. It has no value of its own.
///
/// - It completes ignoring letter case, and has a validator that judges texts by the rows.
/// - It shows no choice at first.
/// - Enter on a text that no row has adds no row.
/// - The wheel over the closed box changes nothing and does not give it the focus.
/// - Screen readers read its inner line edit by the caption of the box.
/// - A line edit that is set later (setLineEdit(), setEditable()) gets what the first one had: a
///   completer, unless it brings one, a validator, and what the box does when it is left; when it
///   is shown, or else in the next turn of the event loop.
class FORMKIT_EXPORT ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget *parent = nullptr);

    /// Belongs to the line edit: null while the box cannot be edited. It is not installed there,
    /// because a typed text that matches no row yet is no error. A subclass that sets another model
    /// gives that to the completer and to the validator too.
    ComboBoxValidator *comboBoxValidator() const { return m_validator; }

    /// Why the text, or what was set, is no choice, in words for the user; empty if it is one. Text
    /// that is just being typed counts, too, where the box chooses by its text when it is left.
    QString fault() const;

    /// Opens the list with no row highlighted but the current one. The view emits no selection
    /// signals for the rows that were highlighted before.
    void showPopup() override;

    /// After measureTexts() the box is as wide as its widest text, but at most about 30 characters,
    /// unless sizeAdjustPolicy or minimumContentsLength ask for something else. Before, QComboBox
    /// decides.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Reads the texts of a model's first column for the width of the box. To be called after each
    /// population: QComboBox would read them at each size hint. A box that has been shown keeps its
    /// width.
    void measureTexts(const QAbstractItemModel *model);
    /// The same of the model's longest texts, which somebody else has found.
    void measureTexts(const QStringList &longest);

    /// The text of a row, cut to the length that the line edit holds; empty for -1.
    QString textOfRow(int row) const;

    /// Makes a row current and shows its text, even if it was current and another text had been
    /// typed over it. -1 changes nothing.
    void chooseRow(int row);

    /// From now on, when the user leaves the box or presses Enter, the text chooses a row if
    /// rowsOfText() finds exactly one, and activated() is emitted. A text that no row has stays, in
    /// red and with a tool tip that says so.
    void chooseWhenLeft();
    /// Shows the text in red, with the reason as tool tip; an empty box shows the reason itself, as
    /// its placeholder. An empty reason removes the mark.
    void mark(const QString &why);

    /// The rows that a text may mean.
    struct TextRows
    {
        int first; ///< -1 for none
        int count;
    };
    /// The rows that have exactly this text; if there are none, those that have it in another
    /// letter case. Reads every row; a subclass may know a faster way.
    virtual TextRows rowsOfText(const QString &text) const;

    /// Makes the completer of a new line edit.
    virtual QCompleter *makeCompleter();
    void replaceCompleter();

    bool event(QEvent *event) override;

private:
    void furnishLineEdit();
    void leave();
    bool isChoiceOrEmpty(const QString &text) const;
    QSize sizeFor(bool ofContents) const;

    QPointer<QLineEdit> m_furnished;
    QPointer<ComboBoxValidator> m_validator;
    QPointer<QCompleter> m_completer;
    bool m_choosesWhenLeft = false;
    bool m_measured = false;
    bool m_wasShown = false;
    bool m_opening = false;
    /// The reason why the line edit is marked, empty if it is not.
    QString m_mark;
    /// Its style sheet, tool tip and placeholder before.
    QStringList m_unmarked;
    /// The texts with most characters. One of them is likely the widest.
    QStringList m_longest;
};
