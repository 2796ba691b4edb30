// SPDX-License-Identifier: BSD-3-Clause
#include "modelrefresh_p.h"

#include <QAbstractItemModel>
#include <QScopeGuard>
#include <QScopedValueRollback>

namespace {

// Names what a model keeps for its subclasses.
struct Resetting : QAbstractItemModel
{
    using QAbstractItemModel::beginResetModel;
    using QAbstractItemModel::endResetModel;
};

} // namespace

ModelRefresh::ModelRefresh(QAbstractItemModel *model) : QObject(model), m_model(model) {}

ModelRefresh *ModelRefresh::of(const QAbstractItemModel *model)
{
    return model ? model->findChild<ModelRefresh *>(QString(), Qt::FindDirectChildrenOnly)
                 : nullptr;
}

void ModelRefresh::run(const Step &read, const Step &exchange)
{
    beginReset();
    try {
        read();
        exchange();
        auto undo = qScopeGuard(exchange);
        Q_EMIT rowsRead();
        undo.dismiss();
    } catch (...) {
        const QScopedValueRollback<bool> undone(m_isUndone, true);
        endReset();
        throw;
    }
    endReset();
}

void ModelRefresh::beginReset()
{
    (m_model->*&Resetting::beginResetModel)();
}

void ModelRefresh::endReset()
{
    (m_model->*&Resetting::endResetModel)();
}
