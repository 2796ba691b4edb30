// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPListParse.h"
#include "formkit/FtpClient/FTPStreams.h"

#include <memory>
#include <string>
#include <vector>

namespace nsFTP {

using FileStatuses = std::vector<std::shared_ptr<CFTPFileStatus>>;

/// The lines of a listing without the empty ones.
std::vector<std::string> linesOf(COutputStream &listing);
/// The entries that a parser finds in a listing of a path.
FileStatuses entriesOf(COutputStream &listing, IFileListParser &parser, const std::string &path);
/// Entries with a name and a path only.
FileStatuses entriesOf(std::vector<std::string> &&names, const std::string &path);

} // namespace nsFTP
