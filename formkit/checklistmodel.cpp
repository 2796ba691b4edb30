#include "checklistmodel.h"

CheckListModel::CheckListModel(QObject *parent) : QAbstractItemModel(parent) {}

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
    return m_checkable ? flags | Qt::ItemIsUserCheckable : flags;
}

bool CheckListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !m_checkable)
        return false;
    const bool checked = value.toInt() != 0;
    if (!index.isValid()) {
        beginResetModel();
        for (int row = 0; row < listSize(); ++row)
            setChecked(row, checked);
        endResetModel();
        return true;
    }
    if (index.row() >= listSize() || isChecked(index.row()) == checked)
        return false;
    setChecked(index.row(), checked);
    emit dataChanged(index, index);
    rowCheckChanged();
    return true;
}

QVariant CheckListModel::checkData(const QModelIndex &index, int role) const
{
    if (role != Qt::CheckStateRole || !m_checkable)
        return {};
    return isChecked(index.row()) ? Qt::Checked : Qt::Unchecked;
}

void CheckListModel::rowCheckChanged() {}
