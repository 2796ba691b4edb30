// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// The memory of this process, in megabytes of what is resident, as Linux tells it.
namespace ProcessMemory {

double now();
/// The most since resetPeak().
double peak();
/// Gives back what is free first.
void resetPeak();

} // namespace ProcessMemory
