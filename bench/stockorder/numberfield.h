// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDoubleValidator>
#include <QLineEdit>

/// Regroups a number while it is typed, and keeps the caret after the same digit. Locales with
/// groups of other than three digits are not supported.
class GroupingValidator : public QDoubleValidator
{
public:
    using QDoubleValidator::QDoubleValidator;
    State validate(QString &input, int &pos) const override;

    /// Converts a number in system form ("1234.5") to the form of the locale, and back.
    QString shown(QString number) const;
    QString number(QString text) const;
};

/// A line edit for a number.
class NumberField : public QLineEdit
{
    Q_OBJECT

public:
    explicit NumberField(int decimals);

    QString value() const { return m_validator->number(text()); }
    void setValue(const QString &value);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    GroupingValidator *m_validator;
};
