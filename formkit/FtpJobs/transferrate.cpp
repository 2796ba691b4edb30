// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/transferrate_p.h"

namespace {

constexpr qint64 WindowMSecs = 5000;

} // namespace

void TransferRate::add(qint64 time, qint64 moved)
{
    m_samples.emplace_back(time, moved);
    while (m_samples.size() > 2 && time - m_samples[1].first >= WindowMSecs)
        m_samples.pop_front();
}

qint64 TransferRate::bytesPerSecond() const
{
    if (m_samples.empty())
        return 0;
    const auto &[begin, before] = m_samples.front();
    const auto &[end, after] = m_samples.back();
    return end > begin ? (after - before) * 1000 / (end - begin) : 0;
}
