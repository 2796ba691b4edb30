// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

class DatabaseWriter;

/// Invents reference data of any size; the same numbers give the same data on every machine.
class DataGenerator
{
public:
    /// `perBoard` securities stand on each board (fewer on the last).
    DataGenerator(int securities, quint64 seed, int perBoard);

    /// Up to 12 exchanges with four sessions each, all open; boards, spread evenly over the
    /// exchanges; securities, eight to a base code, in sessions by turns; 40 partners.
    void write(DatabaseWriter &writer);

private:
    quint64 next();
    int pick(int count) { return int(next() % quint64(count)); }
    QString word();
    QString securityName(int number);
    void writeExchanges(DatabaseWriter &writer) const;
    void writeSecurities(DatabaseWriter &writer);
    void writePartners(DatabaseWriter &writer);
    int stockOf(int board) const { return 1 + board % m_exchanges; }

    const int m_securities;
    const int m_perBoard;
    const int m_boards;
    const int m_exchanges;
    quint64 m_state;
};
