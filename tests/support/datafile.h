#pragma once

#include <QFile>
#include <QStringList>
#include <QtTest>

// A row of a table beside the tests.
struct DataRow : QStringList
{
    QString file;
    int line = 0; // where it begins
};

// The rows of a file: columns parted by tabs, "-" for nothing, lines that begin with '#' left out;
// \t, \r and \n are read as such, and %long as many characters. A line that begins with a tab goes
// on with the row before.
inline QList<DataRow> rowsOf(const QString &name)
{
    QFile file(DATA_FOLDER "/" + name);
    QList<DataRow> rows;
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no %s", qPrintable(file.fileName()));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString &line = lines.at(i);
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const bool goesOn = line.startsWith('\t') && !rows.isEmpty();
        if (!goesOn) {
            rows << DataRow();
            rows.last().file = name;
            rows.last().line = i + 1;
        }
        const QStringList cells = line.mid(goesOn ? 1 : 0).split('\t');
        for (QString cell : cells) {
            if (cell == "-")
                cell.clear();
            cell.replace("\\t", "\t").replace("\\r", "\r").replace("\\n", "\n");
            rows.last() << cell.replace("%long", QString(20000, 'x'));
        }
    }
    return rows;
}
