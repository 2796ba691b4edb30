// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QFile>
#include <QStringList>
#include <QtTest>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

/// A row of a table beside the tests.
struct DataRow : QStringList
{
    QString file;
    int line = 0; ///< where it begins
};

/// The rows of a file: columns parted by tabs, "-" for nothing, lines that begin with '#' left out;
/// \t, \r, \n and \e are read as such, <nbsp> and <nnbsp> as blanks that do not break, <lrm> as a
/// direction mark, and %long as many characters. A line that begins with a tab goes on with the row
/// before; one that begins with "qt5:" or "qt6:" is for that Qt alone.
inline QList<DataRow> rowsOf(const QString &name)
{
    QFile file(DATA_FOLDER "/" + name);
    QList<DataRow> rows;
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no %s", qPrintable(file.fileName()));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        QString line = lines.at(i);
        if (line.startsWith("qt5:") || line.startsWith("qt6:"))
            line = line.at(2) == QT_VERSION_STR[0] ? line.mid(4) : QString();
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
            cell.replace("\\e", "\x1b");
            cell.replace("<nbsp>", QChar(0x00a0)).replace("<nnbsp>", QChar(0x202f));
            cell.replace("<lrm>", QChar(0x200e));
            rows.last() << cell.replace("%long", QString(20000, 'x'));
        }
    }
    return rows;
}

/// Checks many rows at a time, as most of them wait most of the time. A check returns what is
/// wrong, which is printed with the row's place; the result is how many rows failed.
inline int faultsOf(const QList<DataRow> &rows,
                    const std::function<QString(const QStringList &)> &check, int threadCount = 16)
{
    std::atomic<int> next{0};
    std::atomic<int> faults{0};
    std::vector<std::thread> threads;
    threads.reserve(size_t(threadCount));
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (int at = next++; at < rows.size(); at = next++) {
                const QString fault = check(rows[at]);
                faults += !fault.isEmpty();
                if (!fault.isEmpty())
                    qInfo("%s:%d: %s", qPrintable(rows[at].file), rows[at].line, qPrintable(fault));
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    return faults;
}
