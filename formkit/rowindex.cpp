// SPDX-License-Identifier: BSD-3-Clause
#include "rowindex_p.h"

#include "foldedtext_p.h"

#include <algorithm>

RowIndex::RowIndex(int count, KeyOf keyOf) : m_keyOf(std::move(keyOf))
{
    int buckets = 16;
    while (buckets < count)
        buckets *= 2;
    m_last.fill(-1, buckets);
    m_previous.resize(count);
    for (int row = 0; row < count; ++row)
        m_previous[row] = int(hash(m_keyOf(row)) & size_t(buckets - 1));
    // In a loop of its own: it waits for memory all over the table, many rows at a time.
    for (int row = 0; row < count; ++row)
        m_previous[row] = std::exchange(m_last[m_previous.at(row)], row);
}

// A number has the hash of its digits as text, without making the text.
size_t RowIndex::hash(const QVariant &key)
{
    bool isNumber = false;
    qlonglong number = 0;
    const int type = key.userType();
    if (type == QMetaType::Int || type == QMetaType::LongLong) {
        number = key.toLongLong();
        isNumber = true;
    } else {
        const QString text = key.toString();
        // Most codes begin with a letter, which spares them the attempt.
        const bool isWord = !text.isEmpty() && text.at(0) > QLatin1Char('9');
        if (!isWord)
            number = text.toLongLong(&isNumber);
        isNumber = isNumber && QString::number(number) == text;
        if (!isNumber)
            return FoldedText::hash(text);
    }
    quint64 mixed = quint64(number) * 0x9e3779b97f4a7c15ULL;
    return size_t(mixed ^ mixed >> 32);
}

QVector<int> RowIndex::rows(const QVariant &key) const
{
    QVector<int> found;
    if (m_last.isEmpty())
        return found;
    const QString text = key.toString();
    int row = m_last.at(int(hash(key) & size_t(m_last.size() - 1)));
    for (; row >= 0; row = m_previous.at(row)) {
        if (m_keyOf(row).toString().compare(text, Qt::CaseInsensitive) == 0)
            found.append(row);
    }
    std::reverse(found.begin(), found.end());
    return found;
}
