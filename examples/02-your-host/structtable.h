// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/table.h>

#include <algorithm>
#include <mutex>
#include <vector>

/// A table over plain structs of the terminal: T is one of them. The table is its own master index.
template <typename T> class StructTable : public Table, public MasterIndex
{
public:
    /// A column and where its cells are. FieldType says what type the member has.
    struct Column
    {
        QString name;
        FieldType type;
        void *(*cell)(T &row);
    };

    /// The values of the key columns are different in each row. Rows are listed in their order.
    StructTable(const QString &name, const std::vector<Column> &columns,
                const std::vector<int> &key)
        : m_name(name), m_columns(columns), m_key(key)
    {
    }

    /// Replaces the content in one step, from any thread.
    void setRows(const std::vector<T> &rows)
    {
        std::vector<Record> fresh;
        fresh.reserve(rows.size());
        for (const T &data : rows)
            fresh.emplace_back(this, new Row(data));
        std::sort(fresh.begin(), fresh.end(),
                  [this](const Record &a, const Record &b) { return compare(a, b) < 0; });
        const TableLock guard(this);
        m_rows.swap(fresh); // the old rows are freed after the lock, unless a form holds them
    }

    QString name() const override { return m_name; }
    int columnIndex(const QString &column) const override
    {
        const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                        [&](const Column &c) { return c.name == column; });
        return found == m_columns.end() ? -1 : int(found - m_columns.begin());
    }
    void lock() override { m_lock.lock(); }
    void unlock() override { m_lock.unlock(); }
    const MasterIndex *masterIndex() const override { return this; }
    Field dataPtr(RowData *data, int column) const override
    {
        Row *const row = static_cast<Row *>(data);
        const Column &shape = m_columns.at(size_t(column));
        return Field(shape.type, shape.cell(row->data), &row->present, 1U << column);
    }
    RowData *newRow() const override { return new Row; }
    void freeRow(RowData *row) const override { delete static_cast<Row *>(row); }

    int count() const override { return int(m_rows.size()); }
    Record at(int position) const override { return m_rows[size_t(position)]; }
    Record find(const Record &key) const override
    {
        const auto place = std::lower_bound(
            m_rows.begin(), m_rows.end(), key,
            [this](const Record &a, const Record &b) { return compare(a, b) < 0; });
        return place == m_rows.end() || compare(*place, key) != 0 ? Record() : *place;
    }

private:
    struct Row : RowData
    {
        Row() = default;
        explicit Row(const T &content) : data(content), present(~0U) {}
        T data{};
        quint32 present = 0; ///< a bit for each cell that is not null
    };

    int compare(const Record &a, const Record &b) const
    {
        int order = 0;
        for (size_t i = 0; order == 0 && i < m_key.size(); ++i)
            order = a.field(m_key[i]).compare(b.field(m_key[i]));
        return order;
    }

    const QString m_name;
    const std::vector<Column> m_columns;
    const std::vector<int> m_key;
    std::recursive_mutex m_lock; ///< while a table is walked, the same thread may walk it again
    std::vector<Record> m_rows;
};
