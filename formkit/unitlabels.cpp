// SPDX-License-Identifier: BSD-3-Clause
#include "unitlabels_p.h"

#include <QEvent>
#include <QStyle>
#include <QStyleOptionFrame>

namespace {

constexpr int Gap = 4;

int widthOf(const QLabel *label)
{
    return label ? label->sizeHint().width() + Gap : 0;
}

QRect contentsOf(const QLineEdit *field)
{
    QStyleOptionFrame option;
    option.initFrom(field);
    if (field->hasFrame())
        option.lineWidth =
            field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, field);
    return field->style()->subElementRect(QStyle::SE_LineEditContents, &option, field);
}

} // namespace

void UnitLabels::show(const QString &prefix, const QString &suffix)
{
    const auto textOf = [](const QLabel *label) { return label ? label->text() : QString(); };
    if (textOf(m_prefix) == prefix && textOf(m_suffix) == suffix)
        return;
    m_prefix = labelOf(prefix, m_prefix);
    m_suffix = labelOf(suffix, m_suffix);
    m_field->setAccessibleDescription(QStringList{prefix, suffix}.join(QLatin1Char(' ')).trimmed());
    m_field->installEventFilter(this);
    place();
}

QLabel *UnitLabels::labelOf(const QString &unit, QLabel *label)
{
    if (unit.isEmpty()) {
        delete label;
        return nullptr;
    }
    if (!label) {
        label = new QLabel(m_field);
        label->setTextFormat(Qt::PlainText);
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        label->setForegroundRole(QPalette::Text);
    }
    label->setText(unit);
    return label;
}

void UnitLabels::place()
{
    const QMargins margins = m_field->textMargins();
    if (margins != m_margins)
        m_own = margins;
    const QRect contents = contentsOf(m_field);
    const QRect inner = contents.marginsRemoved(m_own);
    const Qt::LayoutDirection direction = m_field->layoutDirection();
    const auto put = [&](QLabel *label, int left) {
        if (!label)
            return;
        const QRect logical(left, contents.top(), label->sizeHint().width(), contents.height());
        label->setGeometry(QStyle::visualRect(direction, inner, logical));
        label->show();
    };
    put(m_prefix, inner.left() + Gap / 2);
    put(m_suffix, inner.right() + 1 + Gap / 2 - widthOf(m_suffix));
    const bool isMirrored = direction == Qt::RightToLeft;
    const int left = widthOf(isMirrored ? m_suffix : m_prefix);
    const int right = widthOf(isMirrored ? m_prefix : m_suffix);
    m_margins = m_own + QMargins(left, 0, right, 0);
    m_field->setTextMargins(m_margins);
}

bool UnitLabels::eventFilter(QObject *field, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::StyleChange:
    case QEvent::FontChange:
    case QEvent::LayoutDirectionChange:
        place();
        break;
    default:
        break;
    }
    return QObject::eventFilter(field, event);
}
