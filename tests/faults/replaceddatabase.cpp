// SPDX-License-Identifier: BSD-3-Clause
// A reference database that another process replaces while it is read: by renaming, writing over
// it, and in transactions. Whatever a load finds, the host holds one generation of all tables, the
// former one when the load failed.

#include <embeddedhost/embeddedhost.h>
#include <embeddedhost/referenceschema.h>
#include <hostapi/record.h>
#include <hostapi/table.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <random>

#include <poll.h>
#include <unistd.h>

namespace {

constexpr int Generations = 6;

// Each text, and the number of the session, is the generation @; the partner knows how many
// securities there are.
const QStringList Creation = {
    "CREATE TABLE stocks (stock_id, stock_code, name)",
    "INSERT INTO stocks VALUES (1, '@', '@')",
    "CREATE TABLE boards (stock_id, board_id, board_code, name, sectype, flags, position)",
    "INSERT INTO boards VALUES (1, 7, '@', '@', NULL, 0, 0)",
    "CREATE TABLE securities (stock_id, board_id, sec_id, sec_code, sec_name, base_code, sess_id)",
    "WITH RECURSIVE n(i) AS (SELECT # UNION ALL SELECT i - 1 FROM n WHERE i > 1) "
    "INSERT INTO securities SELECT 1, 7, i, '@', '@', '@', 1 FROM n",
    "CREATE TABLE \"gx.diler\" (mox_code, client_code, name)",
    "INSERT INTO \"gx.diler\" VALUES ('@', '#', '@')",
    "CREATE TABLE sessions (stock_id, sess_id)",
    "INSERT INTO sessions VALUES (1, @)"};
const QStringList Update = {"UPDATE stocks SET stock_code = '@', name = '@'",
                            "UPDATE boards SET board_code = '@', name = '@'",
                            "UPDATE securities SET sec_code = '@', sec_name = '@', base_code = '@'",
                            "UPDATE \"gx.diler\" SET mox_code = '@', name = '@'",
                            "UPDATE sessions SET sess_id = @"};

void demand(bool holds, const QString &what)
{
    if (!holds)
        qFatal("%s", qPrintable(what));
}

QString generationFile(const QString &folder, int generation)
{
    return QString("%1/%2").arg(folder).arg(generation);
}

// Runs statements in one transaction, with a pause before its end.
void change(const QString &file, const QStringList &statements, int generation, int pause,
            const QString &pragma = "PRAGMA wal_autocheckpoint = 1")
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "writer");
        database.setDatabaseName(file);
        database.setConnectOptions("QSQLITE_BUSY_TIMEOUT=60000");
        demand(database.open(), "not opened");
        QSqlQuery query(database);
        query.exec("PRAGMA synchronous = OFF");
        demand(query.exec(pragma), query.lastError().text());
        query.finish();
        demand(query.exec("BEGIN IMMEDIATE"), query.lastError().text());
        for (QString statement : statements) {
            statement.replace('@', QString::number(generation));
            demand(query.exec(statement.replace('#', QString::number(1000 + 40 * generation))),
                   query.lastError().text());
        }
        QThread::msleep(pause);
        demand(query.exec("COMMIT"), query.lastError().text());
    }
    QSqlDatabase::removeDatabase("writer");
}

// The other process: replaces the file in every way, until its input ends.
class Replacer
{
public:
    Replacer(const QString &folder, const QString &way)
        : m_folder(folder), m_file(folder + "/reference"), m_onlyTransactions(way == "logged")
    {
    }

    void run()
    {
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        while (poll(&input, 1, m_onlyTransactions ? 1 : upTo(120)) == 0) {
            const int kind = m_onlyTransactions ? 2 : m_count % 3;
            ++m_count;
            const int generation = 10 + upTo(Generations);
            const QByteArray bytes = contentOf(generationFile(m_folder, generation));
            if (kind == 0) {
                rename(generation);
            } else if (kind == 1) {
                overWrite(bytes);
            } else {
                change(m_file, Update, 20 + upTo(70), m_onlyTransactions ? 0 : upTo(20));
            }
        }
        std::printf("%d", m_count);
    }

private:
    int upTo(int end) { return int(m_random() % unsigned(end)); }
    static QByteArray contentOf(const QString &name)
    {
        QFile file(name);
        demand(file.open(QFile::ReadOnly), "no generation");
        return file.readAll();
    }
    void rename(int generation) const
    {
        const QString next = m_file + ".next";
        demand(QFile::copy(generationFile(m_folder, generation), next) &&
                   ::rename(QFile::encodeName(next), QFile::encodeName(m_file)) == 0,
               "not renamed");
    }
    // As a copying program does, piece by piece.
    void overWrite(const QByteArray &bytes) const
    {
        QFile file(m_file);
        demand(file.open(QFile::ReadWrite | QFile::Unbuffered), "not opened");
        for (int done = 0; done < bytes.size(); done += 8192)
            file.write(bytes.mid(done, 8192));
        file.resize(bytes.size());
    }

