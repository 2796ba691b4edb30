// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QRadioButton>

/// A radio button that stands for one text, its dynamic property "value", set in the form
/// designer. Several buttons bound under one name act as one choice.
class FORMKIT_EXPORT RadioButton : public QRadioButton
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit RadioButton(QWidget *parent = nullptr);

    /// The button's own text while it is checked, otherwise the text that was last set or clicked.
    QString getValue() const;
    /// Remembers the text. Checks the button if the text is its own, otherwise unchecks it, also if
    /// it is exclusive; without a signal.
    void setValue(const QString &value);

Q_SIGNALS:
    /// The user has clicked the button; the argument is its own text. A click never unchecks a
    /// button, on purpose not even a single one: its text stays the value. A button that is
    /// unchecked because another one is checked does not report.
    void changedValue(const QString &value);

protected:
    void nextCheckState() override;

private:
    void uncheck();

    QString m_value;
};
