// SPDX-License-Identifier: BSD-3-Clause
#include "referencestore_p.h"

ReferenceStore::ReferenceStore()
    : m_stockDirectory(&m_directories), m_boardDirectory(&m_directories), m_stepSource(&m_steps)
{
    for (const TableSchema &schema : ReferenceSchema::tables())
        m_tables.push_back(std::make_unique<EmbeddedTable>(schema, &m_mutex));
}

ReferenceStore::~ReferenceStore() = default;

Table *ReferenceStore::table(const QString &name)
{
    for (const auto &table : m_tables) {
        if (table->name() == name)
            return table.get();
    }
    return nullptr;
}

void ReferenceStore::setSessions(const QVector<SessionId> &sessions)
{
    auto value = std::make_shared<const QVector<SessionId>>(sessions);
    m_sessions.swap(value);
}

std::vector<const RowLayout *> ReferenceStore::layouts() const
{
    std::vector<const RowLayout *> layouts;
    for (const auto &table : m_tables)
        layouts.push_back(&table->layout());
    return layouts;
}

qint64 ReferenceStore::liveRows() const
{
    qint64 rows = 0;
    for (const auto &table : m_tables)
        rows += table->layout().liveRows();
    return rows;
}

bool ReferenceStore::swap(DatabaseContent &content)
{
    const std::lock_guard<std::recursive_mutex> guard(m_mutex);
    for (size_t i = 0; i < m_tables.size(); ++i)
        m_tables[i]->swap(content.tables[i]);
    m_directories.swap(content.directories);
    m_steps.swap(content.steps);
    const auto sessions = content.sessions;
    m_sessions.swap(content.sessions);
    return *sessions != *content.sessions;
}
