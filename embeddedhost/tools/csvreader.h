// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QVector>

/// Reads comma-separated values in UTF-8. Cells with commas, quotes or line ends are in double
/// quotes, with the quotes inside doubled. Blank lines are skipped.
class CsvReader
{
public:
    struct Cell
    {
        QString text;
        /// Where the cell begins, both counted from 1.
        int line = 0;
        int column = 0;
    };

    /// Reads the file; throws Exception when that fails.
    explicit CsvReader(const QString &file);

    /// The cells of the next row; none at the end of the file. Throws Exception for a cell that is
    /// not as above.
    QVector<Cell> nextRow();

    /// Throws Exception("file:line:column: reason").
    [[noreturn]] void fail(const Cell &where, const QString &reason) const;

private:
    Cell nextCell();
    void readQuoted(Cell &cell);
    bool atEnd() const { return m_position >= m_text.size(); }
    bool atLineEnd() const { return atEnd() || m_text.at(m_position) == QLatin1Char('\n'); }
    void skipLineEnd();

    QString m_file;
    QString m_text;
    int m_position = 0;
    int m_line = 1;
    int m_lineStart = 0;
};
