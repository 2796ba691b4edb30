// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <embeddedhost/referenceschema.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <map>
#include <memory>

/// Writes a reference database. The rows go to a file beside the named one, which takes its place
/// when the database is complete.
class DatabaseWriter
{
public:
    /// Throws Exception with the database's reason, as every call here does.
    explicit DatabaseWriter(const QString &file);
    ~DatabaseWriter();
    Q_DISABLE_COPY(DatabaseWriter)

    /// Adds a row, with values in the order of the schema's columns. The database refuses duplicate
    /// keys and rows without their parent, so add parents first.
    void insert(ReferenceSchema::TableId table, const QVariantList &values);
    void finish();

private:
    void createTable(const TableSchema &schema);
    void execute(const QString &sql);
    void close();

    QString m_file;
    QString m_partFile;
    QSqlDatabase m_database;
    std::map<int, std::unique_ptr<QSqlQuery>> m_inserts;
};
