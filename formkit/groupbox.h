// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QGroupBox>

/// A group box that a form can connect to a value by signal and slot. The hub binds nothing of it,
/// but the controls inside.
class FORMKIT_EXPORT GroupBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit GroupBox(QWidget *parent = nullptr);

Q_SIGNALS:
    /// For the form's own use; the box never emits it.
    void setProp_Value(const QString &newValue);

public Q_SLOTS:
    /// Takes a value and does nothing with it.
    void prop_Value_changed(const QString &newValue);
};
