// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPTransferState_p.h"

namespace nsFTP {

TransferState::Scope::Scope(TransferState &state, Kind kind) : m_state(state)
{
    const std::lock_guard<std::mutex> guard(m_state.m_guard);
    m_entered = kind == Step || m_state.m_depth == 0;
    if (m_entered && m_state.m_depth++ == 0)
        m_state.m_thread = std::this_thread::get_id();
}

TransferState::Scope::~Scope()
{
    const std::lock_guard<std::mutex> guard(m_state.m_guard);
    if (!m_entered || --m_state.m_depth > 0)
        return;
    m_state.m_abortRequested = false;
    if (!m_state.m_givenUp)
        m_state.m_interruption->Clear();
}

bool TransferState::isRunning() const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    return m_depth > 0;
}

bool TransferState::requestAbort()
{
    const std::lock_guard<std::mutex> guard(m_guard);
    if (m_depth == 0)
        return false;
    m_abortRequested = true;
    if (m_thread != std::this_thread::get_id())
        m_interruption->Raise();
    return true;
}

void TransferState::giveUp()
{
    const std::lock_guard<std::mutex> guard(m_guard);
    m_givenUp = true;
    m_interruption->Raise();
}

} // namespace nsFTP
