// SPDX-License-Identifier: BSD-3-Clause
#include "fieldtype.h"

QString FieldType::typeName(Type type)
{
    switch (type) {
    case Integer:
        return QStringLiteral("integer");
    case Integer64:
        return QStringLiteral("integer64");
    case Double:
        return QStringLiteral("double");
    case Decimal:
        return QStringLiteral("decimal");
    case String:
        return QStringLiteral("string");
    case DateTime:
        return QStringLiteral("datetime");
    case BoardList:
        return QStringLiteral("boardlist");
    }
    return QStringLiteral("type %1").arg(int(type));
}

void FieldType::setString(QString &storage, int maxLength, QStringView text)
{
    qsizetype length = qMin<qsizetype>(text.size(), qMax(maxLength, 0));
    if (length > 0 && length < text.size() && text.at(length - 1).isHighSurrogate())
        --length;
    storage = text.left(length).toString();
}
