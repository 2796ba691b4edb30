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
    /// The columns whose values together are different in each row. Rows are listed in their order.
    QVector<int> keyColumns;
    /// Further columns whose values together are different in each row; empty for none.
    QVector<int> uniqueColumns;
    /// The position in ReferenceSchema::tables() of the parent table, or -1. For each row of this
    /// table the parent must have a row with equal values in the parent's key columns.
    int parent = -1;

    /// The position of a named column (exact letter case), or -1.
    int columnIndex(const QString &column) const;
};

/// What a reference database holds. A SQLite file for EmbeddedHost has these tables, or views of
/// these names, with at least these columns. Other tables and columns are ignored.
///
///     stocks      exchanges     stock_id, stock_code, name
///     boards      boards        stock_id, board_id, board_code, name, sectype, flags, position
///     securities  securities    stock_id, board_id, sec_id, sec_code, sec_name, base_code,
///                               sess_id; optional: price_step, lot
///     gx.diler    partners      mox_code, client_code, name
///     sessions    the sessions that are open to trading: stock_id, sess_id
///
/// - The keys are, table by table: stock_id; stock_id and board_id; stock_id, board_id and sec_id;
///   mox_code; stock_id and sess_id.
/// - Each stock_code is unique, and each board_code within its exchange. A board's exchange, a
///   security's board and a session's exchange must be in the database.
/// - `flags` has the bits of BoardDirectory::checkFlagsById(). `position` is 1 if positions are
///   kept on the board, otherwise 0.
/// - Integers must be stored as INTEGER and texts as TEXT, whatever the table declares. The types
///   are those of FieldsTypes and, for "gx.diler", of Gexabus::GxFieldsTypes. For the columns that
///   these do not have, texts are up to 25 (base_code, mox_code), 20 (board_code) or 80 characters
///   (name) long; flags has 64 bits, position 32.
/// - Quote the name "gx.diler" in SQL, as it has a point.
/// - An optional column may be missing. price_step is the least change of a security's price, as a
///   TEXT in system form ("0.05"), because a number with a fraction would not be exact; lot is the
///   quantity of one lot, as an INTEGER.
class EMBEDDEDHOST_EXPORT ReferenceSchema
{
public:
    /// Positions in tables().
    enum TableId { Stocks, Boards, Securities, Partners, Sessions };
    /// The tables in the order of TableId: parents before their children.
    static const QVector<TableSchema> &tables();
};
