// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>

class QComboBox;

/// Makes an editable combo box easier to use. Create one for the box:
/// - The wheel over the closed box does nothing and does not give it the focus, so that the form
///   scrolls.
/// - Enter on a text that no row has adds no row.
/// - The inner line edit has the accessible name of the box, or the text of its caption (the label
///   whose buddy it is), so that a screen reader says which field it is. The name is updated when
///   the box or its line edit is shown and when the box gets the focus.
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
