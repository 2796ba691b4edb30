// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/hostapi_export.h>

#include <QString>
#include <QStringView>

/// The type of a column: a code and a parameter.
class HOSTAPI_EXPORT FieldType
{
public:
    /// In brackets: the C++ type that stores a cell.
    enum Type {
        Integer = 1,   ///< 32 bits (qint32)
        Integer64 = 2, ///< 64 bits (qint64)
        Double = 3,    ///< (double)
        Decimal = 4,   ///< parameter: digits after the point (decimal)
        String = 5,    ///< parameter: maximum length in characters (QString)
        DateTime = 6,  ///< (datetime)
        BoardList = 7  ///< (boardlist)
    };

    /// The parameter counts for Decimal and String only.
    constexpr FieldType(Type type = Integer, int parameter = 0)
        : m_type(type), m_parameter(parameter)
    {
    }

    /// The code, and its parameter.
    constexpr Type type() const { return m_type; }
    constexpr int parameter() const { return m_parameter; }

    /// The name of the type in error texts: "integer", "integer64", "double", "decimal", "string",
    /// "datetime" or "boardlist"; "type N" for any other code.
    static QString typeName(Type type);
    /// Stores the text in a string cell, cut to the column's length, but never between the two
    /// halves of a surrogate pair.
    static void setString(QString &storage, int maxLength, QStringView text);

    friend bool operator==(FieldType a, FieldType b)
    {
        return a.m_type == b.m_type && a.m_parameter == b.m_parameter;
    }

private:
    Type m_type;
    int m_parameter;
};
