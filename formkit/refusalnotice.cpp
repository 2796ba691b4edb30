// SPDX-License-Identifier: BSD-3-Clause
#include "refusalnotice_p.h"

#include "errorcolor_p.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTimer>
#include <QToolTip>

namespace {

constexpr int FlashLength = 150;
constexpr int FlashPause = 1000;

} // namespace

RefusalNotice::RefusalNotice(QWidget *field) : QWidget(field)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    field->installEventFilter(this);
}

void RefusalNotice::say(const QString &reason, const QPoint &place)
{
    QWidget *const field = parentWidget();
    if (!field->isVisible())
        return;
    m_said = reason;
    setAccessibleName(reason);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    // The next field's focus would hide it again.
    if (field->hasFocus())
        showTip(place);
    else
        QTimer::singleShot(0, this, [this, place] { showTip(place); });
    flash();
}

void RefusalNotice::showTip(const QPoint &place)
{
    if (!m_said.isEmpty() && parentWidget()->isVisible())
        QToolTip::showText(parentWidget()->mapToGlobal(place), m_said, parentWidget());
}

void RefusalNotice::unsay()
{
    if (!m_said.isEmpty() && QToolTip::text() == m_said)
        QToolTip::hideText();
    m_said.clear();
}

void RefusalNotice::setDoubt(const QString &doubt)
{
    if (doubt == m_doubt)
        return;
    m_doubt = doubt;
    if (!doubt.isEmpty())
        setAccessibleName(doubt);
    endFlash();
}

void RefusalNotice::flash()
{
    const QWidget *const field = parentWidget();
    const bool isAnimated =
        field->style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, field) > 0;
    if (!isAnimated || (m_lastFlash.isValid() && !m_lastFlash.hasExpired(FlashPause)))
        return;
    m_lastFlash.start();
    setGeometry(field->rect());
    show();
    QTimer::singleShot(FlashLength, this, &RefusalNotice::endFlash);
}

void RefusalNotice::endFlash()
{
    setGeometry(parentWidget()->rect());
    setVisible(!m_doubt.isEmpty());
}

void RefusalNotice::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(QPen(errorColor(palette()), 2));
    painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
}

bool RefusalNotice::eventFilter(QObject *field, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    if (event->type() != QEvent::ToolTip || m_doubt.isEmpty())
        return QWidget::eventFilter(field, event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), m_doubt, parentWidget());
    return true;
}
