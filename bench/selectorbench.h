// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

/// What one process of bench_selectors measures: one operation of one kind of box over one
/// database. Times are in milliseconds, memory in megabytes over what the host holds.
struct SelectorFigure
{
    double median = 0;
    double worst = 0;

    QByteArray toLine() const;
    /// False for a line that toLine() has not made.
    static bool fromLine(const QByteArray &line, SelectorFigure *figure);
};

/// Sides:      "ours" the selector box, "stock" Qt's own classes wired as a box, "bare" a loop
///             that reads the rows into a vector and sorts it.
/// Operations: "type", "typeAlike", "narrow", "board", "clear", "openFirst", "openFar", "search",
///             "id", "code", "populate", "memory", "memoryShared" and "memoryRefreshed"; a bare
///             loop has those about populating and memory.
SelectorFigure measureSelector(const QString &side, const QString &operation,
                               const QString &database);

/// Reads the securities of the core that is installed into a vector and sorts it.
void readAndSort();
