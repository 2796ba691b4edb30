// SPDX-License-Identifier: BSD-3-Clause
#include "icore.h"

#include "emptylists_p.h"
#include "emptytable_p.h"

#include <map>
#include <memory>

namespace {

class EmptyDatabase : public IDatabase
{
public:
    Table *table(const QString &name) override
    {
        std::unique_ptr<EmptyTable> &table = m_tables[name];
        if (!table)
            table = std::make_unique<EmptyTable>(name);
        return table.get();
    }

private:
    std::map<QString, std::unique_ptr<EmptyTable>> m_tables;
};

class EmptyStocks : public StockDirectory
{
public:
    QString codeById(int) const override { return {}; }
    int idByCode(const QString &) const override { return 0; }
};

class EmptyBoards : public BoardDirectory
{
public:
    QString codeById(int, int) const override { return {}; }
    int idByCode(const QString &, const QString &) const override { return 0; }
    bool checkFlagsById(int, int, qint64) const override { return false; }
    bool isPositionById(int, int) const override { return false; }
};

class EmptySteps : public StepSource
{
public:
    TradingSteps stepsOf(int, int, qint64) const override { return {}; }
};

class EmptyCore : public ICore
{
public:
    IDatabase *database() override { return &m_database; }
    const StockDirectory *stockDirectory() const override { return &m_stocks; }
    const BoardDirectory *boardDirectory() const override { return &m_boards; }
    QVector<SessionId> currentSessions() const override { return {}; }
    QList<QObject *> plugins() const override { return {}; }

private:
    EmptyDatabase m_database;
    EmptyStocks m_stocks;
    EmptyBoards m_boards;
};

EmptyCore &emptyCore()
{
    static EmptyCore core;
    return core;
}

ICore *installedCore = nullptr;

} // namespace

IDatabase::~IDatabase() = default;

ICore::~ICore() = default;

const StepSource *ICore::stepSource() const
{
    static const EmptySteps none;
    return &none;
}

ICore *ICore::instance()
{
    return installedCore ? installedCore : &emptyCore();
}

void ICore::install(ICore *core)
{
    installedCore = core;
    EmptyLists::forget();
}

Table *ICore::table(const QString &name)
{
    if (this == &emptyCore())
        EmptyLists::warn(QStringLiteral("ICore::table: no host is installed: lists stay empty"));
    if (Table *found = database()->table(name))
        return found;
    EmptyLists::warn(QStringLiteral("ICore::table: the host has no table \"%1\"").arg(name));
    return emptyCore().database()->table(name);
}
