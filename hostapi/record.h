#pragma once

#include <hostapi/field.h>

#include <atomic>

class Table;

// What every row of a host begins with; the host's own struct derives from it. The count is
// that of the references held: by the table's content one, by each Record one.
struct RowData
{
    std::atomic<int> references{0};
};

// A row of a table, held for as long as the Record lives: a row that has left the table
// meanwhile stays readable. References are counted atomically, and the row whose last
// reference is dropped is given back with Table::freeRow(). A Record must not outlive its
// table.
class HOSTAPI_EXPORT Record
{
public:
    // The null record.
    Record() = default;
    // An empty row shaped like the table (every cell null), to be filled as a look-up key.
    explicit Record(const Table *table);
    // Another reference to a row.
    Record(const Table *table, RowData *row);
    Record(const Record &other);
    Record(Record &&other) noexcept;
    Record &operator=(Record other) noexcept;
    ~Record();

    bool isNull() const { return !m_row; }
    const Table *table() const { return m_table; }
    RowData *row() const { return m_row; }
    // The cell of a column; a null cell when the record is null.
    Field field(int column) const;

private:
    const Table *m_table = nullptr;
    RowData *m_row = nullptr;
};
