// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QCheckBox>

/// A check box with a text for each of its states: the dynamic properties "value_checked" and
/// "value_unchecked", set in the form designer. A property that is not set counts as empty.
class FORMKIT_EXPORT CheckBox : public QCheckBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit CheckBox(QWidget *parent = nullptr);

    /// The text of the state that is shown.
    QString getValue() const;
    /// Shows the state of the text, without a signal. A text of neither state changes nothing and
    /// writes a debug line.
    void setValue(const QString &value);

Q_SIGNALS:
    /// The user has toggled the box, or has checked another box of its exclusive QButtonGroup. The
    /// argument is always the text of the checked state: read Value for the state.
    void changedValue(const QString &value);

protected:
    void nextCheckState() override;
};
