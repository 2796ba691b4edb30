// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

/// The result of a process of bench_selectors: one operation of one kind of box over one database.
/// Times are in milliseconds; memory is in megabytes beyond what the host holds.
struct SelectorFigure
{
    double median = 0;
    double worst = 0;

    QByteArray toLine() const;
    /// Reads what toLine() writes; false for any other line.
    static bool fromLine(const QByteArray &line, SelectorFigure *figure);
};

/// Sides:      "ours" is the selector box, "stock" Qt's own classes put together as a box, "bare" a
///             loop that reads the rows into a vector and sorts it.
/// Operations: "type", "typeAlike", "narrow", "board", "clear", "openFirst", "openFar", "search",
///             "id", "code", "populate", "memory", "memoryShared" and "memoryRefreshed"; for
///             "bare" only "populate" and those about memory.
SelectorFigure measureSelector(const QString &side, const QString &operation,
                               const QString &database);

/// Reads the securities of the core that is installed into a vector and sorts it.
void readAndSort();
