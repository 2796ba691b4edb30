#pragma once

#include <QString>
#include <QVector>

// The reference data of a form that is played with, in a few editions: in the later ones rows
// have gone, have come, or bear other names. Codes and ids keep their meaning.
namespace FormContent {

// A row of any of the tables: an exchange has no board, a board no security.
struct Row
{
    int stock = 0;
    int board = 0;
    int security = 0;
    QString code;
    QString name;

    bool operator==(const Row &other) const
    {
        return stock == other.stock && board == other.board && security == other.security;
    }
};

constexpr int Editions = 4;

// In the order of their keys.
QVector<Row> stocks(int edition);
QVector<Row> boards(int edition);
QVector<Row> securities(int edition);

// Empty, or 0, for what the edition does not have.
QString stockCode(int edition, int stock);
int stockId(int edition, const QString &code);
QString boardCode(int edition, int stock, int board);

// Writes a database for EmbeddedHost. False when that fails.
bool writeDatabase(const QString &file, int edition);

} // namespace FormContent
