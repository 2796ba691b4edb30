// SPDX-License-Identifier: BSD-3-Clause
// formkit-mkdb makes reference databases for the embedded host, from CSV files or with invented
// data.

#include "csvimport.h"
#include "databasewriter.h"
#include "datagenerator.h"

#include <hostapi/exception.h>

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace {

struct Arguments
{
    QString folder;
    int securities = 0;
    quint64 seed = 1;
    int perBoard = 1000;
    QString database;
};

// The number of an option. Ends the program if it is none.
quint64 number(const QCommandLineParser &parser, const QString &option, quint64 least, quint64 most)
{
    bool ok = false;
    const quint64 value = parser.value(option).toULongLong(&ok);
    if (!ok || value < least || value > most)
        throw Exception(QStringLiteral("--%1: \"%2\" is no number of %3 to %4")
                            .arg(option, parser.value(option))
                            .arg(least)
                            .arg(most));
    return value;
}

Arguments readArguments(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Makes a reference database from a folder of CSV files or, with "
                       "--securities, one of any size with invented content."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("csv"), QStringLiteral("Folder with a CSV file for each table."),
         QStringLiteral("folder")},
        {QStringLiteral("securities"), QStringLiteral("How many securities to invent."),
         QStringLiteral("number")},
        {QStringLiteral("seed"), QStringLiteral("Another seed gives other securities."),
         QStringLiteral("number"), QStringLiteral("1")},
        {QStringLiteral("per-board"), QStringLiteral("Invented securities on each board."),
         QStringLiteral("number"), QStringLiteral("1000")},
    });
    parser.addPositionalArgument(QStringLiteral("database"), QStringLiteral("The file to make."));
    parser.process(application);
    if (parser.positionalArguments().size() != 1 ||
        parser.isSet(QStringLiteral("csv")) == parser.isSet(QStringLiteral("securities")))
        parser.showHelp(2);

    Arguments arguments;
    arguments.database = parser.positionalArguments().constFirst();
    arguments.folder = parser.value(QStringLiteral("csv"));
    if (parser.isSet(QStringLiteral("securities")))
        arguments.securities = int(number(parser, QStringLiteral("securities"), 1, 100000000));
    arguments.seed = number(parser, QStringLiteral("seed"), 0, ~quint64(0));
    arguments.perBoard = int(number(parser, QStringLiteral("per-board"), 1, 100000000));
    return arguments;
}

void make(const Arguments &arguments)
{
    DatabaseWriter writer(arguments.database);
    if (arguments.securities > 0)
        DataGenerator(arguments.securities, arguments.seed, arguments.perBoard).write(writer);
    else
        importCsv(arguments.folder, writer);
    writer.finish();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    try {
        make(readArguments(application));
        return 0;
    } catch (const Exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
