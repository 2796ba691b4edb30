// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPListing_p.h"

namespace nsFTP {

std::vector<std::string> linesOf(COutputStream &listing)
{
    std::vector<std::string> lines;
    std::string line;
    while (listing.GetNextLine(line)) {
        if (!line.empty())
            lines.push_back(line);
    }
    return lines;
}

FileStatuses entriesOf(COutputStream &listing, IFileListParser &parser, const std::string &path)
{
    FileStatuses entries;
    std::string line;
    while (listing.GetNextLine(line)) {
        auto status = std::make_shared<CFTPFileStatus>();
        if (parser.Parse(*status, line)) {
            status->path = path;
            status->line = std::move(line);
            entries.push_back(std::move(status));
        }
    }
    return entries;
}

FileStatuses entriesOf(std::vector<std::string> &&names, const std::string &path)
{
    FileStatuses entries;
    for (std::string &name : names) {
        auto status = std::make_shared<CFTPFileStatus>();
        status->name = std::move(name);
        status->path = path;
        status->tryCwd = true;
        status->tryRetrieve = true;
        entries.push_back(std::move(status));
    }
    return entries;
}

} // namespace nsFTP
