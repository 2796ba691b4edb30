#pragma once

#include <QVariant>
#include <QVector>

class QAbstractItemModel;

// Finds the rows of a model whose data of one role equals a text ignoring case, in time that
// does not grow with the model. Two numbers a row are all that it keeps; it reads the model
// again to tell rows of one hash apart.
class RowIndex
{
public:
    RowIndex() = default;
    // Reads the role of every row of the model, which must outlive the index and have changed
    // nothing of it by the time of a look-up.
    RowIndex(const QAbstractItemModel *model, int role);

    // Ascending.
    QVector<int> rows(const QVariant &value) const;

private:
    static size_t hash(const QVariant &value);

    const QAbstractItemModel *m_model = nullptr;
    int m_role = 0;
    // By hash, the last row of that hash; by row, the one before it; -1 ends the chain.
    QVector<int> m_last;
    QVector<int> m_previous;
};
