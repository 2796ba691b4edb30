// SPDX-License-Identifier: BSD-3-Clause
#include "pushbuttonsend.h"

#include "formrules.h"

#include <QButtonGroup>
#include <QEvent>
#include <QStyle>
#include <QStyleOptionButton>
#include <QVariant>

#include <algorithm>

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
        setIcon(okIcon());
    } else {
        setIcon(QIcon());
    }
}

const QIcon &PushButtonSend::okIcon() const
{
    if (m_okIcon.isNull())
        m_okIcon = style()->standardIcon(QStyle::SP_DialogOkButton);
    return m_okIcon;
}

QSize PushButtonSend::sizeHint() const
{
    if (!icon().isNull())
        return QPushButton::sizeHint();
    QStyleOptionButton option;
    initStyleOption(&option);
    option.icon = okIcon();
    const QSize words = fontMetrics().size(Qt::TextShowMnemonic, text());
    // 4 is the gap that QPushButton leaves.
    const QSize contents(words.width() + 4 + iconSize().width(),
                         std::max(words.height(), iconSize().height()));
    return style()->sizeFromContents(QStyle::CT_PushButton, &option, contents, this);
}

void PushButtonSend::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::StyleChange)
        m_okIcon = QIcon();
    QPushButton::changeEvent(event);
}

void PushButtonSend::setRules(FormRules *rules, ErrorPolicy policy)
{
    if (m_rules)
        disconnect(m_rules, nullptr, this, nullptr);
    const bool wasDisabled = m_policy == DisabledByErrors;
    m_rules = rules;
    m_policy = rules ? policy : ChecksOnClick;
    if (rules && m_policy == DisabledByErrors) {
        connect(rules, &FormRules::changed, this, &PushButtonSend::showErrors);
        connect(rules, &QObject::destroyed, this, [this] { setRules(nullptr); });
    }
    if (wasDisabled || m_policy == DisabledByErrors)
        showErrors();
}

void PushButtonSend::showErrors()
{
    const QString error =
        m_rules && m_policy == DisabledByErrors ? m_rules->firstError() : QString();
    setEnabled(error.isEmpty());
    setToolTip(error);
    setAccessibleDescription(error);
}

void PushButtonSend::nextCheckState()
{
    if (m_rules && m_policy == ChecksOnClick && !m_rules->check())
        return;
    const bool leavesToAnother =
        isChecked() && group() && group()->exclusive() && group()->checkedButton() != this;
    QPushButton::nextCheckState();
    // A group calls this function too, to uncheck the button when another one is checked.
    if (leavesToAnother)
        return;
    m_value = property(ownText).toString();
    setThisState(true);
    Q_EMIT changedValue(m_value);
}
