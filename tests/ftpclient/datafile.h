#pragma once

#include <QFile>
#include <QStringList>
#include <QtTest>

// The rows of a table beside the tests: columns parted by tabs, "-" for nothing, lines that begin
// with '#' left out; \t, \r and \n are read as such, and %long as many characters.
inline QList<QStringList> rowsOf(const QString &name)
{
    QFile file(DATA_FOLDER "/" + name);
    QList<QStringList> rows;
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no %s", qPrintable(file.fileName()));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (line.startsWith('#'))
            continue;
        QStringList cells = line.split('\t');
        for (QString &cell : cells) {
            if (cell == "-")
                cell.clear();
            cell.replace("\\t", "\t").replace("\\r", "\r").replace("\\n", "\n");
            cell.replace("%long", QString(20000, 'x'));
        }
        rows << cells;
    }
    return rows;
}
