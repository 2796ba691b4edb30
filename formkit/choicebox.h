// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QComboBox>

#include <memory>

/// A list of fixed choices, each with a value of its own. A form file gives them by the dynamic
/// property "choices": "L=&Limit;M=&Market", a value and its text for each. An ampersand marks the
/// key that chooses it while the box has the focus; two of them stand for one that is shown. To
/// show other texts, in another language say, set the property again: the choice stays.
///
/// A value that is none of the choices is shown as it is, and stays the value, until the user or
/// the program chooses another.
class FORMKIT_EXPORT ChoiceBox : public QComboBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit ChoiceBox(QWidget *parent = nullptr);
    ~ChoiceBox() override;

    /// Adds a choice at the end, or gives the one of this value another text.
    void addChoice(const QString &value, const QString &text);

    /// The value chosen or set; empty for none.
    QString getValue() const;
    /// Chooses the value, silently.
    void setValue(const QString &value);
    /// Whether the value is one of the choices, or there is none.
    bool isKnown() const;

Q_SIGNALS:
    /// The user has chosen another value.
    void changedValue(const QString &newValue);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void readChoices();
    void show(const QString &value);
    void choose(int row);

    struct Private;
    std::unique_ptr<Private> d;
};
