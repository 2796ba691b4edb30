// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "securityselectormodel.h"

#include <hostapi/table.h>

#include <QVariant>

#include <utility>
#include <vector>

/// The rows of a list of securities, by exchange code, board code and name. It knows neither the
/// model nor the host, so that a worker may make one.
class SecurityRows
{
public:
    using Data = SecuritySelectorModel::Data;
    /// The rows of one board.
    struct Board
    {
        QString stockCode;
        QString boardCode;
        RowRange rows;
    };

    SecurityRows() = default;
    /// `boards` in the order of the rows.
    SecurityRows(QVector<Data> rows, QVector<Board> boards)
        : m_rows(std::move(rows)), m_boards(std::move(boards))
    {
    }

    int count() const { return m_rows.size(); }
    const Data &at(int row) const { return m_rows.at(row); }
    /// By SecuritySelectorModel::ItemDataRole; invalid for another role.
    QVariant data(int row, int role) const;
    /// Empty for a board without rows.
    RowRange rowsOfBoard(const QString &stockCode, const QString &boardCode) const;

private:
    QVector<Data> m_rows;
    QVector<Board> m_boards;
};

/// Where the table of securities keeps what a list shows.
struct SecurityColumns
{
    explicit SecurityColumns(const Table *table);

    boardid boardOf(const Record &record) const;
    /// All but the codes that the directories know.
    SecurityRows::Data read(const Record &record) const;

    int stockId;
    int boardId;
    int secId;
    int secName;
    int secCode;
    int baseCode;
    int session;
};

/// Securities on their way from the table into a list: read record by record while the table is
/// locked, and ordered when the directories have given the codes of their boards.
class SecurityReading
{
public:
    /// What the directories call a board.
    struct Codes
    {
        QString stock;
        QString board;
    };

    /// Asks the directories; to be called on the forms' thread.
    static Codes codesOf(boardid board);

    explicit SecurityReading(const SecurityColumns &columns) : m_columns(columns) {}

    /// Begins, with room for so many.
    void begin(int count);
    void add(const Record &record);
    void end();

    /// The boards of all rows, each once.
    const std::vector<boardid> &boards() const { return m_boards; }
    /// The rows, in the order of SecuritySelectorModel::Data; the later read goes first among
    /// equals. `codes` stand in the order of boards(). Nothing is left here.
    SecurityRows takeOrdered(const std::vector<Codes> &codes);

private:
    /// Rows that were read one after the other and are of one board.
    struct Run
    {
        boardid board;
        RowRange rows;
    };

    SecurityColumns m_columns;
    QVector<SecurityRows::Data> m_rows;
    std::vector<Run> m_runs;
    std::vector<boardid> m_boards;
};
