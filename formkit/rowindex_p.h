// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QVariant>
#include <QVector>

#include <functional>
#include <utility>

/// Finds the rows of a table whose key equals a text ignoring case, in time that does not grow
/// with the table. Two numbers for each row are all that it keeps; it asks for keys again to
/// tell rows of one hash apart.
class RowIndex
{
public:
    /// A text or an integer, the same at each call.
    using KeyOf = std::function<QVariant(int row)>;

    RowIndex() = default;
    /// Asks for the keys of the rows 0 to `count` - 1.
    RowIndex(int count, KeyOf keyOf);

    /// Asks for the same keys elsewhere from now on.
    void setKeys(KeyOf keyOf) { m_keyOf = std::move(keyOf); }

    /// Ascending.
    QVector<int> rows(const QVariant &key) const;

private:
    static size_t hash(const QVariant &key);

    KeyOf m_keyOf;
    /// By hash, the last row of that hash; by row, the one before it; -1 ends the chain.
    QVector<int> m_last;
    QVector<int> m_previous;
};
