// SPDX-License-Identifier: BSD-3-Clause
#include "signalblocker.h"

#include <QObject>

SignalBlocker::SignalBlocker(QObject *object, bool block)
    : m_object(object), m_previous(object->blockSignals(block))
{
}

SignalBlocker::~SignalBlocker()
{
    m_object->blockSignals(m_previous);
}
