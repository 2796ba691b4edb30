// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QValidator>

/// Judges a date in the short format of the system locale. It never refuses a key: a text that is
/// no date yet is Intermediate.
class FORMKIT_EXPORT DateValidator : public QValidator
{
public:
    explicit DateValidator(QObject *parent = nullptr);

    /// Acceptable for a date and for the empty text, else Intermediate; changes nothing.
    State validate(QString &input, int &pos) const override;
    /// Clears a text that is no date.
    void fixup(QString &input) const override;
};
