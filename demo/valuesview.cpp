// SPDX-License-Identifier: BSD-3-Clause
#include "valuesview.h"

#include <QHeaderView>

ValuesView::ValuesView(QWidget *parent) : QTreeWidget(parent)
{
    setColumnCount(2);
    setHeaderLabels({tr("Name"), tr("Value")});
    setRootIsDecorated(false);
    setAlternatingRowColors(true);
    setUniformRowHeights(true);
    header()->setStretchLastSection(true);
}

void ValuesView::show(const Values &values)
{
    clear();
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        const QString text = value->toString();
        auto *item = new QTreeWidgetItem(this, {value.key(), text});
        QFont font = item->font(1);
        font.setBold(!m_shown.isEmpty() && m_shown.value(value.key()).toString() != text);
        item->setFont(1, font);
    }
    resizeColumnToContents(0);
    m_shown = values;
}
