// SPDX-License-Identifier: BSD-3-Clause
#include "waitingkey_p.h"

WaitingKey::WaitingKey()
{
    m_turn.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &WaitingKey::turnEnded);
}

void WaitingKey::set(int role, const QVariant &key)
{
    m_role = role;
    m_key = key;
    m_turn.start(0);
}

void WaitingKey::drop()
{
    m_key = QVariant();
}

void WaitingKey::putBack(const QVariant &key)
{
    m_key = key;
}
