#include "pushbuttonsend.h"

#include <QButtonGroup>
#include <QEvent>
#include <QStyle>
#include <QVariant>

namespace {

const char *const ownText = "value";

} // namespace

PushButtonSend::PushButtonSend(QWidget *parent) : QPushButton(parent) {}

QString PushButtonSend::getValue() const
{
    return isChecked() ? property(ownText).toString() : m_value;
}

void PushButtonSend::setValue(const QString &value)
{
    m_value = value;
    setThisState(value == property(ownText).toString());
}

void PushButtonSend::setThisState(bool selected)
{
    if (selected) {
        setDefault(true);
        if (m_okIcon.isNull())
            m_okIcon = style()->standardIcon(QStyle::SP_DialogOkButton);
        setIcon(m_okIcon);
    } else {
        setIcon(QIcon());
    }
}

void PushButtonSend::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::StyleChange)
        m_okIcon = QIcon();
    QPushButton::changeEvent(event);
}

void PushButtonSend::nextCheckState()
{
    const bool leavesToAnother =
        isChecked() && group() && group()->exclusive() && group()->checkedButton() != this;
    QPushButton::nextCheckState();
    // A group unchecks the button by the same call when another one is checked.
    if (leavesToAnother)
        return;
    m_value = property(ownText).toString();
    setThisState(true);
    emit changedValue(m_value);
}
