#include "formcontent.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

#include <algorithm>

namespace {

using FormContent::Row;

QVector<Row> without(QVector<Row> rows, const Row &gone)
{
    rows.removeAll(gone);
    return rows;
}

QVector<Row> renamed(QVector<Row> rows, const Row &row, const char *name)
{
    std::find(rows.begin(), rows.end(), row)->name = QString::fromLatin1(name);
    return rows;
}

} // namespace

QVector<Row> FormContent::stocks(int edition)
{
    const QVector<Row> all{
        {1, 0, 0, "XA", "Alpha"}, {2, 0, 0, "XB", "Beta"}, {3, 0, 0, "XC", "alphabet"}};
    if (edition == 1)
        return renamed(all, {1, 0, 0, {}, {}}, "Aleph");
    return edition == 2 ? without(all, {2, 0, 0, {}, {}}) : all;
}

// "Main" is a board of two exchanges.
QVector<Row> FormContent::boards(int edition)
{
    QVector<Row> all{{1, 1, 0, "MA", "Main"}, {1, 2, 0, "FU", "Futures"}, {1, 3, 0, "fu", "Full"},
                     {2, 1, 0, "MA", "Main"}, {2, 4, 0, "OP", "Options"}, {3, 5, 0, "MX", "main"}};
    if (edition == 2) {
        all.erase(all.begin() + 3, all.begin() + 5);
        return all;
    }
    if (edition == 3)
        return without(renamed(all, {2, 4, 0, {}, {}}, "Main x"), {1, 2, 0, {}, {}});
    return edition == 1 ? renamed(all, {1, 2, 0, {}, {}}, "Futures and more") : all;
}

// Security 11 is traded on two boards, and two others differ in the case of their names alone.
QVector<Row> FormContent::securities(int edition)
{
    const QVector<Row> all{
        {1, 1, 11, "ORE", "Ore"}, {1, 1, 12, "oat", "Oats"},    {1, 1, 13, "OATS", "OATS"},
        {1, 2, 11, "ORE", "Ore"}, {1, 2, 14, "ORE-3", "Ore 3"}, {2, 1, 15, "WAX", "Wax"},
        {2, 1, 16, "WA", "Wa"},   {2, 4, 17, "ORE", "Ore"},     {3, 5, 18, "TIN", "Tin"}};
    QVector<Row> rows;
    const QVector<Row> homes = boards(edition);
    for (const Row &row : all) {
        if (homes.contains({row.stock, row.board, 0, {}, {}}))
            rows << row;
    }
    if (edition == 1)
        return without(renamed(rows, {1, 1, 12, {}, {}}, "Ore"), {1, 1, 11, {}, {}});
    return rows;
}

QString FormContent::stockCode(int edition, int stock)
{
    for (const Row &row : stocks(edition)) {
        if (row.stock == stock)
            return row.code;
    }
    return {};
}

int FormContent::stockId(int edition, const QString &code)
{
    for (const Row &row : stocks(edition)) {
        if (row.code == code)
            return row.stock;
    }
    return 0;
}

QString FormContent::boardCode(int edition, int stock, int board)
{
    for (const Row &row : boards(edition)) {
        if (row.stock == stock && row.board == board)
            return row.code;
    }
    return {};
}

bool FormContent::writeDatabase(const QString &file, int edition)
{
    QStringList commands{
        "CREATE TABLE stocks (stock_id, stock_code, name)",
        "CREATE TABLE boards (stock_id, board_id, board_code, name, sectype, flags, position)",
        "CREATE TABLE securities (stock_id, board_id, sec_id, sec_code, sec_name, base_code, "
        "sess_id)",
        "CREATE TABLE \"gx.diler\" (mox_code, client_code, name)",
        "CREATE TABLE sessions (stock_id, sess_id)"};
    const auto insert = [&commands](const QString &format, const QVector<Row> &rows) {
        for (const Row &row : rows) {
            commands << "INSERT INTO " + format.arg(row.stock)
                                             .arg(row.board)
                                             .arg(row.security)
                                             .arg(row.code, row.name);
        }
    };
    insert("stocks SELECT %1, '%4', '%5' WHERE %2 = %3", stocks(edition));
    insert("sessions SELECT %1, 1 WHERE %2 = %3 AND '%4' <> '%5'", stocks(edition));
    insert("boards SELECT %1, %2, '%4', '%5', 'S', 0, 0 WHERE %3 = 0", boards(edition));
    insert("securities SELECT %1, %2, %3, '%4', '%5', '', 1", securities(edition));

    const QString connection = QStringLiteral("formcontent");
    bool isWritten = true;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(file);
        isWritten = database.open() && database.transaction();
        QSqlQuery query(database);
        for (const QString &command : qAsConst(commands))
            isWritten = isWritten && query.exec(command);
        isWritten = isWritten && database.commit();
    }
    QSqlDatabase::removeDatabase(connection);
    return isWritten;
}
