// SPDX-License-Identifier: BSD-3-Clause
#include "csvimport.h"

#include "csvreader.h"
#include "databasewriter.h"

#include <hostapi/decimal.h>
#include <hostapi/exception.h>

namespace {

// For each cell of a row, the schema's column.
QVector<int> readHeader(CsvReader &reader, const TableSchema &schema)
{
    const CsvReader::Cell start{QString(), 1, 1};
    QVector<int> columns;
    const QVector<CsvReader::Cell> header = reader.nextRow();
    for (const CsvReader::Cell &cell : header) {
        const int column = schema.columnIndex(cell.text);
        if (column < 0)
            reader.fail(
                cell,
                QStringLiteral("table \"%1\" has no column \"%2\"").arg(schema.name, cell.text));
        if (columns.contains(column))
            reader.fail(cell, QStringLiteral("column \"%1\" again").arg(cell.text));
        columns << column;
    }
    for (int column = 0; column < schema.columns.size(); ++column) {
        if (!columns.contains(column) && !schema.columns.at(column).optional)
            reader.fail(
                start,
                QStringLiteral("column \"%1\" is missing").arg(schema.columns.at(column).name));
    }
    return columns;
}

bool isPositiveNumber(const QString &text)
{
    return decimal::canConvert(text, false) && decimal(text) > decimal::zero;
}

QVariant convert(const CsvReader &reader, const CsvReader::Cell &cell, const ColumnSchema &column)
{
    if (cell.text.isEmpty())
        return {};
    if (column.type.type() == FieldType::String) {
        if (cell.text.size() > column.type.parameter())
            reader.fail(cell, QStringLiteral("%1: longer than %2 characters")
                                  .arg(column.name)
                                  .arg(column.type.parameter()));
        if (column.positiveNumber && !isPositiveNumber(cell.text))
            reader.fail(
                cell,
                QStringLiteral("%1: \"%2\" is no positive number").arg(column.name, cell.text));
        return cell.text;
    }
    bool ok = false;
    const qint64 number =
        column.type.type() == FieldType::Integer ? cell.text.toInt(&ok) : cell.text.toLongLong(&ok);
    if (!ok)
        reader.fail(
            cell, QStringLiteral("%1: \"%2\" is no integer in range").arg(column.name, cell.text));
    return number;
}

void importTable(const QString &folder, ReferenceSchema::TableId table, DatabaseWriter &writer)
{
    const TableSchema &schema = ReferenceSchema::tables().at(table);
    CsvReader reader(QStringLiteral("%1/%2.csv").arg(folder, schema.name));
    const QVector<int> columns = readHeader(reader, schema);
    for (auto cells = reader.nextRow(); !cells.isEmpty(); cells = reader.nextRow()) {
        if (cells.size() != columns.size())
            reader.fail(cells.first(),
                        QStringLiteral("%1 cells, not %2").arg(cells.size()).arg(columns.size()));
        QVariantList values;
        for (int i = 0; i < schema.columns.size(); ++i)
            values << QVariant();
        for (int i = 0; i < columns.size(); ++i)
            values[columns.at(i)] = convert(reader, cells.at(i), schema.columns.at(columns.at(i)));
        try {
            writer.insert(table, values);
        } catch (const Exception &error) {
            reader.fail(cells.first(), error.text());
        }
    }
}

} // namespace

void importCsv(const QString &folder, DatabaseWriter &writer)
{
    for (int table = 0; table < ReferenceSchema::tables().size(); ++table)
        importTable(folder, ReferenceSchema::TableId(table), writer);
}
