// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>

#include <functional>

class QAbstractItemModel;

/// Replaces the rows of a model in one reset, or leaves them as they are: the model and the
/// proxies over it, whose filters judge the new rows before the reset ends.
class ModelRefresh : public QObject
{
    Q_OBJECT

public:
    using Step = std::function<void()>;

    /// A child of the model, to be found by of().
    explicit ModelRefresh(QAbstractItemModel *model);
    /// That of a model; null for a model that has none.
    static ModelRefresh *of(const QAbstractItemModel *model);

    /// Within one reset of the model, `read` reads the new rows and `exchange` exchanges them
    /// with those of the model. What `read` or a proxy's filter throws passes through; the rows
    /// have then been exchanged back, and the reset has ended with isUndone(). `exchange` must
    /// not throw.
    void run(const Step &read, const Step &exchange);

    /// True while a reset ends that has changed nothing.
    bool isUndone() const { return m_isUndone; }

Q_SIGNALS:
    /// The model has its new rows, and its reset is about to end: the moment to read and judge
    /// them. A receiver may throw. Nothing may be shown of them before the reset has ended.
    void rowsRead();

private:
    void beginReset();
    void endReset();

    QAbstractItemModel *m_model;
    bool m_isUndone = false;
};
