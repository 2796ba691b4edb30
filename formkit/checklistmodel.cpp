// SPDX-License-Identifier: BSD-3-Clause
#include "checklistmodel.h"

#include "modelrefresh_p.h"

#include <QVector>

CheckListModel::CheckListModel(QObject *parent)
    : QAbstractItemModel(parent), m_refresh(new ModelRefresh(this))
{
}

QModelIndex CheckListModel::index(int row, int column, const QModelIndex &parent) const
{
    return hasIndex(row, column, parent) ? createIndex(row, column) : QModelIndex();
}

QModelIndex CheckListModel::parent(const QModelIndex &) const
{
    return {};
}

int CheckListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : listSize();
}

int CheckListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 1;
}

Qt::ItemFlags CheckListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return checkable ? flags | Qt::ItemIsUserCheckable : flags;
}

bool CheckListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !checkable)
        return false;
    const bool checked = value.toInt() != 0;
    if (!index.isValid()) {
        QVector<bool> others(listSize(), checked);
        refresh([] {},
                [&] {
                    for (int row = 0; row < others.size(); ++row) {
                        const bool was = isChecked(row);
                        setChecked(row, others.at(row));
                        others[row] = was;
                    }
                });
        return true;
    }
    if (index.row() >= listSize() || isChecked(index.row()) == checked)
        return false;
    setChecked(index.row(), checked);
    rowCheckChanged();
    Q_EMIT dataChanged(index, index);
    return true;
}

QVariant CheckListModel::checkData(const QModelIndex &index, int role) const
{
    if (role != Qt::CheckStateRole || !checkable)
        return {};
    return isChecked(index.row()) ? Qt::Checked : Qt::Unchecked;
}

void CheckListModel::rowCheckChanged() {}

void CheckListModel::refresh(const std::function<void()> &read,
                             const std::function<void()> &exchange)
{
    m_refresh->run(read, exchange);
}
