// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QCompleter>

class SelectorProxyModel;

/// Completes what is typed into a selector box. A sorted list may have any length: it is sorted by
/// the keys that are completed on (see FoldedText::completionKey()), and the pop-up draws only the
/// rows that are seen. Escape in the pop-up restores what was typed before the arrow keys tried
/// rows.
class SelectorCompleter : public QCompleter
{
    Q_OBJECT

public:
    SelectorCompleter(SelectorProxyModel *model, bool isSorted, QObject *parent);

    QStringList splitPath(const QString &path) const override;
    QString pathFromIndex(const QModelIndex &index) const override;
    bool eventFilter(QObject *watched, QEvent *event) override;
};
