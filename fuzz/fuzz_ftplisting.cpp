// SPDX-License-Identifier: BSD-3-Clause
// Any bytes, taken as lines of a listing and as a list of features: nothing read beyond a line, no
// number that overflows, and what a status says agrees with itself.

#include <formkit/FtpClient/FTPFactParse.h>
#include <formkit/FtpClient/FTPFeatures.h>

#include <cstdint>
#include <cstdlib>

using namespace nsFTP;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    CFTPListParser parser([] { return 1710504000LL; });
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        CFTPFileStatus status;
        if (parser.Parse(status, line)) {
            const bool sized = status.sizeType == CFTPFileStatus::sizeBytes;
            if (status.size < -1 || (!sized && status.size != -1) ||
                status.name.size() > line.size() || !status.path.empty())
                std::abort();
        }
        if (CFTPFactParser::ParseEntry(status, line) &&
            (status.size < -1 || status.name.empty() || status.name.size() >= line.size()))
            std::abort();
        CFTPFileStatus direct;
        parser.ParseMultiNetListing(direct, line);
        begin = end + 1;
    }
    CReply reply;
    reply.Set("211-" + text);
    for (const std::string &name : CFTPFeatures(reply).Names()) {
        if (name.empty() || !CFTPFeatures(reply).Has(name))
            std::abort();
    }
    return 0;
}
