// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/Interruption.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

namespace nsFTP {

/// Whether a transfer runs, and whether it shall end. A request from the transfer's own thread ends
/// it after the next block; one from another thread also ends its waits.
class TransferState
{
public:
    /// The time of a data-channel command, or of a single step that the caller invokes by itself.
    /// Requests to abort are forgotten at the end of the outermost scope.
    class Scope
    {
    public:
        enum Kind { Command, Step };

        /// A command is not entered while another one runs.
        Scope(TransferState &state, Kind kind);
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;
        ~Scope();
        bool entered() const { return m_entered; }

    private:
        TransferState &m_state;
        bool m_entered;
    };

    /// The time in which bytes go over the data connection.
    class Moving
    {
    public:
        explicit Moving(TransferState &state) : m_state(state) { m_state.m_moving = true; }
        Moving(const Moving &) = delete;
        Moving &operator=(const Moving &) = delete;
        ~Moving() { m_state.m_moving = false; }

    private:
        TransferState &m_state;
    };

    bool isRunning() const;
    bool isMoving() const { return m_moving; }
    /// From any thread. False when nothing runs.
    bool requestAbort();
    /// From any thread, and for good: every wait ends, and so does every transfer.
    void giveUp();
    /// From the transfer's own thread.
    void stop() { m_abortRequested = true; }
    void forgetAbort() { m_abortRequested = false; }
    bool isAbortRequested() const { return m_abortRequested || m_givenUp; }
    /// Whether another thread has ended the waits.
    bool isInterrupted() const { return m_interruption->IsRaised(); }
    const std::shared_ptr<nsSocket::CInterruption> &interruption() const { return m_interruption; }

private:
    const std::shared_ptr<nsSocket::CInterruption> m_interruption =
        std::make_shared<nsSocket::CInterruption>();
    std::atomic<bool> m_moving{false};
    std::atomic<bool> m_abortRequested{false};
    std::atomic<bool> m_givenUp{false};
    /// Guards what follows, and keeps a request to abort from outlasting its transfer.
    mutable std::mutex m_guard;
    int m_depth = 0;
    std::thread::id m_thread;
};

} // namespace nsFTP
