// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QStyledItemDelegate>

/// Paints a code and a name as two columns of a pop-up's line, in line from row to row whatever
/// the font, mirrored in a right-to-left layout.
class PartnerLineDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// The model's columns, and the characters of a line before the name.
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
