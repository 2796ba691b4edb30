// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QStyledItemDelegate>

/// Paints code and name of a pop-up's row as two columns that are aligned in any font, mirrored in
/// a right-to-left layout.
class PartnerLineDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// The model's columns, and the width of the code's column in characters.
    struct Columns
    {
        int code;
        int name;
        int codeWidth;
    };

    PartnerLineDelegate(const Columns &columns, QObject *parent);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

private:
    const Columns m_columns;
};
