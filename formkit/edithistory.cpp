// SPDX-License-Identifier: BSD-3-Clause
#include "edithistory_p.h"

namespace {

// A key that is held down would fill the memory.
constexpr int MostEdits = 1000;

} // namespace

void EditHistory::clear()
{
    *this = {};
}

void EditHistory::record(const State &before, Kind kind, int caretAfter)
{
    const bool isRun = kind == Typing || kind == Deletion;
    if (!isRun || kind != m_run)
        m_past << before;
    if (m_past.size() > MostEdits)
        m_past.removeFirst();
    m_future.clear();
    m_run = kind;
    m_caret = caretAfter;
}

std::optional<EditHistory::State> EditHistory::go(QVector<State> *from, QVector<State> *to,
                                                  const State &now)
{
    endRun();
    if (from->isEmpty())
        return {};
    *to << now;
    return from->takeLast();
}
