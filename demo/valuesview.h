// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QTreeWidget>

/// Shows a form's values as a table of names and values.
class ValuesView : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ValuesView(QWidget *parent = nullptr);

    /// Shows the values in the order of their names. Those that have changed since the last call
    /// are bold.
    void show(const Values &values);
    using QTreeWidget::show;

private:
    Values m_shown;
};
