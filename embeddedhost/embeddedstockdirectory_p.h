// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "directorydata_p.h"
#include "snapshot_p.h"

#include <hostapi/directories.h>

/// The exchange directory of the embedded host. It waits for no table.
class EmbeddedStockDirectory : public StockDirectory
{
public:
    explicit EmbeddedStockDirectory(const Snapshot<DirectoryData> *data);

    QString codeById(int stockId) const override;
    int idByCode(const QString &stockCode) const override;

private:
    const Snapshot<DirectoryData> *m_data;
};
