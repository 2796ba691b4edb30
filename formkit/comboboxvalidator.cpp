// SPDX-License-Identifier: BSD-3-Clause
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
    // match() is virtual: a model may have a faster search than reading row after row.
    const QModelIndexList found =
        m_model->match(m_model->index(0, 0), Qt::DisplayRole, input, 1, Qt::MatchStartsWith);
    return found.isEmpty() ? -1 : found.first().row();
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
