// SPDX-License-Identifier: BSD-3-Clause
#include "partnerlinedelegate_p.h"

#include <QApplication>
#include <QPainter>

PartnerLineDelegate::PartnerLineDelegate(const Columns &columns, QObject *parent)
    : QStyledItemDelegate(parent), m_columns(columns)
{
}

void PartnerLineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                const QModelIndex &index) const
{
    QStyleOptionViewItem line = option;
    initStyleOption(&line, index);
    line.text.clear();
    const QStyle *style = line.widget ? line.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &line, painter, line.widget);

    const bool selected = line.state & QStyle::State_Selected;
    const auto group = line.state & QStyle::State_Enabled ? QPalette::Normal : QPalette::Disabled;
    painter->setPen(
        line.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));

    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &line, line.widget) + 1;
    const QRect text = line.rect.adjusted(margin, 0, -margin, 0);
    const int codeWidth =
        line.fontMetrics.horizontalAdvance(QLatin1Char('0')) * m_columns.codeWidth;
    QRect code = text;
    code.setWidth(qMin(codeWidth, text.width() / 2));
    QRect name = text;
    name.setLeft(code.right() + 1);
    const auto draw = [&](const QRect &rect, int column) {
        const QString content = index.sibling(index.row(), column).data().toString();
        style->drawItemText(
            painter, QStyle::visualRect(line.direction, text, rect),
            int(QStyle::visualAlignment(line.direction, Qt::AlignLeft)) | Qt::AlignVCenter,
            line.palette, true, line.fontMetrics.elidedText(content, Qt::ElideRight, rect.width()));
    };
    draw(code, m_columns.code);
    draw(name, m_columns.name);
}
