// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <embeddedhost/embeddedhost_export.h>
#include <hostapi/fieldtype.h>

#include <QString>
#include <QVector>

/// One column of a reference table.
struct ColumnSchema
{
    QString name;
    FieldType type;
    /// A row without a value here (NULL, or an empty text) is an error.
    bool required = false;
    /// A table may lack it: every row is without a value then.
    bool optional = false;
    /// The text is a positive number in system form.
    bool positiveNumber = false;
};

/// One reference table.
struct EMBEDDEDHOST_EXPORT TableSchema
{
    QString name;
    QVector<ColumnSchema> columns;
    /// The columns that tell the rows apart, and in whose order the rows are listed.
    QVector<int> keyColumns;
    /// Columns that together tell the rows apart as well; empty for none.
    QVector<int> uniqueColumns;
    /// The position in ReferenceSchema::tables() of the table that must hold a row for each row
    /// of this one, with equal values in the columns that are that table's key; -1 for none.
    int parent = -1;

    /// The position of a named column (exact letter case), or -1.
    int columnIndex(const QString &column) const;
};

/// What a reference database holds. A SQLite file for EmbeddedHost has these tables (or views
/// of these names) with at least these columns; other tables and columns are ignored. The
/// table "gx.diler" has a point in its name: quote it in SQL.
///
///     stocks      exchanges     stock_id, stock_code, name
///     boards      boards        stock_id, board_id, board_code, name, sectype, flags, position
///     securities  securities    stock_id, board_id, sec_id, sec_code, sec_name, base_code,
///                               sess_id; optional: price_step, lot
///     gx.diler    partners      mox_code, client_code, name
///     sessions    the sessions that are open to trading: stock_id, sess_id
///
/// Keys are stock_id; stock_id and board_id; stock_id, board_id and sec_id; mox_code; stock_id
/// and sess_id. stock_code is unique, board_code is within an exchange. A board's exchange, a
/// security's board and a session's exchange must be there. `flags` are the bits that
/// BoardDirectory::checkFlagsById() asks for, `position` is 1 where positions are kept and 0
/// elsewhere.
///
/// The types are those of FieldsTypes and, for "gx.diler", Gexabus::GxFieldsTypes. Of the
/// columns that these lack, base_code is as long as a security's code (25 characters),
/// board_code as an exchange's (20), mox_code 25, name 80; flags has 64 bits, position 32.
/// Integers must be stored as INTEGER and texts as TEXT, whatever type the table declares.
///
/// An optional column may be missing. price_step is the least change of a security's price, as a
/// TEXT in system form ("0.05"), because a number with a fraction would not be exact; lot is the
/// quantity of one lot, as an INTEGER.
class EMBEDDEDHOST_EXPORT ReferenceSchema
{
public:
    /// The tables by their position in tables().
    enum TableId { Stocks, Boards, Securities, Partners, Sessions };
    /// In the order of TableId: a parent stands before its children.
    static const QVector<TableSchema> &tables();
};
