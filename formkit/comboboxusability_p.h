// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>

class QComboBox;

/// Makes an editable combo box fit for a form. Constructing one for a box is all that is needed:
/// - The wheel over the closed box changes nothing and does not give it the focus; the page around
///   it scrolls.
/// - Enter on a text that no row has adds no row.
/// - The inner line edit has the accessible name of the box, or else the text of its caption (the
///   label whose buddy it is), for screen readers. The name is updated when the box or its line
///   edit is shown and when the box gets the focus.
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
