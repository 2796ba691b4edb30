// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

#include <QTextCodec>

inline void setEncodingOfFileNames(const QString &name)
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName(name.toLatin1()));
}

#else

/// It is UTF-8 in any case.
inline void setEncodingOfFileNames(const QString &) {}

#endif
