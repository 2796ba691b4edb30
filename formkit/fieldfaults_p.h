// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

class QWidget;

/// What a control itself knows to be wrong, in words for the user; empty for nothing.
class FieldFaults
{
public:
    /// What it shows is no value: no number, no date, not in the list or not there yet.
    static QString ofText(const QWidget *control);
    /// Its value is outside the limits that are set for the control.
    static QString ofLimits(const QWidget *control);
    /// A value in the form that the control shows to its user.
    static QString shown(const QString &value, const QWidget *control);
};
