// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "numberrules_p.h"

/// The number that lies `count` steps above `from` (below it, where `count` is negative), on the
/// grid of the multiples of the step; the first step from a number beside the grid leads to the
/// next multiple. No step leads over a limit: the last number within it is the end. None when there
/// is no further one, and when it does not fit into a decimal.
///
/// Without a number to start from the steps begin at zero, and end within both limits. The result
/// has as many fraction digits as the step and the number, the latter's counted up to `digits`.
///
/// There must be a step.
std::optional<decimal> stepped(const std::optional<decimal> &from, int count,
                               const NumberRules &rules, int digits);
