// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

#include <utility>

/// Says whose doing it is that controls report changes, for as long as it lives. A report that
/// comes while none lives is the user's. The doing that is under way goes on, unless the program
/// takes over: a choice that empties another box was made by whoever chose.
class Doing
{
public:
    enum Doer { Nobody, User, Program, Setter };

    explicit Doing(Doer doer) : Doing(s_doer == Nobody ? doer : s_doer, TakeOver) {}
    ~Doing() { s_doer = m_before; }
    Q_DISABLE_COPY(Doing)

    static Doing programTakesOver() { return Doing(Program, TakeOver); }
    /// The same, where the program gives the hub a value.
    static Doing programSets() { return Doing(Setter, TakeOver); }
    static bool isUsers() { return s_doer == User; }
    static bool isSetting() { return s_doer == Setter; }

private:
    enum Force { TakeOver };
    Doing(Doer doer, Force) : m_before(std::exchange(s_doer, doer)) {}

    static inline thread_local Doer s_doer = Nobody;
    const Doer m_before;
};
