// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/fieldtype.h>

#include <QVector>

/// A column type known by the name of what it holds.
struct NamedFieldType
{
    QString name;
    FieldType type;
};

/// The standard column types: a column of such a name has this type in every table.
class HOSTAPI_EXPORT FieldsTypes
{
public:
    /// In a fixed order, that of the terminal's data layer; nothing depends on it.
    static const QVector<NamedFieldType> &all();
    /// The type of a name, or null.
    static const FieldType *find(const QString &name);
};

namespace Gexabus {

/// The types of the gateway's own columns. In the tables that the gateway fills, such as
/// "gx.diler", they override the standard ones.
class HOSTAPI_EXPORT GxFieldsTypes
{
public:
    /// In a fixed order, that of the gateway; nothing depends on it.
    static const QVector<NamedFieldType> &all();
    /// The type of a name, or null.
    static const FieldType *find(const QString &name);
};

} // namespace Gexabus
