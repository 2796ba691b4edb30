// SPDX-License-Identifier: BSD-3-Clause
#include "contentcheck_p.h"

#include "loaderror_p.h"

#include <algorithm>

namespace {

void checkNoDuplicates(const QString &file, const RowLayout &layout,
                       const std::vector<RowData *> &rows, const QVector<int> &columns)
{
    const auto equal = [&](RowData *a, RowData *b) { return layout.compare(a, b, columns) == 0; };
    const auto found = std::adjacent_find(rows.begin(), rows.end(), equal);
    if (found == rows.end())
        return;
    QStringList values;
    for (int column : columns)
        values << layout.cell(*found, column).toString();
    LoadError(file, layout.schema())
        .columns(columns)
        .row(layout, *std::next(found))
        .raise(QStringLiteral("%1 stands there twice").arg(values.join(QStringLiteral(", "))));
}

void checkUnique(const QString &file, const TableContent &table)
{
    const RowLayout &layout = table.layout();
    std::vector<RowData *> rows;
    rows.reserve(size_t(table.count()));
    for (int i = 0; i < table.count(); ++i)
        rows.push_back(table.at(i));
    checkNoDuplicates(file, layout, rows, layout.schema().keyColumns);

    const QVector<int> &columns = layout.schema().uniqueColumns;
    if (columns.isEmpty())
        return;
    std::stable_sort(rows.begin(), rows.end(),
                     [&](RowData *a, RowData *b) { return layout.compare(a, b, columns) < 0; });
    checkNoDuplicates(file, layout, rows, columns);
}

void checkParents(const QString &file, const TableContent &table, const TableContent &parents,
                  const std::function<void()> &pause)
{
    const TableSchema &schema = table.layout().schema();
    const TableSchema &parentSchema = parents.layout().schema();
    QVector<int> columns;
    for (int key : parentSchema.keyColumns)
        columns << schema.columnIndex(parentSchema.columns.at(key).name);

    TableContent keys(&parents.layout());
    RowData *key = keys.append();
    RowData *previous = nullptr;
    for (int i = 0; i < table.count(); ++i) {
        if (i % 65536 == 0)
            pause();
        RowData *row = table.at(i);
        // Rows with the same parent are next to each other, so most need no look-up.
        if (previous && table.layout().compare(previous, row, columns) == 0)
            continue;
        for (int k = 0; k < columns.size(); ++k) {
            parents.layout().setNumber(key, parentSchema.keyColumns.at(k),
                                       table.layout().cell(row, columns.at(k)).toInteger64());
        }
        if (!parents.find(key)) {
            LoadError(file, schema)
                .columns(columns)
                .row(table.layout(), row)
                .raise(QStringLiteral("table \"%1\" has no such row").arg(parentSchema.name));
        }
        previous = row;
    }
}

} // namespace

void checkContent(const QString &file, const std::vector<TableContent> &tables,
                  const std::function<void()> &pause)
{
    for (const TableContent &table : tables) {
        pause();
        checkUnique(file, table);
        const int parent = table.layout().schema().parent;
        if (parent >= 0)
            checkParents(file, table, tables[size_t(parent)], pause);
    }
}
