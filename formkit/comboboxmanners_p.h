#pragma once

#include <QObject>

class QComboBox;

// What every editable combo box of a form owes its user, given to a box by making one of
// these for it:
// - the wheel neither focuses the box nor turns its choice before it has the focus (it then
//   scrolls what the box stands in);
// - Enter on a text that no row has adds no row;
// - the inner line edit carries the accessible name of the box, or the text of the box's
//   caption (the label whose buddy it is), so that a screen reader says which field it is.
//   The name is brought up to date whenever the box is shown or gets the focus.
class ComboBoxManners : public QObject
{
    Q_OBJECT

public:
    // The box must be editable already.
    explicit ComboBoxManners(QComboBox *box);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void nameLineEdit();

    QComboBox *m_box;
};
