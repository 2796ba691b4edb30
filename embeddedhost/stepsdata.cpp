// SPDX-License-Identifier: BSD-3-Clause
#include "stepsdata_p.h"

#include <QHash>

#include <algorithm>

// The rows come by exchange, board and security.
StepsData::StepsData(const TableContent &securities)
{
    const RowLayout &layout = securities.layout();
    const auto columnOf = [&](const char *name) {
        return layout.schema().columnIndex(QLatin1String(name));
    };
    const int stock = columnOf("stock_id"), board = columnOf("board_id");
    const int id = columnOf("sec_id"), price = columnOf("price_step"), lot = columnOf("lot");
    QHash<QPair<QString, qint64>, quint32> known;
    for (int i = 0; i < securities.count(); ++i) {
        RowData *const row = securities.at(i);
        const QString step = layout.cell(row, price).asStaticString();
        const qint64 quantity = layout.cell(row, lot).toInteger64();
        if (step.isEmpty() && quantity == 0)
            continue;
        const auto found = known.constFind({step, quantity});
        const quint32 steps = found == known.constEnd() ? quint32(m_steps.size()) : *found;
        if (found == known.constEnd()) {
            known.insert({step, quantity}, steps);
            m_steps.push_back({step.isEmpty() ? decimal::zero : decimal(step), quantity});
        }
        const boardid place{layout.cell(row, stock).toInteger(),
                            layout.cell(row, board).toInteger()};
        m_boards[place].push_back({layout.cell(row, id).toInteger64(), steps});
    }
}

TradingSteps StepsData::stepsOf(boardid board, qint64 securityId) const
{
    const auto entries = m_boards.find(board);
    if (entries == m_boards.end())
        return {};
    const auto isBefore = [](const Entry &entry, qint64 id) { return entry.securityId < id; };
    const auto entry =
        std::lower_bound(entries->second.begin(), entries->second.end(), securityId, isBefore);
    const bool isFound = entry != entries->second.end() && entry->securityId == securityId;
    return isFound ? m_steps[entry->steps] : TradingSteps();
}
