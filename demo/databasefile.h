// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Where the demo's reference data comes from.
namespace DatabaseFile {

/// The database that was built beside the demo.
QString sample();

/// A database of that many invented securities, made in the temporary folder unless it is there
/// already. Empty, with the reason in `error`, when it cannot be made.
QString generated(int securities, QString *error);

} // namespace DatabaseFile
