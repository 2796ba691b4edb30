// SPDX-License-Identifier: BSD-3-Clause
#include "modelrefresh_p.h"

#include <QAbstractItemModel>
#include <QPointer>
#include <QScopeGuard>
#include <QScopedValueRollback>

#include <algorithm>

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

QVector<int> ModelRefresh::keyRoles()
{
    QVector<int> roles;
    Q_EMIT keysAsked(&roles);
    std::sort(roles.begin(), roles.end());
    roles.erase(std::unique(roles.begin(), roles.end()), roles.end());
    return roles;
}

// A receiver may destroy the model as soon as the reset has ended.
void ModelRefresh::run(const Step &read, const Step &exchange, const PreparedRows *prepared)
{
    const QPointer<ModelRefresh> self(this);
    m_prepared = prepared;
    const auto forget = qScopeGuard([&self] {
        if (self)
            self->m_prepared = nullptr;
    });
    beginReset();
    try {
        read();
        exchange();
        auto undo = qScopeGuard(exchange);
        Q_EMIT rowsRead();
        undo.dismiss();
    } catch (...) {
        m_prepared = nullptr;
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
