// SPDX-License-Identifier: BSD-3-Clause
#include "countingcontrol.h"

#include <QVariant>

void CountingControl::setValue(const QString &text)
{
    ++m_writes;
    const QString letters = property("letters").toString();
    value = letters == "upper" ? text.toUpper() : letters == "lower" ? text.toLower() : text;
    if (value != text)
        Q_EMIT changed();
    else if (const auto deed = onWrite)
        deed();
}

void CountingControl::enter(const QString &text)
{
    value = text;
    Q_EMIT changed();
}

QString CountingControl::state()
{
    return value + QString(" writes=%1 listeners=%2").arg(takeWrites()).arg(listeners());
}
