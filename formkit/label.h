// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QLabel>

/// A caption that can show an error of its field: in red, with the reason as its tool tip. It
/// paints by itself: a form uses setError() or FormValidation, not both.
class FORMKIT_EXPORT Label : public QLabel
{
    Q_OBJECT

public:
    /// As those of QLabel.
    explicit Label(QWidget *parent = nullptr, Qt::WindowFlags f = Qt::WindowFlags());
    explicit Label(const QString &text, QWidget *parent = nullptr,
                   Qt::WindowFlags f = Qt::WindowFlags());

    /// Forgets an error without a change of what is shown.
    void init_label();

    /// The text that setError() was last called with, also after clearError().
    QString errorText() const { return m_error; }

public Q_SLOTS:
    /// Turns the caption red and makes the text its tool tip.
    void setError(const QString &text);
    void setError();
    /// Removes the red of setError(). The tool tip stays.
    void clearError();

private:
    bool m_hasError = false;
    QString m_error;
};
