// SPDX-License-Identifier: BSD-3-Clause
#include "namewrite_p.h"

#include <utility>

namespace {

// How often properties may answer one write of their name with yet another value.
constexpr int MaxAnswers = 20;

} // namespace

NameWrite::NameWrite(QObject *hub, NameWrite **innermost, const QString &name)
    : m_hub(hub), m_innermost(innermost), m_outer(std::exchange(*innermost, this)), m_name(name)
{
}

NameWrite::~NameWrite()
{
    if (m_hub)
        *m_innermost = m_outer;
}

// An inner write hands the new value to all objects but the one that answered, whose other
// properties are left to this write.
bool NameWrite::isLeftFor(const Key &key) const
{
    return !m_isSuperseded || (key.object == m_answer.object && key.index != m_answer.index);
}

bool NameWrite::supersede(NameWrite *innermost, const QString &name, const Key &answer)
{
    const auto supersedeAll = [&](const Key &key) {
        NameWrite *outermost = nullptr;
        for (NameWrite *write = innermost; write; write = write->m_outer) {
            if (write->m_name != name)
                continue;
            write->m_isSuperseded = true;
            write->m_answer = key;
            outermost = write;
        }
        return outermost;
    };
    NameWrite *const outermost = supersedeAll(answer);
    if (!outermost || ++outermost->m_answers <= MaxAnswers)
        return true;
    supersedeAll({});
    return false;
}
