// SPDX-License-Identifier: BSD-3-Clause
#include "selectorcompleter_p.h"

#include "foldedtext_p.h"
#include "rowlistview_p.h"
#include "selectorproxymodel.h"

#include <QComboBox>
#include <QKeyEvent>

SelectorCompleter::SelectorCompleter(SelectorProxyModel *model, bool isSorted, QObject *parent)
    : QCompleter(parent)
{
    setCaseSensitivity(Qt::CaseInsensitive);
    setCompletionRole(SelectorProxyModel::CompletionRole);
    if (isSorted)
        setModelSorting(QCompleter::CaseInsensitivelySortedModel);
    setPopup(new RowListView);
    setModel(model);
}

QStringList SelectorCompleter::splitPath(const QString &path) const
{
    return {FoldedText::completionKey(path)};
}

QString SelectorCompleter::pathFromIndex(const QModelIndex &index) const
{
    return index.data(Qt::EditRole).toString();
}

bool SelectorCompleter::eventFilter(QObject *watched, QEvent *event)
{
    // The type is tested first, as popup() makes a view if there is none, even within setPopup().
    if (event->type() == QEvent::KeyPress && completionMode() != InlineCompletion &&
        watched == popup() && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        const QString typed = completionPrefix();
        popup()->hide();
        if (auto *box = qobject_cast<QComboBox *>(widget())) {
            if (box->currentText() != typed)
                box->setEditText(typed);
        }
        return true;
    }
    return QCompleter::eventFilter(watched, event);
}
