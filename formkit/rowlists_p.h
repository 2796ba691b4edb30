// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "rowindex_p.h"
#include "roworder_p.h"

#include <QMap>
#include <QStringList>

class QAbstractItemModel;
struct PreparedRows;

/// What a list knows of the rows of its source: their order by text, and where each key stands.
/// A copy is cheap.
struct RowLists
{
    /// The data of a row: of the display role as its text, of another role as a key.
    using DataOf = std::function<QVariant(int row, int role)>;

    RowLists() = default;
    /// Of the rows 0 to `count` - 1. Costs by the rows; everything later does not.
    RowLists(int count, const DataOf &dataOf, const QVector<int> &keyRoles);
    /// Those of a model, which is asked for texts and keys as long as they are used. What has been
    /// prepared is taken over.
    RowLists(const QAbstractItemModel *model, const QVector<int> &keyRoles,
             const PreparedRows *prepared = nullptr);

    /// The part of it that concerns keys.
    static QMap<int, RowIndex> keysOf(const QAbstractItemModel *model, const QVector<int> &keyRoles,
                                      const PreparedRows *prepared = nullptr);

    RowOrder order;
    /// By role.
    QMap<int, RowIndex> keys;
};

/// Some texts of most characters, one of which is likely the widest.
class LongestTexts
{
public:
    /// Characters of a text that count.
    static constexpr int MostCharacters = 30;

    void add(const QString &text);
    /// Cut to MostCharacters.
    QStringList texts() const { return m_texts; }

private:
    QStringList m_texts;
    int m_shortest = 0;
};
