// SPDX-License-Identifier: BSD-3-Clause
#include "rowlists_p.h"

#include "modelrefresh_p.h"

#include <QAbstractItemModel>

#include <algorithm>

RowLists::RowLists(int count, const DataOf &dataOf, const QVector<int> &keyRoles)
    : order(count, [dataOf](int row) { return dataOf(row, Qt::DisplayRole).toString(); })
{
    for (const int role : keyRoles)
        keys.insert(role, RowIndex(count, [dataOf, role](int row) { return dataOf(row, role); }));
}

RowLists::RowLists(const QAbstractItemModel *model, const QVector<int> &keyRoles,
                   const PreparedRows *prepared)
    : keys(keysOf(model, keyRoles, prepared))
{
    if (!model)
        return;
    const auto textOf = [model](int row) { return model->index(row, 0).data().toString(); };
    order = prepared ? prepared->lists.order : RowOrder(model->rowCount(), textOf);
    order.setTexts(textOf);
}

QMap<int, RowIndex> RowLists::keysOf(const QAbstractItemModel *model, const QVector<int> &keyRoles,
                                     const PreparedRows *prepared)
{
    QMap<int, RowIndex> indexes;
    for (const int role : keyRoles) {
        const auto keyOf = [model, role](int row) { return model->index(row, 0).data(role); };
        const bool isPrepared = prepared && prepared->lists.keys.contains(role);
        RowIndex &index = indexes[role];
        if (isPrepared)
            index = prepared->lists.keys.value(role);
        else if (model)
            index = RowIndex(model->rowCount(), keyOf);
        index.setKeys(keyOf);
    }
    return indexes;
}

void LongestTexts::add(const QString &text)
{
    constexpr int Count = 8;
    if (qMin(text.size(), MostCharacters) <= m_shortest)
        return;
    const QString start = text.left(MostCharacters);
    const auto isLonger = [](const QString &a, const QString &b) { return a.size() > b.size(); };
    m_texts.insert(std::upper_bound(m_texts.begin(), m_texts.end(), start, isLonger), start);
    if (m_texts.size() > Count) {
        m_texts.removeLast();
        m_shortest = m_texts.last().size();
    }
}
