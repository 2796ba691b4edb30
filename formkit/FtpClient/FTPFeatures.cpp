// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPFeatures.h"

#include "formkit/FtpClient/FTPProtocol_p.h"

namespace nsFTP {

CFTPFeatures::CFTPFeatures(const CReply &reply)
{
    // The first and the last line are no features: "211-These I have", "211 End".
    std::string_view rest = reply.Value();
    nextLine(rest);
    while (rest.find('\n') != std::string_view::npos) {
        std::string_view line = nextLine(rest);
        if (line.substr(0, 4) == "211-") // as some servers begin each line
            line.remove_prefix(4);
        line = trimmed(line);
        const size_t end = std::min(line.find(' '), line.size());
        if (end > 0)
            m_Features[upper(line.substr(0, end))] = trimmed(line.substr(end));
    }
}

bool CFTPFeatures::Has(const std::string &name) const
{
    return m_Features.count(upper(name)) > 0;
}

std::string CFTPFeatures::Parameters(const std::string &name) const
{
    const auto found = m_Features.find(upper(name));
    return found == m_Features.end() ? std::string() : found->second;
}

std::vector<std::string> CFTPFeatures::Names() const
{
    std::vector<std::string> names;
    names.reserve(m_Features.size());
    for (const auto &feature : m_Features)
        names.push_back(feature.first);
    return names;
}

} // namespace nsFTP
