// SPDX-License-Identifier: BSD-3-Clause
#include "flatproxymodel.h"

#include <QItemSelection>
#include <QSize>

QModelIndex FlatProxyModel::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!sourceModel() || !proxyIndex.isValid() || proxyIndex.model() != this)
        return {};
    return sourceModel()->index(sourceRow(proxyIndex.row()), proxyIndex.column());
}

QModelIndex FlatProxyModel::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!sourceIndex.isValid() || sourceIndex.model() != sourceModel())
        return {};
    const int row = rowOfSource(sourceIndex.row());
    return row < 0 ? QModelIndex() : index(row, sourceIndex.column());
}

QItemSelection FlatProxyModel::mapSelectionToSource(const QItemSelection &selection) const
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    return QAbstractProxyModel::mapSelectionToSource(selection);
}

QItemSelection FlatProxyModel::mapSelectionFromSource(const QItemSelection &selection) const
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    return QAbstractProxyModel::mapSelectionFromSource(selection);
}

QModelIndex FlatProxyModel::index(int row, int column, const QModelIndex &parent) const
{
    return hasIndex(row, column, parent) ? createIndex(row, column) : QModelIndex();
}

int FlatProxyModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() || !sourceModel() ? 0 : sourceModel()->columnCount();
}

QVariant FlatProxyModel::data(const QModelIndex &index, int role) const
{
    return mapToSource(index).data(role);
}

bool FlatProxyModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QModelIndex sourceIndex = mapToSource(index);
    if (!sourceModel() || index.isValid() != sourceIndex.isValid())
        return false;
    return sourceModel()->setData(sourceIndex, value, role);
}

QVariant FlatProxyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!sourceModel())
        return {};
    if (orientation == Qt::Vertical)
        section = sourceRow(section);
    return section < 0 ? QVariant() : sourceModel()->headerData(section, orientation, role);
}

bool FlatProxyModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                                   int role)
{
    if (orientation == Qt::Vertical)
        section = sourceRow(section);
    return sourceModel() && section >= 0 &&
           sourceModel()->setHeaderData(section, orientation, value, role);
}

Qt::ItemFlags FlatProxyModel::flags(const QModelIndex &index) const
{
    const QModelIndex sourceIndex = mapToSource(index);
    return sourceIndex.isValid() ? sourceModel()->flags(sourceIndex) : Qt::NoItemFlags;
}

QSize FlatProxyModel::span(const QModelIndex &index) const
{
    const QModelIndex sourceIndex = mapToSource(index);
    return sourceIndex.isValid() ? sourceModel()->span(sourceIndex) : QSize(1, 1);
}

QMimeData *FlatProxyModel::mimeData(const QModelIndexList &indexes) const
{
    QModelIndexList sourceIndexes;
    for (const QModelIndex &proxyIndex : indexes)
        sourceIndexes << mapToSource(proxyIndex);
    return sourceModel() ? sourceModel()->mimeData(sourceIndexes) : nullptr;
}
