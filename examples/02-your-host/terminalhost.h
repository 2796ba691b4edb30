// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "structtable.h"

#include <hostapi/icore.h>
#include <hostapi/idecoder.h>

#include <QHash>
#include <QMap>

/// What the terminal knows of an exchange, a board, a security and a partner.
struct Exchange
{
    qint32 id;
    QString code;
    QString name;
};

struct TradingBoard
{
    qint32 exchange;
    qint32 id;
    QString code;
    QString name;
};

struct Security
{
    qint32 exchange;
    qint32 board;
    qint64 id;
    QString code;
    QString name;
    qint32 session;
};

struct Partner
{
    QString code;
    QString client;
    QString name;
};

/// Announces to the forms that other sessions are open now.
class SessionNews : public QObject, public IDecoder
{
    Q_OBJECT
    Q_INTERFACES(IDecoder)

Q_SIGNALS:
    void aNewSessions();
};

/// A terminal's reference data, for formkit. Exchanges and boards are the same all day; securities,
/// partners and sessions change while forms are open.
class TerminalHost : public ICore, private IDatabase, private StockDirectory, private BoardDirectory
{
public:
    TerminalHost(const std::vector<Exchange> &exchanges, const std::vector<TradingBoard> &boards);

    /// Any thread may call these. Forms show the new rows when their lists are populated again.
    void setSecurities(const std::vector<Security> &rows) { m_securities.setRows(rows); }
    void setPartners(const std::vector<Partner> &rows) { m_partners.setRows(rows); }
    /// For the forms' thread. The lists of securities are read again at once.
    void setSessions(const QVector<SessionId> &sessions);

    IDatabase *database() override { return this; }
    const StockDirectory *stockDirectory() const override { return this; }
    const BoardDirectory *boardDirectory() const override { return this; }
    QVector<SessionId> currentSessions() const override;
    QList<QObject *> plugins() const override { return {const_cast<SessionNews *>(&m_news)}; }

private:
    Table *table(const QString &name) override;
    /// The directories are asked on the forms' thread, also while a worker has locked a table. They
    /// read what never changes, so they wait for nothing.
    QString codeById(int stockId) const override { return m_codes.value(stockId); }
    int idByCode(const QString &stockCode) const override { return m_codes.key(stockCode); }
    QString codeById(int stockId, int boardId) const override
    {
        return m_boardCodes.value({stockId, boardId});
    }
    int idByCode(const QString &stockCode, const QString &boardCode) const override
    {
        return m_boardIds.value({stockCode, boardCode});
    }
    bool checkFlagsById(int, int, qint64) const override { return false; }
    bool isPositionById(int, int) const override { return false; }

    QHash<int, QString> m_codes;
    QMap<boardid, QString> m_boardCodes;
    QHash<QPair<QString, QString>, int> m_boardIds;
    StructTable<Exchange> m_exchanges;
    StructTable<TradingBoard> m_boards;
    StructTable<Security> m_securities;
    StructTable<Partner> m_partners;
    SessionNews m_news;
    mutable std::mutex m_sessionLock;
    QVector<SessionId> m_sessions;
};
