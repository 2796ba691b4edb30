// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QString>

/// The exchanges by id and code. Asked on the forms' thread, inside a walk of any table too and
/// while another thread walks one: a host must answer without waiting for a table's lock.
class HOSTAPI_EXPORT StockDirectory
{
public:
    virtual ~StockDirectory();
    /// That of the installed core; never null.
    static const StockDirectory *i();

    /// The code of an exchange, empty for an unknown id.
    virtual QString codeById(int stockId) const = 0;
    /// The id of an exchange (exact code), 0 for an unknown code.
    virtual int idByCode(const QString &stockCode) const = 0;
};

/// The trading boards by exchange and board, with what the host knows of each. Asked as
/// StockDirectory is.
class HOSTAPI_EXPORT BoardDirectory
{
public:
    virtual ~BoardDirectory();
    /// That of the installed core; never null.
    static const BoardDirectory *i();

    /// The code of a board, empty for an unknown one.
    virtual QString codeById(int stockId, int boardId) const = 0;
    /// The id of a board (exact codes), 0 for an unknown one.
    virtual int idByCode(const QString &stockCode, const QString &boardCode) const = 0;
    /// True when the board is known and carries at least one of the flag bits. What the bits
    /// mean is the host's affair.
    virtual bool checkFlagsById(int stockId, int boardId, qint64 flags) const = 0;
    /// True when positions are kept on the board.
    virtual bool isPositionById(int stockId, int boardId) const = 0;
};
