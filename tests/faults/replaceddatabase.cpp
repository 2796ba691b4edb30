// SPDX-License-Identifier: BSD-3-Clause
// A reference database that another process, replacer.py, replaces while it is read: by renaming,
// writing over it, cutting it short, deleting it, and in transactions. Whatever a load finds, the
// host holds one generation of all tables, the former one when the load failed.

#include <embeddedhost/embeddedhost.h>
#include <embeddedhost/referenceschema.h>
#include <hostapi/record.h>
#include <hostapi/table.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace {

void demand(bool holds, const QString &what)
{
    if (!holds)
        qFatal("%s", qPrintable(what));
}

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
    replacer.start("/usr/bin/python3", {REPLACER, "replace", folder, way});
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
    std::printf("%d replacements, %d loads, %d new generations\n",
                replacer.readAllStandardOutput().trimmed().toInt(), loads, changes);
    demand(changes > 0, "nothing has changed");
    return failed;
}

} // namespace

int main(int count, char **arguments)
{
    const QCoreApplication app(count, arguments);
    const int loads = count > 1 ? atoi(arguments[1]) : 100;
    const QTemporaryDir folder;
    EmbeddedHost host;
    // With a log, that is copied into the file under the eyes of its readers.
    for (const QString way : {"anyhow", "logged"}) {
        demand(QProcess::execute("/usr/bin/python3", {REPLACER, "make", folder.path(), way}) == 0,
               "not made");
        demand(host.loadNow(folder.filePath("reference")), host.errorText());
        const int failed = failedLoads(host, folder.path(), way, loads);
        demand(way != "logged" || failed == 0, "a load failed beside a write-ahead log");
    }
    return 0;
}
