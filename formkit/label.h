// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QLabel>

/// A caption that can show that its field is in error: in red, with the reason as its tool
/// tip.
class FORMKIT_EXPORT Label : public QLabel
{
    Q_OBJECT

public:
    /// As those of QLabel.
    explicit Label(QWidget *parent = nullptr, Qt::WindowFlags f = Qt::WindowFlags());
    explicit Label(const QString &text, QWidget *parent = nullptr,
                   Qt::WindowFlags f = Qt::WindowFlags());

    /// Forgets an error without touching what is shown.
    void init_label();

    /// The reason last given to setError(), also after clearError().
    QString errorText() const { return m_error; }

public Q_SLOTS:
    /// Turns the caption red and makes the text its tool tip.
    void setError(const QString &text);
    void setError();
    /// Takes the red away, if setError() has put it there. The tool tip stays.
    void clearError();

private:
    bool m_hasError = false;
    QString m_error;
};
