// Any bytes as the reply to PASV, against a reading of our own: the first list of exactly six
// numbers of 0 to 255.

#include "fuzzsocket.h"

#include <formkit/FtpClient/FTPClient.h>

#include <cstdint>
#include <cstdlib>
#include <regex>

using namespace nsFTP;

namespace {

bool readIndependently(const std::string &text, unsigned int &address, unsigned short &port)
{
    static const std::regex List("(,[ \t]*)?([0-9]+(?:[ \t]*,[ \t]*[0-9]+)+)([ \t]*,)?");
    static const std::regex Number("[0-9]+");
    const std::sregex_iterator end;
    for (std::sregex_iterator list(text.begin(), text.end(), List); list != end; ++list) {
        const std::string words = (*list)[2];
        std::vector<unsigned> numbers;
        for (std::sregex_iterator word(words.begin(), words.end(), Number); word != end; ++word) {
            const std::string digits = word->str();
            const size_t start = std::min(digits.find_first_not_of('0'), digits.size());
            numbers.push_back(digits.size() - start > 3 ? 999 : std::stoul('0' + digits));
        }
        const bool bytes = std::all_of(numbers.begin(), numbers.end(),
                                       [](unsigned number) { return number <= 255; });
        if (numbers.size() != 6 || !bytes || (*list)[1].matched || (*list)[3].matched)
            continue;
        address = numbers[0] << 24 | numbers[1] << 16 | numbers[2] << 8 | numbers[3];
        port = static_cast<unsigned short>(numbers[4] << 8 | numbers[5]);
        return port != 0;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // std::regex recurses for each character.
    const std::string text(reinterpret_cast<const char *>(data), std::min<size_t>(size, 2000));
    unsigned int address = 0;
    unsigned short port = 0;
    unsigned int ownAddress = 0;
    unsigned short ownPort = 0;
    const bool read = CFTPClient::GetIpAddressFromResponse(text, address, port);
    if (read != readIndependently(text, ownAddress, ownPort) ||
        (read && (address != ownAddress || port != ownPort)))
        std::abort();

    Input input = {"220 ready\r\n230 in\r\n227 " + text + "\r\n", {}};
    CFTPClient client(std::make_shared<FuzzSocket>(input, true), 1);
    client.Login({"host", 21, "user", "password", "account"});
    client.Passive(address, port);
    return 0;
}
