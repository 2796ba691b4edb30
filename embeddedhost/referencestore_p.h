// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "databasecontent_p.h"
#include "embeddedboarddirectory_p.h"
#include "embeddedstockdirectory_p.h"
#include "embeddedtable_p.h"

/// The reference data of the embedded host: tables under one recursive lock, directories and
/// sessions as snapshots. Nothing else is locked while a snapshot's mutex is held, so that a
/// look-up inside a walk cannot deadlock.
class ReferenceStore : public IDatabase
{
public:
    ReferenceStore();
    ~ReferenceStore() override;

    Table *table(const QString &name) override;
    const StockDirectory *stockDirectory() const { return &m_stockDirectory; }
    const BoardDirectory *boardDirectory() const { return &m_boardDirectory; }
    const StepSource *stepSource() const { return &m_stepSource; }
    QVector<SessionId> sessions() const { return *m_sessions.get(); }
    void setSessions(const QVector<SessionId> &sessions);

    /// The layouts of the tables, in the order of ReferenceSchema::tables().
    std::vector<const RowLayout *> layouts() const;
    /// Rows listed in a table or still held by Records.
    qint64 liveRows() const;
    /// Exchanges the whole content in one step. The old one is in `content` afterwards, to be
    /// released by the caller outside the lock. True when other sessions are open now.
    bool swap(DatabaseContent &content);

private:
    std::recursive_mutex m_mutex;
    std::vector<std::unique_ptr<EmbeddedTable>> m_tables;
    Snapshot<DirectoryData> m_directories;
    Snapshot<QVector<SessionId>> m_sessions;
    Snapshot<StepsData> m_steps;
    EmbeddedStockDirectory m_stockDirectory;
    EmbeddedBoardDirectory m_boardDirectory;
    EmbeddedStepSource m_stepSource;
};
