// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "modelrefresh_p.h"
#include "securityrows_p.h"

#include <QObject>

#include <functional>
#include <memory>

/// Reads the rows of a model of securities on the worker, without the forms' thread waiting for it:
/// the worker walks the table, the directories are asked on the model's thread, the worker orders
/// the rows and prepares the lists over them, and the model's thread is told. The worker owns
/// all that it works on: model, host and table may be destroyed meanwhile.
class PopulateLater : public QObject
{
    Q_OBJECT

public:
    struct Task
    {
        Table *table;
        SecurityColumns columns;
        /// Called on the worker, with the table locked.
        std::function<bool(const Record &)> filter;
        /// Of the texts of the lists, and of the keys by which they look rows up.
        int textRole;
        QVector<int> keyRoles;
    };
    struct Rows
    {
        SecurityRows rows;
        PreparedRows prepared;
    };
    /// Called once for each start(), on the thread of this object and never within start(), unless
    /// that was called again or cancel() came before. Null when there are no rows: the core
    /// has been taken away, or something has failed, which has been logged then. What it leaves in
    /// the rows is destroyed on the worker.
    using Done = std::function<void(Rows *)>;

    explicit PopulateLater(Done done);
    ~PopulateLater() override;

    /// Starts over when it is under way.
    void start(const Task &task);
    void cancel();
    bool isUnderWay() const { return bool(m_job); }

    /// Within a handler: tells the log what was thrown.
    static void logFailure();

private:
    struct Job;

    Q_INVOKABLE void takeTurn();
    void askDirectories();
    void end(Rows *rows);

    const Done m_done;
    std::shared_ptr<Job> m_job;
};
