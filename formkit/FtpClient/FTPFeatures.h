// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPDataTypes.h"

namespace nsFTP {

/// What a server says in its reply to FEAT: the names of its extensions, and what stands after them
/// ("MLST", with "type*;size*;modify*;"). Names are compared without regard to case.
class FORMKITFTP_EXPORT CFTPFeatures
{
public:
    /// No extensions.
    CFTPFeatures() = default;
    /// Reads a reply to FEAT: one extension on each line but the first and the last. Blank lines
    /// are left out.
    explicit CFTPFeatures(const CReply &reply);

    /// Whether the server has it.
    bool Has(const std::string &name) const;
    /// What stands after a name; empty when the server has no such extension.
    std::string Parameters(const std::string &name) const;
    /// The names in upper case.
    std::vector<std::string> Names() const;

private:
    std::map<std::string, std::string> m_Features;
};

} // namespace nsFTP
