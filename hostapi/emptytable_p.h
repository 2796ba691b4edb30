// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "table.h"

/// A table without rows, in place of one that the host does not have.
class EmptyTable : public Table
{
public:
    explicit EmptyTable(const QString &name);

    QString name() const override { return m_name; }
    int columnIndex(const QString &) const override { return -1; }
    void lock() override {}
    void unlock() override {}
    const MasterIndex *masterIndex() const override;
    Field dataPtr(RowData *, int) const override { return Field(); }
    RowData *newRow() const override { return new RowData; }
    void freeRow(RowData *row) const override { delete row; }

private:
    QString m_name;
};
