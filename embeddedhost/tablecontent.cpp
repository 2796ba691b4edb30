// SPDX-License-Identifier: BSD-3-Clause
#include "tablecontent_p.h"

#include <algorithm>

TableContent::TableContent(const RowLayout *layout) : m_layout(layout) {}

TableContent::TableContent(TableContent &&other) noexcept : m_layout(other.m_layout)
{
    swap(other);
}

TableContent::~TableContent()
{
    for (RowData *row : m_rows)
        m_layout->release(row);
}

RowData *TableContent::append()
{
    m_rows.push_back(nullptr); // first, as it may throw
    try {
        m_rows.back() = m_layout->make();
    } catch (...) {
        m_rows.pop_back();
        throw;
    }
    m_rows.back()->references = 1;
    return m_rows.back();
}

// Blocks that are in order already, and pairs of them, which are most, cost one walk.
void TableContent::sort(const std::function<void()> &pause)
{
    constexpr size_t Block = 65536;
    const auto before = [this](RowData *a, RowData *b) {
        return m_layout->compare(a, b, m_layout->schema().keyColumns) < 0;
    };
    const size_t count = m_rows.size();
    const auto at = [&](size_t row) {
        return m_rows.begin() + std::ptrdiff_t(std::min(row, count));
    };
    for (size_t row = 0; row < count; row += Block) {
        pause();
        if (!std::is_sorted(at(row), at(row + Block), before))
            std::sort(at(row), at(row + Block), before);
    }
    for (size_t width = Block; width < count; width *= 2) {
        for (size_t row = 0; row + width < count; row += 2 * width) {
            pause();
            if (before(*at(row + width), *std::prev(at(row + width))))
                std::inplace_merge(at(row), at(row + width), at(row + 2 * width), before);
        }
    }
}

RowData *TableContent::find(RowData *key) const
{
    const QVector<int> &columns = m_layout->schema().keyColumns;
    const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), key,
                                        [this, &columns](RowData *row, RowData *sought) {
                                            return m_layout->compare(row, sought, columns) < 0;
                                        });
    const bool hit = found != m_rows.end() && m_layout->compare(*found, key, columns) == 0;
    return hit ? *found : nullptr;
}
