#include "comboboxvalidator.h"

ComboBoxValidator::ComboBoxValidator(QObject *parent) : QValidator(parent) {}

void ComboBoxValidator::setModel(QAbstractItemModel *model)
{
    m_model = model;
}

QString ComboBoxValidator::rowText(int row) const
{
    return m_model->index(row, 0).data(Qt::DisplayRole).toString();
}

int ComboBoxValidator::firstRowStartingWith(const QString &input) const
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (rowText(row).startsWith(input, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}

QValidator::State ComboBoxValidator::validate(QString &input, int &) const
{
    if (!m_model)
        return Invalid;
    if (input.isEmpty())
        return Intermediate;
    const int row = firstRowStartingWith(input);
    if (row < 0)
        return Invalid;
    return rowText(row).compare(input, Qt::CaseInsensitive) == 0 ? Acceptable : Intermediate;
}

void ComboBoxValidator::fixup(QString &input) const
{
    if (!m_model || input.isEmpty())
        return;
    const int row = firstRowStartingWith(input);
    if (row >= 0)
        input = rowText(row);
}
