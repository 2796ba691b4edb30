// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/record.h>

#include <iterator>

/// Rows in a certain order. An index of a table may be used only while the table is locked.
class HOSTAPI_EXPORT Index
{
public:
    virtual ~Index();

    /// The number of rows.
    virtual int count() const = 0;
    /// The row at a position of 0 to count() - 1.
    virtual Record at(int position) const = 0;

    /// Goes through the rows. Each dereference takes a reference to the row.
    class iterator
    {
    public:
        /// For std::iterator_traits.
        using iterator_category = std::input_iterator_tag;
        using value_type = Record;
        using difference_type = int;
        using pointer = const Record *;
        using reference = Record;

        /// At a position of 0 to count(); the index must outlive it.
        iterator(const Index *index, int position) : m_index(index), m_position(position) {}
        /// The row, and the step to the next one.
        Record operator*() const { return m_index->at(m_position); }
        iterator &operator++()
        {
            ++m_position;
            return *this;
        }
        bool operator==(const iterator &other) const { return m_position == other.m_position; }
        bool operator!=(const iterator &other) const { return !(*this == other); }

    private:
        const Index *m_index;
        int m_position;
    };

    /// For range-based loops, in the order of the index.
    iterator begin() const { return iterator(this, 0); }
    iterator end() const { return iterator(this, count()); }
};

/// The primary index of a table: every row, in the order of the table's key columns.
class HOSTAPI_EXPORT MasterIndex : public Index
{
public:
    /// The row whose key columns equal those of `key`, or a null record.
    virtual Record find(const Record &key) const = 0;
};
