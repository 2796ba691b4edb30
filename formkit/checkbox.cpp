// SPDX-License-Identifier: BSD-3-Clause
#include "checkbox.h"

#include <QDebug>
#include <QVariant>

namespace {

const char *const checkedText = "value_checked";
const char *const uncheckedText = "value_unchecked";

} // namespace

CheckBox::CheckBox(QWidget *parent) : QCheckBox(parent) {}

QString CheckBox::getValue() const
{
    return property(isChecked() ? checkedText : uncheckedText).toString();
}

void CheckBox::setValue(const QString &value)
{
    if (value == property(checkedText).toString())
        setChecked(true);
    else if (value == property(uncheckedText).toString())
        setChecked(false);
    else
        qDebug() << "undef value for CheckBox::setValue" << value;
}

void CheckBox::nextCheckState()
{
    QCheckBox::nextCheckState();
    Q_EMIT changedValue(property(checkedText).toString());
}
