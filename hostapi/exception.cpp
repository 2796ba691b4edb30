// SPDX-License-Identifier: BSD-3-Clause
#include "exception.h"

#include <QDebug>

Exception::Exception(const QString &text) : m_text(text), m_utf8(text.toUtf8()) {}

Exception::~Exception() = default;

const char *Exception::what() const noexcept
{
    return m_utf8.constData();
}

void Exception::dump() const
{
    qWarning().noquote() << m_text;
}
