// SPDX-License-Identifier: BSD-3-Clause
#include "label.h"

Label::Label(QWidget *parent, Qt::WindowFlags f) : QLabel(parent, f)
{
    init_label();
}

Label::Label(const QString &text, QWidget *parent, Qt::WindowFlags f) : QLabel(text, parent, f)
{
    init_label();
}

void Label::init_label()
{
    m_hasError = false;
}

void Label::setError(const QString &text)
{
    m_hasError = true;
    m_error = text;
    setToolTip(m_error);
    setStyleSheet(QStringLiteral(" Label{color: red}"));
}

void Label::setError()
{
    setError(QString());
}

void Label::clearError()
{
    if (!m_hasError)
        return;
    m_hasError = false;
    setStyleSheet(QStringLiteral(" "));
}
