// SPDX-License-Identifier: BSD-3-Clause
#include "partnersindex_p.h"

#include <hostapi/table.h>

PartnersIndex::PartnersIndex()
    : IndexSort(QStringLiteral("gx.diler"), true)
    , m_codeColumn(table()->columnIndex(QStringLiteral("mox_code")))
    , m_nameColumn(table()->columnIndex(QStringLiteral("name")))
    , m_clientCodeColumn(table()->columnIndex(QStringLiteral("client_code")))
{
}

bool PartnersIndex::filter(const Record &) const
{
    return true;
}

int PartnersIndex::compare(const Record &a, const Record &b) const
{
    return a.field(m_codeColumn).compare(b.field(m_codeColumn));
}
