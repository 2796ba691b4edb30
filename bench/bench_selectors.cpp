// SPDX-License-Identifier: BSD-3-Clause
// The security box, beside Qt's own classes put together as such a box (an editable QComboBox with
// a QCompleter over a QSortFilterProxyModel) and beside a plain loop over the table. Each
// measurement has a process of its own.
//
//     bench_selectors                    everything, a quarter of an hour
//     bench_selectors --sizes 10000      a smoke run
//     bench_selectors --only type,clear  these operations

#include "selectorbench.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLocale>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <cstdio>
#include <stdexcept>

namespace {

struct Operation
{
    const char *name;
    const char *title;
    bool hasBareLoop;
};

constexpr Operation Operations[] = {
    {"type", "a key of a typed name", false},
    {"typeAlike", "a key of a name with 7 letters as all have", false},
    {"narrow", "changing the board, all rows to one board", false},
    {"board", "changing the board, one to another", false},
    {"clear", "clearing the board, one board to all rows", false},
    {"openFirst", "opening the list, first row", false},
    {"openFar", "opening the list, far row", false},
    {"search", "a letter typed in the open list", false},
    {"id", "choosing by id", false},
    {"code", "choosing by code", false},
    {"populate", "populating", true},
    {"memory", "peak memory, own texts in the vector", true},
    {"memoryShared", "peak memory, the host's texts in the vector", true},
    {"memoryRefreshed", "peak memory with a refresh", true},
};

struct Result
{
    SelectorFigure figure;
    bool isKnown = false;
    QString remark;
};

// Runs this program for one measurement.
Result run(const QString &side, const QString &operation, const QString &database, int seconds)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--measure"), side, operation, database});
    Result result;
    if (!process.waitForFinished(seconds * 1000)) {
        process.kill();
        process.waitForFinished();
        result.remark = QStringLiteral("over %1 s").arg(seconds);
        return result;
    }
    result.isKnown = SelectorFigure::fromLine(process.readAllStandardOutput(), &result.figure);
    if (!result.isKnown)
        std::fputs(process.readAllStandardError().constData(), stderr);
    result.remark = QStringLiteral("failed");
    return result;
}

void makeDatabase(const QString &file, int securities)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QStringLiteral(MKDB),
                  {QStringLiteral("--securities"), QString::number(securities),
                   QStringLiteral("--per-board"), QStringLiteral("1000"), file});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        throw std::runtime_error("no database could be made");
}

// Gives the securities names that differ only in their last seven characters, like series of one
// underlying.
void makeNamesAlike(const QString &file)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), file);
        database.setDatabaseName(file);
        if (!database.open() ||
            !database
                 .exec(QStringLiteral("UPDATE securities SET sec_name = "
                                      "substr('SERIES Series series ', 1 + 7 * (sec_id % 3), 7)"
                                      " || printf('%07d', sec_id * 7919 % 1000003)"))
                 .isActive())
            throw std::runtime_error("the names could not be made alike");
    }
    QSqlDatabase::removeDatabase(file);
}

QString databaseFor(const QString &operation, int size, const QString &folder)
{
    const bool namesAlike = operation == QLatin1String("typeAlike");
    QString file = QStringLiteral("%1/%2%3.sqlite")
                       .arg(folder)
                       .arg(size)
                       .arg(QLatin1String(namesAlike ? "-alike" : ""));
    if (!QFile::exists(file)) {
        makeDatabase(file, size);
        if (namesAlike)
            makeNamesAlike(file);
    }
    return file;
}

bool isMemory(const QString &operation)
{
    return operation.startsWith(QLatin1String("memory"));
}

QString shown(const Result &result, const QString &operation)
{
    if (!result.isKnown)
        return result.remark;
    const SelectorFigure &figure = result.figure;
    if (isMemory(operation))
        return QStringLiteral("%1 MB").arg(figure.median, 0, 'f', 1);
    return QStringLiteral("%1 / %2 ms").arg(figure.median, 0, 'f', 3).arg(figure.worst, 0, 'f', 3);
}

QString ratio(const Result &over, const Result &under)
{
    if (!over.isKnown || !under.isKnown)
        return QString();
    return QStringLiteral("%1 x").arg(over.figure.median / under.figure.median, 0, 'f', 2);
}

void printRow(const QStringList &cells)
{
    QString line = QStringLiteral("%1 %2 %3 %4 %5 %6 %7");
    static constexpr int widths[] = {-44, 10, 22, 24, 11, 22, 10};
    for (int i = 0; i < cells.size(); ++i)
        line = line.arg(cells.at(i), widths[i]);
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void compare(const QVector<int> &sizes, const QStringList &operations, const QString &folder,
             int seconds)
{
    std::printf("Times: median / worst. Memory: over what the host holds.\n");
    printRow({"", "securities", "ours", "stock Qt", "stock:ours", "bare loop", "ours:bare"});
    for (const Operation &operation : Operations) {
        const QString name = QLatin1String(operation.name);
        if (!operations.isEmpty() && !operations.contains(name))
            continue;
        for (const int size : sizes) {
            const QString database = databaseFor(name, size, folder);
            const auto measure = [&](const char *side) {
                return run(QLatin1String(side), name, database, seconds);
            };
            const Result ours = measure("ours");
            const Result stock = measure("stock");
            const Result bare = operation.hasBareLoop ? measure("bare") : Result();
            printRow({operation.title, QLocale::c().toString(size), shown(ours, name),
                      shown(stock, name), ratio(stock, ours), shown(bare, name),
                      ratio(ours, bare)});
        }
    }
}

int measure(const QStringList &arguments)
{
    const SelectorFigure figure =
        measureSelector(arguments.at(0), arguments.at(1), arguments.at(2));
    std::fputs(figure.toLine().constData(), stdout);
    return 0;
}

int runFrom(const QApplication &application)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("sizes"), QStringLiteral("Numbers of securities, by commas."),
         QStringLiteral("numbers"), QStringLiteral("10000,100000,1000000")},
        {QStringLiteral("only"), QStringLiteral("Operations, by commas."),
         QStringLiteral("operations")},
        {QStringLiteral("limit"), QStringLiteral("Seconds after which a measurement is given up."),
         QStringLiteral("seconds"), QStringLiteral("60")},
        {QStringLiteral("databases"),
         QStringLiteral("A folder in which to make the databases, or to find them again."),
         QStringLiteral("folder")},
        {QStringLiteral("measure"), QStringLiteral("One measurement, of this process.")},
    });
    parser.addPositionalArgument(QStringLiteral("side operation database"),
                                 QStringLiteral("What to measure."));
    parser.process(application);
    if (parser.isSet(QStringLiteral("measure")))
        return measure(parser.positionalArguments());

    QVector<int> sizes;
    for (const QString &size : parser.value(QStringLiteral("sizes")).split(','))
        sizes << size.toInt();
    const QTemporaryDir temporary;
    const QString folder = parser.isSet(QStringLiteral("databases"))
                               ? parser.value(QStringLiteral("databases"))
                               : temporary.path();
    compare(sizes, parser.value(QStringLiteral("only")).split(',', Qt::SkipEmptyParts), folder,
            parser.value(QStringLiteral("limit")).toInt());
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    try {
        return runFrom(application);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench_selectors: %s\n", error.what());
        return 1;
    }
}
