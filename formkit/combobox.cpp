#include "combobox.h"

#include "comboboxmanners_p.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QSignalBlocker>

ComboBox::ComboBox(QWidget *parent) : QComboBox(parent)
{
    setEditable(true);
    new ComboBoxManners(this);

    auto *typeAhead = new QCompleter(this);
    typeAhead->setCaseSensitivity(Qt::CaseInsensitive);
    setCompleter(typeAhead);
    typeAhead->setModel(model());

    m_validator = new ComboBoxValidator(lineEdit());
    m_validator->setModel(model());
    setCurrentIndex(-1);
}

void ComboBox::showPopup()
{
    {
        const QSignalBlocker quiet(view());
        view()->selectionModel()->clearSelection();
    }
    QComboBox::showPopup();
}

void ComboBox::chooseRow(int row)
{
    if (row >= 0)
        setCurrentIndex(row);
}
