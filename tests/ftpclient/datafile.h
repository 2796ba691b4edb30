#pragma once

#include <QFile>
#include <QStringList>
#include <QtTest>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

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

// Checks many rows at a time, as most of them wait most of the time. A check returns what is
// wrong; the result tells it of every row.
inline QByteArray faultsOf(const QList<QStringList> &rows,
                           const std::function<QString(const QStringList &)> &check,
                           int threadCount = 16)
{
    std::atomic<int> next{0};
    std::mutex mutex;
    QStringList faults;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (int at = next++; at < rows.size(); at = next++) {
                const QString fault = check(rows[at]);
                const std::lock_guard<std::mutex> guard(mutex);
                if (!fault.isEmpty())
                    faults << rows[at].join(" | ").left(200) + ": " + fault;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    return faults.join('\n').toUtf8();
}
