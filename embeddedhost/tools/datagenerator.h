// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

class DatabaseWriter;

/// Invents reference data of any size. The same arguments give the same data on every machine.
class DataGenerator
{
public:
    /// Each board has `perBoard` securities, the last one the rest.
    DataGenerator(int securities, quint64 seed, int perBoard);

    /// Writes up to 12 exchanges with four open sessions each, boards spread evenly over the
    /// exchanges, securities in turn for each session, eight to a base code, and 40 partners.
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
