// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPointer>

/// A unit in front of the text of a line edit and one after it, which are no part of the text:
/// labels in the field's text margins. In forms from right to left they change sides.
class UnitLabels : public QObject
{
    Q_OBJECT

public:
    explicit UnitLabels(QLineEdit *field) : m_field(field) {}

    /// Shows the units; an empty one is none.
    void show(const QString &prefix, const QString &suffix);

protected:
    bool eventFilter(QObject *field, QEvent *event) override;

private:
    QLabel *labelOf(const QString &unit, QLabel *label);
    void place();

    QLineEdit *const m_field;
    QPointer<QLabel> m_prefix;
    QPointer<QLabel> m_suffix;
    QMargins m_own;     ///< the field's margins without units
    QMargins m_margins; ///< those with units
};
