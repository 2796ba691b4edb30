// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "qtversions_p.h"

/// A list of one column for pop-ups. All rows have the same height, so that opening, scrolling and
/// moving in it take a time that depends only on the rows that are seen.
class RowListView : public ItemView
{
    Q_OBJECT

public:
    explicit RowListView(QWidget *parent = nullptr);

    /// The column shown; 0 unless set.
    void setModelColumn(int column);

    void setModel(QAbstractItemModel *model) override;
    QRect visualRect(const QModelIndex &index) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint &point) const override;
    int sizeHintForRow(int row) const override;

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override;
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex &index) const override;
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection &selection) const override;
    void paintEvent(QPaintEvent *event) override;
    void updateGeometries() override;
    void changeEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void rowsInserted(const QModelIndex &parent, int start, int end) override;

private:
    int rows() const;
    int rowHeight() const;
    QStyleOptionViewItem itemOption() const;
    QModelIndex indexOfRow(int row) const;

    int m_column = 0;
    mutable int m_rowHeight = 0;
};
