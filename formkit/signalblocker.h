// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QtGlobal>

class QObject;

/// Blocks or, with false, unblocks an object's signals for a scope, and then puts back the state
/// that it found: blockers within each other unwind rightly. The object must outlive the blocker,
/// and must not be null.
class FORMKIT_EXPORT SignalBlocker
{
public:
    /// From here on the signals are blocked, or let through when `block` is false.
    SignalBlocker(QObject *object, bool block);
    ~SignalBlocker();
    Q_DISABLE_COPY(SignalBlocker)

private:
    QObject *m_object;
    bool m_previous;
};
