// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "databasecontent_p.h"
#include "stringpool_p.h"

#include <QSet>
#include <QSqlDatabase>
#include <QVariant>

#include <atomic>
#include <functional>

/// Reads a SQLite file, within one transaction of a read-only connection of its own, on the
/// thread that calls it; again, up to twice, when the file was written to meanwhile.
class DatabaseLoader
{
public:
    /// Called at the start and the end of each table and every few thousand rows between, of each
    /// reading.
    using Progress = std::function<void(int table, int rows, int total)>;

    /// `cancelled` may be set by any thread while load() runs.
    DatabaseLoader(const QString &file, const std::vector<const RowLayout *> &layouts,
                   const std::atomic<bool> &cancelled, const Progress &progress);

    /// The content, or null when cancelled. Throws Exception with one text that says what is
    /// wrong where.
    std::unique_ptr<DatabaseContent> load();

private:
    struct Cancelled
    {
    };

    std::unique_ptr<DatabaseContent> readUnchanged() const;
    void open(QSqlDatabase &database) const;
    std::unique_ptr<DatabaseContent> read(const QSqlDatabase &database) const;
    void checkColumns(const QSqlDatabase &database, const TableSchema &schema) const;
    QSet<QString> columnsOf(const QSqlDatabase &database, const TableSchema &schema) const;
    int countRows(const QSqlDatabase &database, const TableSchema &schema) const;
    TableContent readTable(const QSqlDatabase &database, int table) const;
    void readRow(const QVariantList &values, const RowLayout &layout, RowData *row,
                 std::vector<StringPool> &pools) const;
    void throwIfCancelled() const;

    const QString m_file;
    const std::vector<const RowLayout *> m_layouts;
    const std::atomic<bool> &m_cancelled;
    const Progress m_progress;
};
