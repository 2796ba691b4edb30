// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <exception>

/// Takes all of several steps although some throw, and throws the first exception after the last
/// step.
class FirstFailure
{
public:
    template <typename Step> void attempt(Step step)
    {
        try {
            step();
        } catch (...) {
            if (!m_first)
                m_first = std::current_exception();
        }
    }
    void rethrow() const
    {
        if (m_first)
            std::rethrow_exception(m_first);
    }

private:
    std::exception_ptr m_first;
};
