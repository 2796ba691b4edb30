#include "radiobutton.h"

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
    setChecked(value == property(ownText).toString());
}

void RadioButton::nextCheckState()
{
    QRadioButton::nextCheckState();
    // Qt unchecks a button that stands alone among its siblings; its text stays the value.
    setChecked(true);
    m_value = property(ownText).toString();
    emit changedValue(m_value);
}
