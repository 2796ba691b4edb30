#pragma once

#include <QStyledItemDelegate>

// Paints a partner's code and name as two columns of a pop-up's line, in line from row to row
// whatever the font, mirrored in a right-to-left layout.
class PartnerLineDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};
