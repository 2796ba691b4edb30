// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QSortFilterProxyModel>

/// A QSortFilterProxyModel over a flat source whose mapping is a subclass's own: everything that
/// the base does by its mapping is done by sourceRow() and rowOfSource(). The base's own
/// mapping is not built, provided that a subclass hands its source to
/// QAbstractProxyModel::setSourceModel().
/// Rows are neither inserted, removed nor dragged through it.
class FORMKIT_EXPORT FlatProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    QItemSelection mapSelectionToSource(const QItemSelection &selection) const override;
    QItemSelection mapSelectionFromSource(const QItemSelection &selection) const override;

    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &) const override { return {}; }
    using QObject::parent;
    QModelIndex sibling(int row, int column, const QModelIndex &) const override
    {
        return index(row, column);
    }
    int rowCount(const QModelIndex &parent = QModelIndex()) const override = 0;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override
    {
        return rowCount(parent) > 0;
    }
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QModelIndex buddy(const QModelIndex &index) const override { return index; }
    QSize span(const QModelIndex &index) const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool dropMimeData(const QMimeData *, Qt::DropAction, int, int, const QModelIndex &) override
    {
        return false;
    }
    bool insertRows(int, int, const QModelIndex & = QModelIndex()) override { return false; }
    bool insertColumns(int, int, const QModelIndex & = QModelIndex()) override { return false; }
    bool removeRows(int, int, const QModelIndex & = QModelIndex()) override { return false; }
    bool removeColumns(int, int, const QModelIndex & = QModelIndex()) override { return false; }
    bool canFetchMore(const QModelIndex &) const override { return false; }
    void fetchMore(const QModelIndex &) override {}

protected:
    /// The source row of a row; -1 for a row outside the list.
    virtual int sourceRow(int row) const = 0;
    /// The row of a source row; -1 for one that is not shown.
    virtual int rowOfSource(int sourceRow) const = 0;
};
