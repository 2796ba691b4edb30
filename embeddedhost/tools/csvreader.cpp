// SPDX-License-Identifier: BSD-3-Clause
#include "csvreader.h"

#include <hostapi/exception.h>

#include <QFile>

CsvReader::CsvReader(const QString &file) : m_file(file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("%1: %2").arg(file, source.errorString()));
    m_text = QString::fromUtf8(source.readAll());
    m_text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

QVector<CsvReader::Cell> CsvReader::nextRow()
{
    while (!atEnd() && atLineEnd())
        skipLineEnd();
    QVector<Cell> cells;
    if (atEnd())
        return cells;
    cells << nextCell();
    while (!atLineEnd()) {
        ++m_position; // the comma
        cells << nextCell();
    }
    skipLineEnd();
    return cells;
}

CsvReader::Cell CsvReader::nextCell()
{
    Cell cell{QString(), m_line, m_position - m_lineStart + 1};
    if (!atLineEnd() && m_text.at(m_position) == QLatin1Char('"')) {
        readQuoted(cell);
    } else {
        while (!atLineEnd() && m_text.at(m_position) != QLatin1Char(','))
            cell.text += m_text.at(m_position++);
        if (cell.text.contains(QLatin1Char('"')))
            fail(cell, QStringLiteral("a quote inside a cell that does not begin with one"));
    }
    if (cell.text.contains(QChar(QChar::ReplacementCharacter)))
        fail(cell, QStringLiteral("not UTF-8"));
    return cell;
}

void CsvReader::readQuoted(Cell &cell)
{
    const QLatin1Char quote('"');
    for (++m_position; !atEnd(); ++m_position) {
        if (m_text.at(m_position) == quote && m_text.mid(m_position + 1, 1) != QString(quote))
            break;
        if (m_text.at(m_position) == quote)
            ++m_position;
        cell.text += m_text.at(m_position);
        if (m_text.at(m_position) == QLatin1Char('\n')) {
            ++m_line;
            m_lineStart = m_position + 1;
        }
    }
    if (atEnd())
        fail(cell, QStringLiteral("the closing quote is missing"));
    ++m_position;
    if (!atLineEnd() && m_text.at(m_position) != QLatin1Char(','))
        fail(cell, QStringLiteral("text after the closing quote"));
}

void CsvReader::skipLineEnd()
{
    ++m_position;
    ++m_line;
    m_lineStart = m_position;
}

void CsvReader::fail(const Cell &where, const QString &reason) const
{
    throw Exception(
        QStringLiteral("%1:%2:%3: %4").arg(m_file).arg(where.line).arg(where.column).arg(reason));
}
