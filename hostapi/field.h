// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/boardid.h>
#include <hostapi/datetime.h>
#include <hostapi/decimal.h>
#include <hostapi/fieldtype.h>

/// A typed view of one cell of a row: the column's type, the cell's storage (see FieldType) and its
/// presence bit. The cell is null while the bit is clear. The view is valid for as long as a Record
/// holds the row.
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

    /// The cell as text: numbers and dates in system form (a double in the fewest digits that read
    /// back equal), board lists as boardListToString() writes them; empty for null.
    QString toString() const;
    /// As toString(); the text of a string cell shares the cell's memory.
    QString asStaticString() const;
    /// A 64-bit number beyond the 32-bit range gives the nearer end of that range. Null reads as 0;
    /// a cell that is no integer throws Exception.
    int toInteger() const;
    /// Null reads as 0; a cell that is no integer throws Exception.
    qint64 toInteger64() const;

    /// Stores a number, converted to the cell's type (a decimal in the column's scale). A
    /// date or board-list cell throws Exception.
    Field &operator=(int value);
    /// Deleted, as it could lose digits unseen: assign a 64-bit number as text.
    Field &operator=(qint64) = delete;
    /// Stores the value that the text gives in system form; a decimal keeps the text's scale. An
    /// empty text makes the cell null. A text that does not convert, or a board-list cell, throws
    /// Exception and leaves the cell as it was; but a text that is no date becomes the null date.
    Field &operator=(QStringView text);
    Field &operator=(const Field &) = delete;

    /// The order of sorted indexes: -1, 0 or 1 (or the difference of the type codes). Null comes
    /// first. Two doubles give -1 if this one is smaller, otherwise 0, also if it is larger: the
    /// indexes only ask whether a cell comes before another one. Board lists are all equal.
    int compare(const Field &other) const;

    /// Throws the error that a value of the type cannot go into this cell.
    [[noreturn]] void incompatibleType(FieldType::Type from) const;

private:
    template <typename T> T &cell() const { return *static_cast<T *>(m_storage); }
    void assignText(QStringView text);

    FieldType m_type;
    void *m_storage = nullptr;
    quint32 *m_presence = nullptr;
    quint32 m_bit = 0;
};
