// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "snapshot_p.h"
#include "tablecontent_p.h"

#include <hostapi/boardid.h>
#include <hostapi/stepsource.h>

#include <map>

/// The steps of the securities of one load: 16 bytes for each security that has any.
class StepsData
{
public:
    StepsData() = default;
    explicit StepsData(const TableContent &securities);

    TradingSteps stepsOf(boardid board, qint64 securityId) const;

private:
    struct Entry
    {
        qint64 securityId;
        quint32 steps; ///< in m_steps
    };

    std::vector<TradingSteps> m_steps;              ///< each once
    std::map<boardid, std::vector<Entry>> m_boards; ///< by security id
};

/// The steps of the embedded host; waits for no table.
class EmbeddedStepSource : public StepSource
{
public:
    explicit EmbeddedStepSource(const Snapshot<StepsData> *data) : m_data(data) {}

    TradingSteps stepsOf(int stockId, int boardId, qint64 securityId) const override
    {
        return m_data->get()->stepsOf({stockId, boardId}, securityId);
    }

private:
    const Snapshot<StepsData> *m_data;
};
