// SPDX-License-Identifier: BSD-3-Clause
#include "state.h"

#include "guilog_p.h"

State::State(const QString &name, QState *parent) : State(name, ExclusiveStates, parent) {}

State::State(const QString &name, QState::ChildMode mode, QState *parent)
    : QState(mode, parent), m_name(name)
{
    setObjectName(name);
}

State::State(const QString &prefix, const QString &name, QState *parent)
    : State(prefix, name, ExclusiveStates, parent)
{
}

State::State(const QString &prefix, const QString &name, QState::ChildMode mode, QState *parent)
    : QState(mode, parent), m_name(name), m_prefix(prefix)
{
    setObjectName(prefix + QLatin1String("::") + name);
}

QString State::fullName() const
{
    QString path = m_name;
    const auto *state = qobject_cast<const State *>(parentState());
    for (; state; state = qobject_cast<const State *>(state->parentState()))
        path.prepend(state->m_name + QLatin1String("->"));
    return path;
}

void State::setName(const QString &name)
{
    m_name = name;
}

void State::setPrefix(const QString &prefix)
{
    m_prefix = prefix;
}

void State::onEntry(QEvent *event)
{
    qCDebug(guiLog).noquote() << "Entering state: " << m_prefix << "::" << fullName();
    QState::onEntry(event);
}

void State::onExit(QEvent *event)
{
    qCDebug(guiLog).noquote() << "Exiting state: " << m_prefix << "::" << fullName();
    QState::onExit(event);
}
