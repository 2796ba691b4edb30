// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QCheckBox>

/// A check box with a text for each of its states: the dynamic properties "value_checked" and
/// "value_unchecked", set in the form designer. A property that is not set is the empty text.
class FORMKIT_EXPORT CheckBox : public QCheckBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit CheckBox(QWidget *parent = nullptr);

    /// The text of the state shown.
    QString getValue() const;
    /// Shows the state of the text, silently. A text of neither state leaves the box as it is
    /// and writes a debug line.
    void setValue(const QString &value);

Q_SIGNALS:
    /// The user has toggled the box, or another box of its exclusive QButtonGroup is checked. The
    /// argument is the text of the checked state in either case: read Value for the state.
    void changedValue(const QString &value);

protected:
    void nextCheckState() override;
};