    const QString m_folder;
    const QString m_file;
    const bool m_onlyTransactions;
    std::minstd_rand m_random{1};
    int m_count = 0;
};

// The one generation that all tables and directories hold.
QString generationOf(EmbeddedHost &host)
{
    const TableLock lock(host.table("stocks"));
    QString generation = host.stockDirectory()->codeById(1);
    const QVector<SessionId> sessions = host.currentSessions();
    demand(host.boardDirectory()->codeById(1, 7) == generation && sessions.size() == 1 &&
               QString::number(sessions[0].sess_id) == generation,
           "a directory is not of the tables' generation");
    int rows = 0;
    int securities = 0;
    for (const TableSchema &schema : ReferenceSchema::tables()) {
        Table *const table = host.table(schema.name);
        for (const Record &row : *table->masterIndex()) {
            ++rows;
            for (int column = 0; column < schema.columns.size(); ++column) {
                const Field cell = row.field(column);
                const bool tells = schema.columns[column].type.type() == FieldType::String;
                if (schema.columns[column].name == "client_code")
                    securities = cell.toString().toInt();
                else if (tells && !cell.isNull())
                    demand(cell.toString() == generation,
                           schema.name + ": generations " + generation + ", " + cell.toString());
            }
        }
    }
    demand(host.table("securities")->masterIndex()->count() == securities, "rows are missing");
    demand(host.liveRows() == rows, "rows are kept");
    return generation;
}

// Loads so many times while another process replaces the file; how many loads failed.
int failedLoads(EmbeddedHost &host, const QString &folder, const QString &way, int loads)
{
    const QString file = host.file();
    QProcess replacer;
    replacer.start(QCoreApplication::applicationFilePath(), {"replace", folder, way});
    QString generation = generationOf(host);
    int failed = 0;
    int changes = 0;
    QEventLoop loop;
    QObject::connect(&host, &EmbeddedHost::loaded, &loop, &QEventLoop::quit);
    QObject::connect(&host, &EmbeddedHost::failed, &loop, &QEventLoop::quit);
    for (int load = 0; load < loads; ++load) {
        if (load % 2 == 0) {
            host.loadNow(file);
        } else {
            host.reload();
            loop.exec();
        }
        const QString now = generationOf(host);
        if (!host.errorText().isEmpty()) {
            demand(now == generation, "a failed load has changed the content");
            demand(host.errorText().startsWith(file + ": "), host.errorText());
            ++failed;
        }
        changes += now != generation;
        generation = now;
    }
    replacer.closeWriteChannel();
    demand(replacer.waitForFinished() && replacer.exitCode() == 0, replacer.readAllStandardError());
    std::printf("%s replacements, %d loads, %d new generations\n",
                replacer.readAllStandardOutput().data(), loads, changes);
    demand(changes > 0, "nothing has changed");
    return failed;
}

} // namespace

int main(int count, char **arguments)
{
    QCoreApplication app(count, arguments);
    if (count > 3) {
        Replacer(QString::fromLocal8Bit(arguments[2]), QString(arguments[3])).run();
        return 0;
    }
    const int loads = count > 1 ? atoi(arguments[1]) : 100;
    const QTemporaryDir folder;
    for (int i = 0; i < Generations; ++i)
        change(generationFile(folder.path(), 10 + i), Creation, 10 + i, 0);
    const QString file = folder.filePath("reference");
    QFile::copy(generationFile(folder.path(), 10), file);
    EmbeddedHost host;
    demand(host.loadNow(file), host.errorText());
    failedLoads(host, folder.path(), "anyhow", loads);

    // The log is copied into the file under the eyes of its readers.
    QFile::remove(file);
    QFile::copy(generationFile(folder.path(), 10), file);
    change(file, Update, 10, 0, "PRAGMA journal_mode = WAL");
    demand(host.loadNow(file), host.errorText());
    demand(failedLoads(host, folder.path(), "logged", loads) == 0,
           "a load failed beside a write-ahead log");
    return 0;
}
