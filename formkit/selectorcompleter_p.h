// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QCompleter>

class SelectorProxyModel;

/// Type-ahead over a selector's list, at any length of a sorted one: completes on keys in whose
/// order it is sorted (see FoldedText::completionKey()), and shows them in a view that costs by
/// the rows that are seen. Escape in its pop-up gives back what was typed before rows were tried
/// with the arrow keys.
class SelectorCompleter : public QCompleter
{
    Q_OBJECT

public:
    SelectorCompleter(SelectorProxyModel *model, bool isSorted, QObject *parent);

    QStringList splitPath(const QString &path) const override;
    QString pathFromIndex(const QModelIndex &index) const override;
    bool eventFilter(QObject *watched, QEvent *event) override;
};
