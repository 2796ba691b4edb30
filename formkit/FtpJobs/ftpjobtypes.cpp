// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/ftpjobtypes.h"

QString FtpEntry::text() const
{
    return QString::fromUtf8(name);
}

QString FtpEntry::localName() const
{
    const QString local = text();
    const bool leadsElsewhere = local == QLatin1String(".") || local == QLatin1String("..") ||
                                local.contains(QLatin1Char('/')) || local.contains(QChar(0));
    return leadsElsewhere || local.contains(QChar::ReplacementCharacter) ? QString() : local;
}
