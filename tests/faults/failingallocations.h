// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Lets allocations of the program fail, those of operator new and of malloc: Qt's containers
/// use either. For one thread at a time.
namespace Allocations {

/// The n-th allocation from now fails; 0 for none.
extern long failAt;
/// Whether all later ones fail too.
extern bool failOn;
/// How many have failed, and how many are not freed yet.
extern long failed;
extern long live;

} // namespace Allocations
