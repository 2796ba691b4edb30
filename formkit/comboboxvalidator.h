// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QAbstractItemModel>
#include <QPointer>
#include <QValidator>

/// Judges a text by the display texts of a model's first column, ignoring case.
class FORMKIT_EXPORT ComboBoxValidator : public QValidator
{
    Q_OBJECT

public:
    explicit ComboBoxValidator(QObject *parent = nullptr);

    /// The model to judge by. It may be destroyed at any time; without one, every text is
    /// Invalid.
    void setModel(QAbstractItemModel *model);
    QAbstractItemModel *model() const { return m_model; }

    /// Decides by the first row whose text starts with the input: Acceptable when that text
    /// is the whole input, else Intermediate, even if a later row equals it. Invalid when no
    /// row starts so, Intermediate for an empty input. The position is not used.
    State validate(QString &input, int &pos) const override;
    /// Completes the input to the text of the first row that starts with it, if there is one.
    void fixup(QString &input) const override;

private:
    QString rowText(int row) const;
    int firstRowStartingWith(const QString &input) const;

    QPointer<QAbstractItemModel> m_model;
};
