// SPDX-License-Identifier: BSD-3-Clause
#include "databaseloader_p.h"

#include "contentcheck_p.h"
#include "loaderror_p.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>

#include <limits>

namespace {

// A database connection under a name that nobody else uses, for the length of a scope.
class Connection
{
public:
    Connection()
        : m_name(nextName())
        , m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name))
    {
    }
    ~Connection()
    {
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }
    Q_DISABLE_COPY(Connection)

    QSqlDatabase &database() { return m_database; }

private:
    static QString nextName()
    {
        static std::atomic<int> count{0};
        return QStringLiteral("formkit-embeddedhost-%1").arg(++count);
    }

    const QString m_name;
    QSqlDatabase m_database;
};

constexpr int MostReads = 3;

// What tells that a file has been written to.
struct FileState
{
    explicit FileState(const QFileInfo &file) : size(file.size()), modified(file.lastModified()) {}

    bool operator==(const FileState &other) const
    {
        return size == other.size && modified == other.modified;
    }
    // The clock of a file system stands still for some milliseconds, in which a change leaves no
    // trace: what is to be compared is read after them.
    void waitUntilSettled() const
    {
        constexpr qint64 Settled = 20;
        if (modified.isValid() && modified.msecsTo(QDateTime::currentDateTime()) < Settled)
            QThread::msleep(Settled);
    }

    qint64 size;
    QDateTime modified;
};

bool hasWriteAheadLog(const QSqlDatabase &database)
{
    QSqlQuery query(database);
    return query.exec(QStringLiteral("PRAGMA journal_mode")) && query.next() &&
           query.value(0) == QLatin1String("wal");
}

QString quoted(const QString &name)
{
    return QLatin1Char('"') + name + QLatin1Char('"');
}

QString sqlReason(const QSqlError &error)
{
    return error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
}

QString storageName(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::LongLong:
        return QStringLiteral("an integer");
    case QMetaType::Double:
        return QStringLiteral("a real number");
    case QMetaType::QByteArray:
        return QStringLiteral("a blob");
    default:
        return QStringLiteral("a text");
    }
}

bool isPositiveNumber(const QString &text)
{
    return decimal::canConvert(text, false) && decimal(text) > decimal::zero;
}

// Why the value cannot go into the column; empty when it can.
QString refusal(const ColumnSchema &column, const QVariant &value)
{
    const bool isText = column.type.type() == FieldType::String;
    const bool isNull = value.isNull() && value.userType() != QMetaType::QByteArray;
    const bool isEmptyText = value.userType() == QMetaType::QString && value.toString().isEmpty();
    if (isNull || (isText && isEmptyText))
        return column.required ? QStringLiteral("must not be empty") : QString();
    if (value.userType() != (isText ? QMetaType::QString : QMetaType::LongLong)) {
        return QStringLiteral("holds %1, not %2")
            .arg(storageName(value),
                 isText ? QStringLiteral("a text") : QStringLiteral("an integer"));
    }
    if (isText && value.toString().size() > column.type.parameter()) {
        return QStringLiteral("the text has %1 characters, %2 are allowed")
            .arg(value.toString().size())
            .arg(column.type.parameter());
    }
    if (column.positiveNumber && !isPositiveNumber(value.toString()))
        return QStringLiteral("\"%1\" is no positive number").arg(value.toString());
    using Limits = std::numeric_limits<qint32>;
    const qint64 number = value.toLongLong();
    if (column.type.type() == FieldType::Integer &&
        (number < Limits::min() || number > Limits::max()))
        return QStringLiteral("%1 is outside the range of 32 bits").arg(number);
    return {};
}

std::shared_ptr<const QVector<SessionId>> sessionsOf(const TableContent &table)
{
    auto sessions = std::make_shared<QVector<SessionId>>();
    for (int i = 0; i < table.count(); ++i) {
        sessions->append({table.layout().cell(table.at(i), 0).toInteger(),
                          table.layout().cell(table.at(i), 1).toInteger()});
    }
    return sessions;
}

} // namespace

DatabaseLoader::DatabaseLoader(const QString &file, const std::vector<const RowLayout *> &layouts,
                               const std::atomic<bool> &cancelled, const Progress &progress)
    : m_file(file), m_layouts(layouts), m_cancelled(cancelled), m_progress(progress)
{
}

std::unique_ptr<DatabaseContent> DatabaseLoader::load()
{
    try {
        std::unique_ptr<DatabaseContent> content = readUnchanged();
        for (TableContent &table : content->tables) {
            throwIfCancelled();
            table.sort();
        }
        throwIfCancelled();
        checkContent(m_file, content->tables);
        content->directories = std::make_shared<const DirectoryData>(
            content->tables[ReferenceSchema::Stocks], content->tables[ReferenceSchema::Boards]);
        content->sessions = sessionsOf(content->tables[ReferenceSchema::Sessions]);
        content->steps =
            std::make_shared<const StepsData>(content->tables[ReferenceSchema::Securities]);
        throwIfCancelled();
        return content;
    } catch (const Cancelled &) {
        return nullptr;
    }
}

