// SPDX-License-Identifier: BSD-3-Clause
// Any bytes, taken as lines of a listing: nothing read beyond a line, no number that overflows,
// and what a status says agrees with itself.

#include <formkit/FtpClient/FTPListParse.h>

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
        CFTPFileStatus direct;
        parser.ParseMultiNetListing(direct, line);
        begin = end + 1;
    }
    return 0;
}
