// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "directorydata_p.h"
#include "stepsdata_p.h"

#include <hostapi/icore.h>

#include <memory>

/// Everything that one load of a database gives.
struct DatabaseContent
{
    /// In the order of ReferenceSchema::tables().
    std::vector<TableContent> tables;
    std::shared_ptr<const DirectoryData> directories;
    std::shared_ptr<const QVector<SessionId>> sessions;
    std::shared_ptr<const StepsData> steps;
};