// A transaction keeps out writers that ask SQLite, and no others: a file that was written over
// while it was read, into which halves of two contents may have gone, is read again. One with a
// write-ahead log changes rightly under its readers, which see the state that they began with.
std::unique_ptr<DatabaseContent> DatabaseLoader::readUnchanged() const
{
    for (int attempt = 0; attempt < MostReads; ++attempt) {
        const FileState before{QFileInfo(m_file)};
        before.waitUntilSettled();
        try {
            Connection connection;
            open(connection.database());
            std::unique_ptr<DatabaseContent> content = read(connection.database());
            if (hasWriteAheadLog(connection.database()) || FileState(QFileInfo(m_file)) == before)
                return content;
        } catch (const Exception &) {
            if (FileState(QFileInfo(m_file)) == before)
                throw;
        }
    }
    throw Exception(QStringLiteral("%1: was changed while it was read").arg(m_file));
}

void DatabaseLoader::open(QSqlDatabase &database) const
{
    if (!QFileInfo(m_file).isFile())
        throw Exception(QStringLiteral("%1: no such file").arg(m_file));
    database.setDatabaseName(m_file);
    // A short wait for a writer that is about to finish; a load can always be repeated.
    database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=1000"));
    // A transaction, so that a writer cannot put its half between two of our tables.
    if (!database.open() || !database.transaction())
        throw Exception(QStringLiteral("%1: %2").arg(m_file, sqlReason(database.lastError())));
}

std::unique_ptr<DatabaseContent> DatabaseLoader::read(const QSqlDatabase &database) const
{
    for (const RowLayout *layout : m_layouts)
        checkColumns(database, layout->schema());
    auto content = std::make_unique<DatabaseContent>();
    for (int table = 0; table < int(m_layouts.size()); ++table)
        content->tables.push_back(readTable(database, table));
    return content;
}

void DatabaseLoader::checkColumns(const QSqlDatabase &database, const TableSchema &schema) const
{
    const QSet<QString> names = columnsOf(database, schema);
    if (names.isEmpty())
        LoadError(m_file, schema).raise(QStringLiteral("is missing"));
    for (int column = 0; column < schema.columns.size(); ++column) {
        const ColumnSchema &wanted = schema.columns.at(column);
        if (!wanted.optional && !names.contains(wanted.name))
            LoadError(m_file, schema).columns({column}).raise(QStringLiteral("is missing"));
    }
}

QSet<QString> DatabaseLoader::columnsOf(const QSqlDatabase &database,
                                        const TableSchema &schema) const
{
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("PRAGMA table_info(%1)").arg(quoted(schema.name))))
        throw Exception(QStringLiteral("%1: %2").arg(m_file, sqlReason(query.lastError())));
    QSet<QString> names;
    while (query.next())
        names.insert(query.value(1).toString().toLower());
    return names;
}

int DatabaseLoader::countRows(const QSqlDatabase &database, const TableSchema &schema) const
{
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("SELECT count(*) FROM %1").arg(quoted(schema.name))) ||
        !query.next())
        LoadError(m_file, schema).raise(sqlReason(query.lastError()));
    return query.value(0).toInt();
}

TableContent DatabaseLoader::readTable(const QSqlDatabase &database, int table) const
{
    const RowLayout &layout = *m_layouts[size_t(table)];
    const TableSchema &schema = layout.schema();
    throwIfCancelled();
    const int total = countRows(database, schema);
    m_progress(table, 0, total);

    const QSet<QString> held = columnsOf(database, schema);
    QStringList names;
    for (const ColumnSchema &column : schema.columns)
        names << (held.contains(column.name) ? quoted(column.name) : QStringLiteral("NULL"));
    QSqlQuery query(database);
    query.setForwardOnly(true);
    query.exec(
        QStringLiteral("SELECT %1 FROM %2").arg(names.join(QLatin1Char(',')), quoted(schema.name)));

    TableContent content(&layout);
    content.reserve(total);
    std::vector<StringPool> pools(size_t(schema.columns.size()));
    QVariantList values;
    while (query.next()) {
        values.clear();
        for (int column = 0; column < schema.columns.size(); ++column)
            values.append(query.value(column));
        readRow(values, layout, content.append(), pools);
        if (content.count() % 4096 == 0) {
            throwIfCancelled();
            m_progress(table, content.count(), total);
        }
    }
    if (query.lastError().isValid())
        LoadError(m_file, schema).raise(sqlReason(query.lastError()));
    m_progress(table, content.count(), total);
    return content;
}

void DatabaseLoader::readRow(const QVariantList &values, const RowLayout &layout, RowData *row,
                             std::vector<StringPool> &pools) const
{
    const TableSchema &schema = layout.schema();
    for (int column = 0; column < schema.columns.size(); ++column) {
        const QVariant &value = values.at(column);
        const QString reason = refusal(schema.columns.at(column), value);
        if (!reason.isEmpty()) {
            QVariantList keys;
            for (int key : schema.keyColumns)
                keys << values.at(key);
            LoadError(m_file, schema).columns({column}).row(keys).raise(reason);
        }
        if (value.isNull())
            continue;
        if (schema.columns.at(column).type.type() != FieldType::String)
            layout.setNumber(row, column, value.toLongLong());
        else if (!value.toString().isEmpty())
            layout.setText(row, column, pools[size_t(column)].share(value.toString()));
    }
}

void DatabaseLoader::throwIfCancelled() const
{
    if (m_cancelled)
        throw Cancelled();
}
