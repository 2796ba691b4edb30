// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

#include <utility>

/// Who causes the changes that controls report, while an object of this class lives. The hub makes
/// one for the user when a report reaches it and none lives: so such a report is the user's. Of
/// nested objects the outermost counts: what follows from the user's choice is the user's too. Only
/// programTakesOver() overrides it (setValue(), showAgain()).
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
