// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QTreeWidget>

/// A form's values as a table of two columns that follows the hub.
class ValuesView : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ValuesView(QWidget *parent = nullptr);

    /// Rows come in the order of their names; what has changed since the last call is bold.
    void show(const Values &values);
    using QTreeWidget::show;

private:
    Values m_shown;
};
