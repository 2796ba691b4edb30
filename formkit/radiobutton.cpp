// SPDX-License-Identifier: BSD-3-Clause
#include "radiobutton.h"

#include <QButtonGroup>
#include <QPointer>
#include <QVariant>

namespace {

const char *const ownText = "value";

} // namespace

RadioButton::RadioButton(QWidget *parent) : QRadioButton(parent) {}

QString RadioButton::getValue() const
{
    return isChecked() ? property(ownText).toString() : m_value;
}

void RadioButton::setValue(const QString &value)
{
    m_value = value;
    if (value == property(ownText).toString())
        setChecked(true);
    else
        uncheck();
}

// Qt unchecks no exclusive button, so the button is made a non-exclusive one for a moment.
void RadioButton::uncheck()
{
    if (!isChecked())
        return;
    const QPointer<QButtonGroup> inGroup(group());
    const bool isExclusive = autoExclusive();
    const bool isGroupExclusive = inGroup && inGroup->exclusive();
    setAutoExclusive(false);
    if (inGroup)
        inGroup->setExclusive(false);
    setChecked(false);
    setAutoExclusive(isExclusive);
    if (inGroup)
        inGroup->setExclusive(isGroupExclusive);
}

void RadioButton::nextCheckState()
{
    const bool leavesToAnother =
        isChecked() && group() && group()->exclusive() && group()->checkedButton() != this;
    QRadioButton::nextCheckState();
    // A group calls this function too, to uncheck the button when another one is checked.
    if (leavesToAnother)
        return;
    // Qt has unchecked the button if it has no siblings. Its text is to stay the value.
    setChecked(true);
    m_value = property(ownText).toString();
    Q_EMIT changedValue(m_value);
}
