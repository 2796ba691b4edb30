// SPDX-License-Identifier: BSD-3-Clause
#include "embeddedstockdirectory_p.h"

EmbeddedStockDirectory::EmbeddedStockDirectory(const Snapshot<DirectoryData> *data) : m_data(data)
{
}

QString EmbeddedStockDirectory::codeById(int stockId) const
{
    return m_data->get()->stockCode(stockId);
}

int EmbeddedStockDirectory::idByCode(const QString &stockCode) const
{
    return m_data->get()->stockId(stockCode);
}
