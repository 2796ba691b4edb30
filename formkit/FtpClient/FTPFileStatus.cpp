// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPListParse.h"

#include <tuple>

namespace nsFTP {

void CFTPFileStatus::Reset()
{
    // Cleared in place: strings keep their memory for the next line.
    for (std::string *text : {&name, &path, &attributes, &owner, &group, &links, &id, &line})
        text->clear();
    tryCwd = false;
    tryRetrieve = false;
    sizeType = sizeUnknown;
    size = -1;
    mtimeType = timeUnknown;
    mtime = 0;
    idType = idUnknown;
}

bool CFTPFileStatus::operator==(const CFTPFileStatus &other) const
{
    const auto fields = [](const CFTPFileStatus &s) {
        return std::tie(s.name, s.path, s.tryCwd, s.tryRetrieve, s.sizeType, s.size, s.mtimeType,
                        s.mtime, s.attributes, s.owner, s.group, s.links, s.idType, s.id);
    };
    return fields(*this) == fields(other);
}

} // namespace nsFTP
