// SPDX-License-Identifier: BSD-3-Clause
#include "referenceschema.h"

#include <hostapi/fieldstypes.h>

#include <QStringList>

namespace {

FieldType typeOf(const QString &table, const QString &column)
{
    static const QVector<NamedFieldType> own = {
        {QStringLiteral("base_code"), {FieldType::String, 25}},
        {QStringLiteral("board_code"), {FieldType::String, 20}},
        {QStringLiteral("mox_code"), {FieldType::String, 25}},
        {QStringLiteral("name"), {FieldType::String, 80}},
        {QStringLiteral("flags"), {FieldType::Integer64}},
        {QStringLiteral("position"), {FieldType::Integer}},
        {QStringLiteral("price_step"), {FieldType::String, 20}},
        {QStringLiteral("lot"), {FieldType::Integer64}},
    };
    if (table.startsWith(QLatin1String("gx."))) {
        if (const FieldType *gateway = Gexabus::GxFieldsTypes::find(column))
            return *gateway;
    }
    if (const FieldType *standard = FieldsTypes::find(column))
        return *standard;
    for (const NamedFieldType &entry : own) {
        if (entry.name == column)
            return entry.type;
    }
    Q_UNREACHABLE();
    return {};
}

// A column whose name ends in '!' is required, one that ends in '?' optional.
TableSchema makeTable(const char *name, const char *columns, const QVector<int> &keyColumns,
                      const QVector<int> &uniqueColumns, int parent)
{
    TableSchema table{QLatin1String(name), {}, keyColumns, uniqueColumns, parent};
    const QStringList names = QString::fromLatin1(columns).split(QLatin1Char(' '));
    for (QString column : names) {
        const bool required = column.endsWith(QLatin1Char('!'));
        const bool optional = column.endsWith(QLatin1Char('?'));
        if (required || optional)
            column.chop(1);
        table.columns.append({column, typeOf(table.name, column), required, optional,
                              column == QLatin1String("price_step")});
    }
    return table;
}

} // namespace

int TableSchema::columnIndex(const QString &column) const
{
    for (int i = 0; i < columns.size(); ++i) {
        if (columns.at(i).name == column)
            return i;
    }
    return -1;
}

const QVector<TableSchema> &ReferenceSchema::tables()
{
    static const QVector<TableSchema> schema = {
        makeTable("stocks", "stock_id! stock_code! name", {0}, {1}, -1),
        makeTable("boards", "stock_id! board_id! board_code! name sectype flags position", {0, 1},
                  {0, 2}, Stocks),
        makeTable(
            "securities",
            "stock_id! board_id! sec_id! sec_code sec_name base_code sess_id price_step? lot?",
            {0, 1, 2}, {}, Boards),
        makeTable("gx.diler", "mox_code! client_code name", {0}, {}, -1),
        makeTable("sessions", "stock_id! sess_id!", {0, 1}, {}, Stocks),
    };
    return schema;
}
