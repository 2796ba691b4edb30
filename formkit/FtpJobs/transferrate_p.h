// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

#include <deque>
#include <utility>

/// The speed of a transfer in its last seconds.
class TransferRate
{
public:
    /// Adds a sample: a time in milliseconds, of any clock, and how many bytes were moved by then.
    void add(qint64 time, qint64 moved);
    qint64 bytesPerSecond() const;

private:
    std::deque<std::pair<qint64, qint64>> m_samples;
};
