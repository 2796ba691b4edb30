// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "directorydata_p.h"
#include "snapshot_p.h"

#include <hostapi/directories.h>

/// The board directory of the embedded host. It waits for no table.
class EmbeddedBoardDirectory : public BoardDirectory
{
public:
    explicit EmbeddedBoardDirectory(const Snapshot<DirectoryData> *data);

    QString codeById(int stockId, int boardId) const override;
    int idByCode(const QString &stockCode, const QString &boardCode) const override;
    bool checkFlagsById(int stockId, int boardId, qint64 flags) const override;
    bool isPositionById(int stockId, int boardId) const override;

private:
    const Snapshot<DirectoryData> *m_data;
};
