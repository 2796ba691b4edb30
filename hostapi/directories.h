// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QString>

/// Looks up exchanges by id and code. Called on the forms' thread, also while a table is locked, by
/// this thread or by a worker: a host must answer without waiting for a table's lock.
class HOSTAPI_EXPORT StockDirectory
{
public:
    virtual ~StockDirectory();
    /// The one of the installed core; never null.
    static const StockDirectory *i();

    /// The code of an exchange; empty for an unknown id.
    virtual QString codeById(int stockId) const = 0;
    /// The id of an exchange (exact code), 0 for an unknown code.
    virtual int idByCode(const QString &stockCode) const = 0;
};

/// Looks up trading boards by exchange and board. Called as StockDirectory is.
class HOSTAPI_EXPORT BoardDirectory
{
public:
    virtual ~BoardDirectory();
    /// The one of the installed core; never null.
    static const BoardDirectory *i();

    /// The code of a board, empty for an unknown one.
    virtual QString codeById(int stockId, int boardId) const = 0;
    /// The id of a board (exact codes), 0 for an unknown one.
    virtual int idByCode(const QString &stockCode, const QString &boardCode) const = 0;
    /// True when the board is known and has at least one of the flag bits. The host decides what
    /// the bits mean.
    virtual bool checkFlagsById(int stockId, int boardId, qint64 flags) const = 0;
    /// True when positions are kept on the board.
    virtual bool isPositionById(int stockId, int boardId) const = 0;
};
