// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/index.h>

#include <QString>

#include <vector>

/// A list of rows in an order of its own. As it holds the rows, it may be used without the table's
/// lock.
class HOSTAPI_EXPORT IndexList : public Index
{
public:
    int count() const override { return int(m_rows.size()); }
    Record at(int position) const override { return m_rows[size_t(position)]; }

protected:
    /// The rows, in the order of the index.
    std::vector<Record> m_rows;
};

/// A secondary index: the rows of a table that filter() accepts, in the order of compare(),
/// as they were when it was built. It does not follow the table.
class HOSTAPI_EXPORT IndexSort : public IndexList
{
public:
    /// An index over the core's table of that name. Of rows that compare equal, `keepEqual` keeps
    /// all, in the order of the master index; without it only the first stays.
    IndexSort(const QString &table, bool keepEqual);

    /// Walks the table under its lock, then sorts. An exception of compare() or filter() passes
    /// through; the table is unlocked then, and the index stays as it was.
    void build();

    /// The table; never null (see ICore::table()).
    Table *table() const { return m_table; }

protected:
    /// Whether a row belongs to the index. Called under the lock.
    virtual bool filter(const Record &record) const = 0;
    /// Less than, equal to or greater than 0.
    virtual int compare(const Record &a, const Record &b) const = 0;

private:
    Table *m_table;
    bool m_keepEqual;
};
