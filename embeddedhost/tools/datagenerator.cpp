// SPDX-License-Identifier: BSD-3-Clause
#include "datagenerator.h"

#include "databasewriter.h"

namespace {

constexpr int Sessions = 4;
constexpr int PerBaseCode = 8;

// 0 is "AAAA", 1 "AAAB", and so on.
QString letters(int number)
{
    QString text;
    do {
        text.prepend(QChar('A' + number % 26));
        number /= 26;
    } while (number > 0);
    return text.rightJustified(4, QLatin1Char('A'));
}

} // namespace

DataGenerator::DataGenerator(int securities, quint64 seed, int perBoard)
    : m_securities(securities)
    , m_perBoard(perBoard)
    , m_boards(qMax(1, (securities - 1) / perBoard + 1))
    , m_exchanges(qMin(12, m_boards))
    , m_state(seed)
{
}

// SplitMix64: the standard library's distributions differ between implementations.
quint64 DataGenerator::next()
{
    m_state += 0x9e3779b97f4a7c15u;
    quint64 z = m_state;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
}

QString DataGenerator::word()
{
    static const char *const syllables[] = {"ar", "bel", "cor", "dan", "el",  "fin", "gra", "hol",
                                            "is", "jen", "kel", "lor", "mar", "nov", "or",  "pra",
                                            "ra", "sol", "tem", "ul",  "ver", "win", "yl",  "zan"};
    QString text;
    for (int i = 2 + pick(2); i > 0; --i)
        text += QLatin1String(syllables[pick(int(std::size(syllables)))]);
    text[0] = text.at(0).toUpper();
    return text;
}

QString DataGenerator::securityName(int number)
{
    static const char *const kinds[] = {"Energy",    "Foods", "Bank",  "Metals",
                                        "Transport", "Fund",  "Media", "Water"};
    QString name = QStringLiteral("%1 %2 %3")
                       .arg(word(), QLatin1String(kinds[pick(int(std::size(kinds)))]))
                       .arg(number);
    switch (pick(4)) {
    case 0:
        return name.toUpper();
    case 1:
        return name.toLower();
    default:
        return name;
    }
}

void DataGenerator::write(DatabaseWriter &writer)
{
    writeExchanges(writer);
    writeSecurities(writer);
    writePartners(writer);
}

void DataGenerator::writeExchanges(DatabaseWriter &writer) const
{
    for (int stock = 1; stock <= m_exchanges; ++stock) {
        writer.insert(ReferenceSchema::Stocks, {stock, QStringLiteral("X%1").arg(letters(stock)),
                                                QStringLiteral("Exchange %1").arg(stock)});
        for (int session = 1; session <= Sessions; ++session)
            writer.insert(ReferenceSchema::Sessions, {stock, session});
    }
    static const QString types = QStringLiteral("SFO");
    for (int board = 0; board < m_boards; ++board) {
        writer.insert(ReferenceSchema::Boards,
                      {stockOf(board), board + 1, QStringLiteral("B%1").arg(letters(board)),
                       QStringLiteral("Board %1").arg(board + 1), types.mid(board % 3, 1),
                       1 << board % 4, board % 2});
    }
}

void DataGenerator::writeSecurities(DatabaseWriter &writer)
{
    static const char *const priceSteps[] = {"0.01", "0.05", "0.0001", "5"};
    static const int lots[] = {1, 10, 1000};
    for (int number = 0; number < m_securities; ++number) {
        const int board = number / m_perBoard;
        writer.insert(ReferenceSchema::Securities,
                      {stockOf(board), board + 1, number + 1, letters(number),
                       securityName(number + 1), letters(number - number % PerBaseCode),
                       1 + number % Sessions, QLatin1String(priceSteps[board % 4]),
                       lots[board % 3]});
    }
}

void DataGenerator::writePartners(DatabaseWriter &writer)
{
    for (int partner = 1; partner <= 40; ++partner) {
        const QVariant client =
            partner % 8 ? QVariant(QStringLiteral("C%1").arg(partner, 5, 10, QLatin1Char('0')))
                        : QVariant();
        writer.insert(ReferenceSchema::Partners,
                      {QStringLiteral("P%1").arg(partner, 4, 10, QLatin1Char('0')), client,
                       word() + QStringLiteral(" Brokers")});
    }
}
