// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QByteArray>
#include <QString>

#include <exception>

/// The error of the data layer: a text for people who read the log.
class HOSTAPI_EXPORT Exception : public std::exception
{
public:
    /// Takes a text that says what went wrong, and where.
    explicit Exception(const QString &text);
    ~Exception() override;

    /// The text as it was given.
    QString text() const { return m_text; }
    /// The text in UTF-8.
    const char *what() const noexcept override;
    /// Reports the text as a warning.
    void dump() const;

private:
    QString m_text;
    QByteArray m_utf8;
};
