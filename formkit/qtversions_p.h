// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QAbstractItemView>

/// What Qt 5 and Qt 6 name differently, under Qt 6's names.

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

class ItemView : public QAbstractItemView
{
public:
    using QAbstractItemView::QAbstractItemView;

protected:
    void initViewItemOption(QStyleOptionViewItem *option) const { *option = viewOptions(); }
};

#else

using ItemView = QAbstractItemView;

#endif
