// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPListParse.h"

#include <map>

namespace nsFTP {

/// The parser for the lines of MLSD and MLST: "type=file;size=5;modify=20240229120001; name".
/// - type: "file" can be retrieved; "dir" can be changed into; a link, and an entry without a type,
///   may be either; other types are neither.
/// - size, modify (UTC, the time is exact), unique (the id), UNIX.mode (the attributes), UNIX.owner
///   and UNIX.group (their numbers where there are no names). A size or time that cannot be read
///   stays unknown.
/// - The name is all that follows the first blank, as it is.
class FORMKITFTP_EXPORT CFTPFactParser : public IFileListParser
{
public:
    /// By their names in lower case.
    using TFacts = std::map<std::string, std::string>;

    /// False also for the listed directory itself and its parent ("cdir", "pdir").
    bool Parse(CFTPFileStatus &status, const std::string &line) override;

    /// As Parse(), but also reads "cdir" and "pdir", since MLST may be asked for these.
    static bool ParseEntry(CFTPFileStatus &status, std::string_view line);
    /// All facts of a line, and the name; false when the line has none.
    static bool Split(std::string_view line, TFacts &facts, std::string &name);
};

} // namespace nsFTP
