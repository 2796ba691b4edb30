#include "rowindex_p.h"

#include "foldedtext_p.h"

#include <QAbstractItemModel>

#include <algorithm>

RowIndex::RowIndex(const QAbstractItemModel *model, int role) : m_model(model), m_role(role)
{
    const int count = model->rowCount();
    int buckets = 16;
    while (buckets < count)
        buckets *= 2;
    m_last.fill(-1, buckets);
    m_previous.resize(count);
    for (int row = 0; row < count; ++row) {
        int &last = m_last[int(hash(model->index(row, 0).data(role)) & size_t(buckets - 1))];
        m_previous[row] = last;
        last = row;
    }
}

// A number has the hash of its digits as text, without making the text.
size_t RowIndex::hash(const QVariant &value)
{
    bool isNumber = false;
    qlonglong number = 0;
    const int type = value.userType();
    if (type == QMetaType::Int || type == QMetaType::LongLong) {
        number = value.toLongLong();
        isNumber = true;
    } else {
        const QString text = value.toString();
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

QVector<int> RowIndex::rows(const QVariant &value) const
{
    QVector<int> found;
    if (m_last.isEmpty())
        return found;
    const QString text = value.toString();
    int row = m_last.at(int(hash(value) & size_t(m_last.size() - 1)));
    for (; row >= 0; row = m_previous.at(row)) {
        const QString other = m_model->index(row, 0).data(m_role).toString();
        if (QString::compare(text, other, Qt::CaseInsensitive) == 0)
            found.append(row);
    }
    std::reverse(found.begin(), found.end());
    return found;
}
