// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QFile>
#include <QStringList>
#include <QtTest>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/// A row of a table beside the tests.
struct DataRow : QStringList
{
    QString file;
    int line = 0; ///< where it begins
};

/// The rows of a file: columns parted by tabs, "-" for nothing, lines that begin with '#' left out;
/// \t, \r and \n are read as such, <nbsp> and <nnbsp> as blanks that do not break, and %long as
/// many characters. A line that begins with a tab goes
/// on with the row before; one that begins with "qt5:" or "qt6:" is for that Qt alone.
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
            cell.replace("<nbsp>", QChar(0x00a0)).replace("<nnbsp>", QChar(0x202f));
            rows.last() << cell.replace("%long", QString(20000, 'x'));
        }
    }
    return rows;
}

/// Checks many rows at a time, as most of them wait most of the time. A check returns what is
/// wrong; the result tells it of every row.
inline QByteArray faultsOf(const QList<DataRow> &rows,
                           const std::function<QString(const QStringList &)> &check,
                           int threadCount = 16)
{
    std::atomic<int> next{0};
    std::mutex mutex;
    QStringList faults;
    std::vector<std::thread> threads;
    threads.reserve(size_t(threadCount));
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (int at = next++; at < rows.size(); at = next++) {
                const QString fault = check(rows[at]);
                const std::lock_guard<std::mutex> guard(mutex);
                if (!fault.isEmpty())
                    faults << QString("%1:%2: ").arg(rows[at].file).arg(rows[at].line) + fault;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    return faults.join('\n').toUtf8();
}
