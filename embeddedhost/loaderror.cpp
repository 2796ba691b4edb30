// SPDX-License-Identifier: BSD-3-Clause
#include "loaderror_p.h"

#include <QStringList>

namespace {

// As SQL writes the value.
QString valueText(const QVariant &value)
{
    if (value.isNull())
        return QStringLiteral("NULL");
    if (value.userType() == QMetaType::QByteArray)
        return QStringLiteral("a blob");
    constexpr int longest = 40;
    QString text = value.toString();
    if (text.size() > longest)
        text = text.left(longest) + QStringLiteral("…");
    const bool isText = value.userType() == QMetaType::QString;
    return isText ? QLatin1Char('\'') + text + QLatin1Char('\'') : text;
}

} // namespace

LoadError::LoadError(const QString &file, const TableSchema &table)
    : m_table(table), m_place(QStringLiteral("%1: table \"%2\"").arg(file, table.name))
{
}

LoadError &LoadError::columns(const QVector<int> &columns)
{
    QStringList names;
    for (int column : columns)
        names << QLatin1Char('"') + m_table.columns.at(column).name + QLatin1Char('"');
    m_place += names.size() == 1 ? QStringLiteral(", column ") : QStringLiteral(", columns ");
    m_place += names.join(QStringLiteral(", "));
    return *this;
}

LoadError &LoadError::row(const QVariantList &keyValues)
{
    QStringList parts;
    for (int i = 0; i < m_table.keyColumns.size(); ++i) {
        const QString &name = m_table.columns.at(m_table.keyColumns.at(i)).name;
        parts << name + QLatin1Char(' ') + valueText(keyValues.at(i));
    }
    m_place += QStringLiteral(", row (%1)").arg(parts.join(QStringLiteral(", ")));
    return *this;
}

LoadError &LoadError::row(const RowLayout &layout, RowData *data)
{
    QVariantList values;
    for (int column : m_table.keyColumns) {
        const Field cell = layout.cell(data, column);
        values << (cell.type() == FieldType::String ? QVariant(cell.toString())
                                                    : QVariant(cell.toInteger64()));
    }
    return row(values);
}

void LoadError::raise(const QString &reason) const
{
    throw Exception(m_place + QStringLiteral(": ") + reason);
}
