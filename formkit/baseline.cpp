// SPDX-License-Identifier: BSD-3-Clause
#include "baseline_p.h"

#include "doing_p.h"

void Baseline::seed(const QString &name, const QString &content)
{
    if (!m_values.contains(name))
        m_values.insert(name, content);
}

void Baseline::follow(const QString &name, const QString &before, const QString &content,
                      bool isAnswer)
{
    if (!m_forms.isSame(name, before, m_values[name]))
        return;
    const bool isSeed = !Doing::isSetting() && m_forms.isNothing(name, before);
    if (isSeed || (isAnswer && m_forms.isFormOf(name, before, content)))
        m_values.insert(name, content);
}

bool Baseline::isChanged(const QString &name, const Values &held) const
{
    return !m_forms.isSame(name, m_values[name], held[name]);
}

QStringList Baseline::changedNames(const Values &held) const
{
    QStringList names;
    for (auto it = held.cbegin(); it != held.cend(); ++it) {
        if (isChanged(it.key(), held))
            names << it.key();
    }
    return names;
}

Values Baseline::valuesFor(const Values &held) const
{
    Values values = m_values;
    for (auto it = held.cbegin(); it != held.cend(); ++it)
        values.insert(it.key(), m_values[it.key()]);
    return values;
}
