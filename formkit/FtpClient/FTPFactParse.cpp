// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPFactParse.h"

#include "formkit/FtpClient/FTPProtocol_p.h"

namespace nsFTP {

namespace {

std::string valueOf(const CFTPFactParser::TFacts &facts, const char *name)
{
    const auto found = facts.find(name);
    return found == facts.end() ? std::string() : found->second;
}

bool contains(const std::string &text, const char *part)
{
    return text.find(part) != std::string::npos;
}

void setType(CFTPFileStatus &status, const std::string &type)
{
    // "OS.unix=slink:/to/there", "OS.unix=symlink"
    const bool open = type.empty() || contains(type, "slink") || contains(type, "symlink");
    status.tryRetrieve = open || type == "file";
    status.tryCwd = open || type == "dir" || type == "cdir" || type == "pdir";
}

bool readEntry(CFTPFileStatus &status, std::string_view line, CFTPFactParser::TFacts &facts)
{
    status.Reset();
    if (!CFTPFactParser::Split(line, facts, status.name))
        return false;
    setType(status, lower(valueOf(facts, "type")));
    const std::string size = valueOf(facts, "size");
    long bytes = 0;
    if (CFTPListParser::GetLong(size.data(), size.size(), bytes)) {
        status.sizeType = CFTPFileStatus::sizeBytes;
        status.size = bytes;
    }
    if (readTime(valueOf(facts, "modify"), status.mtime))
        status.mtimeType = CFTPFileStatus::timeExact;
    status.id = valueOf(facts, "unique");
    status.idType = status.id.empty() ? CFTPFileStatus::idUnknown : CFTPFileStatus::idFull;
    status.attributes = valueOf(facts, "unix.mode");
    const std::string owner = valueOf(facts, "unix.ownername");
    const std::string group = valueOf(facts, "unix.groupname");
    status.owner = owner.empty() ? valueOf(facts, "unix.owner") : owner;
    status.group = group.empty() ? valueOf(facts, "unix.group") : group;
    return true;
}

} // namespace

bool CFTPFactParser::Split(std::string_view line, TFacts &facts, std::string &name)
{
    facts.clear();
    const size_t end = line.find(' ');
    if (end == std::string_view::npos || end + 1 == line.size())
        return false;
    name = line.substr(end + 1);
    std::string_view rest = line.substr(0, end);
    while (!rest.empty()) {
        const size_t stop = std::min(rest.find(';'), rest.size());
        const std::string_view fact = rest.substr(0, stop);
        rest.remove_prefix(std::min(stop + 1, rest.size()));
        const size_t sign = fact.find('=');
        if (sign == std::string_view::npos)
            return false;
        facts[lower(fact.substr(0, sign))] = fact.substr(sign + 1);
    }
    return true;
}

bool CFTPFactParser::ParseEntry(CFTPFileStatus &status, std::string_view line)
{
    TFacts facts;
    return readEntry(status, line, facts);
}

bool CFTPFactParser::Parse(CFTPFileStatus &status, const std::string &line)
{
    TFacts facts;
    if (!readEntry(status, line, facts))
        return false;
    const std::string type = lower(valueOf(facts, "type"));
    return type != "cdir" && type != "pdir";
}

} // namespace nsFTP
