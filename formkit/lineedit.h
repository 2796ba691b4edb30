// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QLineEdit>

/// A line of text.
class FORMKIT_EXPORT LineEdit : public QLineEdit
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit LineEdit(QWidget *parent = nullptr);

    /// The text as it stands.
    QString getValue() const { return text(); }
    /// Shows a text, without a signal. If it is shown already, nothing happens, and the caret
    /// stays.
    void setValue(const QString &value);

Q_SIGNALS:
    /// The user has edited the text, or a completion that the user highlighted or picked has.
    void changedValue(const QString &newValue);

protected:
    void focusInEvent(QFocusEvent *event) override;

private Q_SLOTS:
    void edit_changed(const QString &newValue);

private:
    void listenToCompleter();
    void takeCompletion();

    /// The text that was last set or reported.
    QString m_known;
};
