// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "rowlists_p.h"

#include <QObject>

#include <functional>

class QAbstractItemModel;

/// What a worker has found out about rows that are about to come.
struct PreparedRows
{
    RowLists lists;
    /// Of the display role; see LongestTexts.
    QStringList longestTexts;
};

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
    /// not throw. With what has been `prepared` of the new rows nothing here walks them.
    void run(const Step &read, const Step &exchange, const PreparedRows *prepared = nullptr);
    /// What the running refresh was given; null for nothing.
    const PreparedRows *prepared() const { return m_prepared; }
    /// The roles by which the proxies look rows up, to be prepared.
    QVector<int> keyRoles();

    /// True while a reset ends that has changed nothing.
    bool isUndone() const { return m_isUndone; }

Q_SIGNALS:
    /// The model has its new rows, and its reset is about to end: the moment to read and judge
    /// them. A receiver may throw. Nothing may be shown of them before the reset has ended.
    void rowsRead();
    /// A receiver adds the roles that it wants prepared.
    void keysAsked(QVector<int> *roles);

private:
    void beginReset();
    void endReset();

    QAbstractItemModel *m_model;
    const PreparedRows *m_prepared = nullptr;
    bool m_isUndone = false;
};
