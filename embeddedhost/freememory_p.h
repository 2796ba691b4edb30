// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Gives what has been freed back to the system. The C library of Linux keeps it otherwise where
/// new rows stand between: as much again as the rows take, after a reload.
void giveBackFreeMemory();
