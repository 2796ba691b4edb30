// SPDX-License-Identifier: BSD-3-Clause
// What CFTPClient asks of servers that know more than RFC 959.
#include "formkit/FtpClient/FTPClient_p.h"
#include "formkit/FtpClient/FTPFactParse.h"
#include "formkit/FtpClient/FTPListing_p.h"

#include <algorithm>

namespace nsFTP {

void CFTPClient::SetExtendedAddresses(bool extended)
{
    d->extendedAddresses = extended;
}

void CFTPClient::SetMachineListings(bool machine)
{
    d->machineListings = machine;
}

void CFTPClient::SetUtf8(bool utf8)
{
    d->utf8 = utf8;
}

int CFTPClient::Features(CFTPFeatures &features) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    std::optional<CFTPFeatures> &known = d->control.session.features;
    int result = 0;
    if (!known) {
        CReply reply;
        result = d->simple("FEAT", {}, &reply);
        if (result == 0)
            known = CFTPFeatures(reply);
        else if (result == 1)
            known = CFTPFeatures();
    }
    if (known)
        features = *known;
    return result;
}

bool CFTPClient::supports(const char *extension) const
{
    CFTPFeatures features;
    return Features(features) >= 0 && features.Has(extension);
}

bool CFTPClient::offerUtf8() const
{
    // A server that refuses has offered it all the same: names stay bytes.
    return !d->utf8 || !supports("UTF8") || d->simple("OPTS", {"UTF8 ON"}) >= 0;
}

bool CFTPClient::SendRaw(const std::string &line, CReply &reply) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    constexpr const char *ownVerbs[] = {"AUTH", "PBSZ", "PROT", "CCC", "REIN", "QUIT", ""};
    const size_t end = std::min(line.find(' '), line.size());
    const std::string verb = line.substr(0, end);
    const std::string rest = line.substr(std::min(end + 1, line.size()));
    const bool own =
        std::find(std::begin(ownVerbs), std::end(ownVerbs), upper(verb)) != std::end(ownVerbs);
    if (own || !d->control.accepts(verb, {line}))
        return false;
    // It may set the type, too.
    d->control.session.representation.reset();
    return d->simple(verb, {rest}, &reply) >= -1 && !reply.Code().Value().empty();
}

int CFTPClient::FileModificationTime(const std::string &path, long long &seconds,
                                     long &nanoseconds) const
{
    CReply reply;
    const int result = d->simple(CCommand::MDTM, {path}, &reply);
    return result == 0 && !readTime(valueOf(reply), seconds, &nanoseconds) ? -1 : result;
}

int CFTPClient::SetFileModificationTime(const std::string &path, long long seconds) const
{
    const std::string time = timeText(seconds);
    return time.empty() ? -1 : d->simple("MFMT", {time, path});
}

int CFTPClient::MachineStatus(const std::string &path, CFTPFileStatus &status) const
{
    CReply reply;
    const int result = d->simple("MLST", {path}, &reply);
    if (result != 0)
        return result;
    // "250-Listing f", " type=file;size=5; f", "250 End"
    std::string_view rest = reply.Value();
    nextLine(rest);
    std::string_view line = nextLine(rest);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    CFTPFileStatus found;
    if (rest.empty() || !CFTPFactParser::ParseEntry(found, line))
        return -1;
    status = std::move(found);
    status.path = path;
    status.line = line;
    return 0;
}

bool CFTPClient::MachineList(const std::string &path,
                             std::vector<std::shared_ptr<CFTPFileStatus>> &result,
                             bool passive) const
{
    const DataCommand scope(*d);
    COutputStream stream("MLSD");
    if (!scope.entered() || !execute("MLSD", path, CType::ASCII, passive, 0, stream))
        return false;
    CFTPFactParser parser;
    result = entriesOf(stream, parser, path);
    return true;
}

} // namespace nsFTP
