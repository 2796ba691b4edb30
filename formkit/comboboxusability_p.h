// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>

class QComboBox;

/// What every editable combo box of a form owes its user, given to a box by making one of
/// these for it:
/// - a turn of the wheel on the closed box is ignored and does not bring the focus, so that
///   what the box stands in scrolls;
/// - Enter on a text that no row has adds no row;
/// - the inner line edit carries the accessible name of the box, or the text of the box's
///   caption (the label whose buddy it is), so that a screen reader says which field it is.
///   The name is brought up to date whenever the box or a line edit of it is shown, or the box
///   gets the focus.
class ComboBoxUsability : public QObject
{
    Q_OBJECT

public:
    /// The box must be editable already.
    explicit ComboBoxUsability(QComboBox *box);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void nameLineEdit();

    QComboBox *m_box;
};
