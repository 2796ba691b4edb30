// SPDX-License-Identifier: BSD-3-Clause
#include "databasewriter.h"

#include <hostapi/exception.h>

#include <QFile>
#include <QSqlError>

#include <cstdio>

namespace {

QString nameList(const TableSchema &schema, const QVector<int> &columns)
{
    QStringList names;
    for (int column : columns)
        names << QLatin1Char('"') + schema.columns.at(column).name + QLatin1Char('"');
    return names.join(QStringLiteral(", "));
}

[[noreturn]] void fail(const QSqlError &error)
{
    throw Exception(error.databaseText().isEmpty() ? error.driverText() : error.databaseText());
}

} // namespace

DatabaseWriter::DatabaseWriter(const QString &file)
    : m_file(file)
    , m_partFile(file + QStringLiteral(".part"))
    , m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE")))
{
    QFile::remove(m_partFile);
    m_database.setDatabaseName(m_partFile);
    if (!m_database.open())
        throw Exception(QStringLiteral("%1: cannot be written").arg(m_partFile));
    // A broken file does no harm: it is not in its place yet.
    execute(QStringLiteral("PRAGMA journal_mode = OFF"));
    execute(QStringLiteral("PRAGMA synchronous = OFF"));
    execute(QStringLiteral("PRAGMA foreign_keys = ON"));
    execute(QStringLiteral("BEGIN"));
    for (const TableSchema &schema : ReferenceSchema::tables())
        createTable(schema);
}

DatabaseWriter::~DatabaseWriter()
{
    close();
    QFile::remove(m_partFile);
}

void DatabaseWriter::createTable(const TableSchema &schema)
{
    QStringList parts;
    for (const ColumnSchema &column : schema.columns) {
        const bool isText = column.type.type() == FieldType::String;
        parts << QStringLiteral("\"%1\" %2%3")
                     .arg(column.name, isText ? QStringLiteral("TEXT") : QStringLiteral("INTEGER"),
                          column.required ? QStringLiteral(" NOT NULL") : QString());
    }
    parts << QStringLiteral("PRIMARY KEY (%1)").arg(nameList(schema, schema.keyColumns));
    if (!schema.uniqueColumns.isEmpty())
        parts << QStringLiteral("UNIQUE (%1)").arg(nameList(schema, schema.uniqueColumns));
    if (schema.parent >= 0) {
        const TableSchema &parent = ReferenceSchema::tables().at(schema.parent);
        const QString key = nameList(parent, parent.keyColumns);
        parts << QStringLiteral("FOREIGN KEY (%1) REFERENCES \"%2\" (%1)").arg(key, parent.name);
    }
    execute(QStringLiteral("CREATE TABLE \"%1\" (%2) WITHOUT ROWID")
                .arg(schema.name, parts.join(QStringLiteral(", "))));
}

void DatabaseWriter::insert(ReferenceSchema::TableId table, const QVariantList &values)
{
    std::unique_ptr<QSqlQuery> &query = m_inserts[table];
    if (!query) {
        QStringList marks;
        for (int i = 0; i < values.size(); ++i)
            marks << QStringLiteral("?");
        query = std::make_unique<QSqlQuery>(m_database);
        query->prepare(
            QStringLiteral("INSERT INTO \"%1\" VALUES (%2)")
                .arg(ReferenceSchema::tables().at(table).name, marks.join(QStringLiteral(", "))));
    }
    for (int i = 0; i < values.size(); ++i)
        query->bindValue(i, values.at(i));
    if (!query->exec())
        fail(query->lastError());
}

void DatabaseWriter::finish()
{
    m_inserts.clear();
    execute(QStringLiteral("COMMIT"));
    close();
    // Unlike QFile's rename, this one replaces a file.
    if (std::rename(QFile::encodeName(m_partFile), QFile::encodeName(m_file)) != 0)
        throw Exception(QStringLiteral("%1: cannot be written").arg(m_file));
}

void DatabaseWriter::execute(const QString &sql)
{
    QSqlQuery query(m_database);
    if (!query.exec(sql))
        fail(query.lastError());
}

void DatabaseWriter::close()
{
    m_inserts.clear();
    const QString name = m_database.connectionName();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}
