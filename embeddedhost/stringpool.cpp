// SPDX-License-Identifier: BSD-3-Clause
#include "stringpool_p.h"

QString StringPool::share(const QString &text)
{
    constexpr int enough = 4096;
    if (m_gaveUp)
        return text;
    const auto found = m_texts.constFind(text);
    if (found != m_texts.constEnd()) {
        ++m_hits;
        return *found;
    }
    if (m_texts.size() >= enough && m_hits < m_texts.size()) {
        m_gaveUp = true;
        m_texts.clear();
        return text;
    }
    m_texts.insert(text);
    return text;
}
