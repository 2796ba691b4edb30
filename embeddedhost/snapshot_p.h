// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <mutex>

/// A value that is never changed, only replaced as a whole: a pointer from get() stays valid. The
/// mutex is held only to copy a pointer, and nothing else is locked meanwhile.
template <typename T> class Snapshot
{
public:
    Snapshot() : m_value(std::make_shared<const T>()) {}

    std::shared_ptr<const T> get() const
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_value;
    }
    void swap(std::shared_ptr<const T> &value)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_value.swap(value);
    }

private:
    mutable std::mutex m_mutex;
    std::shared_ptr<const T> m_value;
};
