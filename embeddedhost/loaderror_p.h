// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "rowlayout_p.h"

#include <hostapi/exception.h>

#include <QVariant>

/// Builds the text of a load error, with what is known of: FILE: table "boards", column "name", row
/// (stock_id 1, board_id 7): REASON
class LoadError
{
public:
    LoadError(const QString &file, const TableSchema &table);

    LoadError &columns(const QVector<int> &columns);
    /// Names the row by the values of its key, of whatever type they are.
    LoadError &row(const QVariantList &keyValues);
    LoadError &row(const RowLayout &layout, RowData *row);
    [[noreturn]] void raise(const QString &reason) const;

private:
    const TableSchema &m_table;
    QString m_place;
};
