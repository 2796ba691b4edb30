// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

#include <utility>

/// While an object of this class lives, it says who causes the changes that controls report: the
/// user or the program. A report that comes while there is none is the user's. Of nested objects
/// the outermost counts, unless the program takes over: when the user's choice empties another box,
/// that is the user's doing too.
class Doing
{
public:
    enum Doer { Nobody, User, Program };

    explicit Doing(Doer doer) : Doing(s_doer == Nobody ? doer : s_doer, TakeOver) {}
    ~Doing() { s_doer = m_before; }
    Q_DISABLE_COPY(Doing)

    static Doing programTakesOver() { return Doing(Program, TakeOver); }
    static bool isUsers() { return s_doer == User; }

private:
    enum Force { TakeOver };
    Doing(Doer doer, Force) : m_before(std::exchange(s_doer, doer)) {}

    static inline thread_local Doer s_doer = Nobody;
    const Doer m_before;
};
