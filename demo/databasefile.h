// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// The files with the demo's reference data.
namespace DatabaseFile {

/// The database that is built with the demo.
QString sample();

/// A database of that many invented securities, made in the temporary folder if it is not there
/// yet. Empty, with the reason in `error`, if it cannot be made.
QString generated(int securities, QString *error);

} // namespace DatabaseFile
