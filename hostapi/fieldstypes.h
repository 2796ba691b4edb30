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

/// The standard column types: whatever table a column of such a name stands in, it has this
/// type.
class HOSTAPI_EXPORT FieldsTypes
{
public:
    /// In the data layer's own order.
    static const QVector<NamedFieldType> &all();
    /// The type of a name, or null.
    static const FieldType *find(const QString &name);
};

namespace Gexabus {

/// The types of the gateway's own columns, which go before the standard ones in the tables
/// that the gateway fills ("gx.diler" among them).
class HOSTAPI_EXPORT GxFieldsTypes
{
public:
    /// In the gateway's own order.
    static const QVector<NamedFieldType> &all();
    /// The type of a name, or null.
    static const FieldType *find(const QString &name);
};

} // namespace Gexabus
