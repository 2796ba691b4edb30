// SPDX-License-Identifier: BSD-3-Clause
#include "rowlayout_p.h"

#include <new>

struct RowLayout::Row : RowData
{
    quint32 presence = 0;

    void *at(size_t offset) { return reinterpret_cast<char *>(this) + offset; }
};

namespace {

size_t sizeOf(const ColumnSchema &column)
{
    switch (column.type.type()) {
    case FieldType::Integer:
        return sizeof(qint32);
    case FieldType::String:
        return sizeof(QString);
    default:
        return sizeof(qint64);
    }
}

} // namespace

RowLayout::RowLayout(const TableSchema &schema)
    : m_schema(schema), m_offsets(size_t(schema.columns.size())), m_size(sizeof(Row))
{
    Q_ASSERT(schema.columns.size() <= 32);
    const auto place = [this](bool small) {
        for (int i = 0; i < m_schema.columns.size(); ++i) {
            const size_t size = sizeOf(m_schema.columns.at(i));
            if ((size < sizeof(qint64)) != small)
                continue;
            m_offsets[size_t(i)] = m_size;
            m_size += size;
        }
    };
    static_assert(sizeof(QString) % sizeof(qint64) == 0 && sizeof(Row) % sizeof(qint64) == 0,
                  "whatever follows a string or a row's head is in its place");
    place(false);
    place(true);
}

RowData *RowLayout::make() const
{
    Row *row = new (::operator new(m_size)) Row;
    for (int i = 0; i < m_schema.columns.size(); ++i) {
        void *cell = row->at(m_offsets[size_t(i)]);
        switch (m_schema.columns.at(i).type.type()) {
        case FieldType::Integer:
            new (cell) qint32(0);
            break;
        case FieldType::String:
            new (cell) QString;
            break;
        default:
            new (cell) qint64(0);
        }
    }
    m_liveRows.fetch_add(1, std::memory_order_relaxed);
    return row;
}

void RowLayout::free(RowData *data) const
{
    Row *row = static_cast<Row *>(data);
    for (int i = 0; i < m_schema.columns.size(); ++i) {
        if (m_schema.columns.at(i).type.type() == FieldType::String)
            static_cast<QString *>(row->at(m_offsets[size_t(i)]))->~QString();
    }
    row->~Row();
    ::operator delete(row);
    m_liveRows.fetch_sub(1, std::memory_order_relaxed);
}

void RowLayout::release(RowData *row) const
{
    if (row->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        free(row);
}

Field RowLayout::cell(RowData *data, int column) const
{
    if (!data || column < 0 || column >= m_schema.columns.size())
        return Field();
    Row *row = static_cast<Row *>(data);
    return Field(m_schema.columns.at(column).type, row->at(m_offsets[size_t(column)]),
                 &row->presence, 1u << column);
}

void RowLayout::setNumber(RowData *data, int column, qint64 value) const
{
    Row *row = static_cast<Row *>(data);
    void *cell = row->at(m_offsets[size_t(column)]);
    if (m_schema.columns.at(column).type.type() == FieldType::Integer)
        *static_cast<qint32 *>(cell) = qint32(value);
    else
        *static_cast<qint64 *>(cell) = value;
    row->presence |= 1u << column;
}

void RowLayout::setText(RowData *data, int column, const QString &text) const
{
    Row *row = static_cast<Row *>(data);
    *static_cast<QString *>(row->at(m_offsets[size_t(column)])) = text;
    row->presence |= 1u << column;
}

int RowLayout::compare(RowData *a, RowData *b, const QVector<int> &columns) const
{
    for (int column : columns) {
        const int order = cell(a, column).compare(cell(b, column));
        if (order != 0)
            return order;
    }
    return 0;
}
