// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "embeddedindex_p.h"

#include <hostapi/table.h>

#include <mutex>

/// A table of the embedded host. All tables of a host share its one lock.
class EmbeddedTable : public Table
{
public:
    EmbeddedTable(const TableSchema &schema, std::recursive_mutex *mutex);

    const RowLayout &layout() const { return m_layout; }
    /// Swaps the content. The caller holds the lock.
    void swap(TableContent &content) noexcept { m_content.swap(content); }

    QString name() const override { return m_layout.schema().name; }
    int columnIndex(const QString &column) const override;
    void lock() override { m_mutex->lock(); }
    void unlock() override { m_mutex->unlock(); }
    const MasterIndex *masterIndex() const override { return &m_index; }
    Field dataPtr(RowData *row, int column) const override { return m_layout.cell(row, column); }
    RowData *newRow() const override { return m_layout.make(); }
    void freeRow(RowData *row) const override { m_layout.free(row); }

private:
    RowLayout m_layout;
    TableContent m_content;
    EmbeddedIndex m_index;
    std::recursive_mutex *m_mutex;
};
