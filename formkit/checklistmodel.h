// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QAbstractItemModel>

#include <functional>

class ModelRefresh;

/// What the exchange and board lists have in common: a flat list of one column that a subclass
/// can turn into a check list, in which every row is checked at first.
class FORMKIT_EXPORT CheckListModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit CheckListModel(QObject *parent = nullptr);

    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    using QObject::parent;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Takes Qt::CheckStateRole only, and only in a check list. An invalid index sets every
    /// row, inside a model reset, or none when a proxy's filter throws. False when nothing was to
    /// be done.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

protected:
    /// The rows and their checks: a subclass keeps them.
    virtual int listSize() const = 0;
    virtual bool isChecked(int row) const = 0;
    virtual void setChecked(int row, bool checked) = 0;
    /// The data of Qt::CheckStateRole in a check list; invalid for any other role or model.
    QVariant checkData(const QModelIndex &index, int role) const;
    /// Called when one row's check state has changed by setData(), before that is announced.
    virtual void rowCheckChanged();
    /// Replaces the rows in one reset: `read` reads new ones, `exchange` exchanges them with those
    /// of the list. What `read` or a proxy's filter throws passes through, and the list has its
    /// old rows. `exchange` must not throw.
    void refresh(const std::function<void()> &read, const std::function<void()> &exchange);

    /// Whether the model is a check list; its owner's subclass decides.
    bool checkable = false;

private:
    ModelRefresh *m_refresh;
};
