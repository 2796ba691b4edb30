// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/boardid.h>
#include <hostapi/datetime.h>
#include <hostapi/decimal.h>
#include <hostapi/fieldtype.h>

/// A typed view of one cell of a row: the column's type, the cell's storage (see FieldType)
/// and its presence bit. The cell is null while the bit is clear. The view is good for as
/// long as the row is held (see Record).
class HOSTAPI_EXPORT Field
{
public:
    /// A view of nothing: always null, whatever is stored in it.
    Field() = default;
    Field(FieldType type, void *storage, quint32 *presence, quint32 bit)
        : m_type(type), m_storage(storage), m_presence(presence), m_bit(bit)
    {
    }
    Field(const Field &) = default;

    /// The type of the column; Integer for a view of nothing.
    FieldType::Type type() const { return m_type.type(); }
    /// True while the cell holds no value.
    bool isNull() const { return !m_presence || !(*m_presence & m_bit); }
    /// Makes the cell null.
    void clear();

    /// The cell as text: numbers in their system form (a double in the fewest digits that read
    /// back equal), dates likewise, board lists as boardListToString() writes them; empty for
    /// null.
    QString toString() const;
    /// The text of a string cell, sharing the cell's memory; any other cell as toString().
    QString asStaticString() const;
    /// A 64-bit cell beyond the 32-bit range gives that range's nearer end. Null reads as 0; a
    /// cell that is no integer throws Exception.
    int toInteger() const;
    /// Null reads as 0; a cell that is no integer throws Exception.
    qint64 toInteger64() const;

    /// Stores a number, converted to the cell's type (a decimal in the column's scale). A
    /// date or board-list cell throws Exception.
    Field &operator=(int value);
    /// Would lose digits unseen; assign a 64-bit number as text.
    Field &operator=(qint64) = delete;
    /// Stores what the text says in the system form; a decimal keeps the text's scale. An empty
    /// text makes the cell null; a text that does not convert, or a board-list cell, throws
    /// Exception and leaves the cell as it was. A text that is no date becomes the null date.
    Field &operator=(QStringView text);
    Field &operator=(const Field &) = delete;

    /// Order for sorted indexes: -1, 0 or 1 (or the difference of the type codes). Null goes
    /// before everything. Doubles answer one-sidedly: -1 when this is smaller, else 0, which
    /// is enough for a sort and all that indexes ask. Board lists are all equal.
    int compare(const Field &other) const;

    /// Throws: a value of the type cannot go into this cell.
    [[noreturn]] void incompatibleType(FieldType::Type from) const;

private:
    template <typename T> T &cell() const { return *static_cast<T *>(m_storage); }
    void assignText(QStringView text);

    FieldType m_type;
    void *m_storage = nullptr;
    quint32 *m_presence = nullptr;
    quint32 m_bit = 0;
};
