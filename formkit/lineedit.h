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
    /// Shows a text, silently. The text that stands there already is left alone, caret and
    /// all.
    void setValue(const QString &value);

Q_SIGNALS:
    /// The user has edited the text, by hand or by a completion that is lit or picked.
    void changedValue(const QString &newValue);

protected:
    void focusInEvent(QFocusEvent *event) override;

private Q_SLOTS:
    void edit_changed(const QString &newValue);

private:
    void listenToCompleter();
    void takeCompletion();

    /// The text last set or reported.
    QString m_known;
};
