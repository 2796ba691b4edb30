// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPPassive_p.h"

#include <algorithm>
#include <string_view>

namespace nsFTP {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Reads six numbers up to 255 from the start of a text; false when there are fewer or more.
bool readSixNumbers(std::string_view text, unsigned int (&numbers)[6])
{
    size_t i = 0;
    const auto skipBlanks = [&] { i = std::min(text.find_first_not_of(" \t", i), text.size()); };
    for (int n = 0; n < 6; ++n) {
        numbers[n] = 0;
        const size_t begin = i;
        for (; i < text.size() && isDigit(text[i]) && numbers[n] <= 255; ++i)
            numbers[n] = numbers[n] * 10 + unsigned(text[i] - '0');
        if (i == begin || numbers[n] > 255)
            return false;
        const size_t end = i;
        skipBlanks();
        const bool comma = i < text.size() && text[i] == ',';
        if (n == 5)
            return !comma && (end == text.size() || !isDigit(text[end]));
        if (!comma)
            return false;
        ++i;
        skipBlanks();
    }
    return false;
}

} // namespace

bool readPassiveAddress(const std::string &reply, unsigned int &ipAddress, unsigned short &port)
{
    const std::string_view text = reply;
    char before = ' '; // the last character that is no blank; no list begins after a comma
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned int n[6];
        const bool begins = isDigit(text[i]) && (i == 0 || !isDigit(text[i - 1])) && before != ',';
        if (begins && readSixNumbers(text.substr(i), n)) {
            if (n[4] == 0 && n[5] == 0)
                return false;
            ipAddress = n[0] << 24 | n[1] << 16 | n[2] << 8 | n[3];
            port = static_cast<unsigned short>(n[4] << 8 | n[5]);
            return true;
        }
        if (text[i] != ' ' && text[i] != '\t')
            before = text[i];
    }
    return false;
}

bool readExtendedPort(const std::string &reply, unsigned short &port)
{
    // Any character may stand between the fields, three times before the port and once after it.
    for (size_t open = reply.find('('); open != std::string::npos;
         open = reply.find('(', open + 1)) {
        const std::string_view text = std::string_view(reply).substr(open + 1);
        const size_t end = text.size() < 5 ? 0 : std::min(text.find(text[0], 3), text.size());
        unsigned long number = 0;
        size_t i = 3;
        for (; i < end && isDigit(text[i]) && number <= 65535; ++i)
            number = number * 10 + unsigned(text[i] - '0');
        const bool framed =
            end > 3 && end < text.size() && text[1] == text[0] && text[2] == text[0];
        if (framed && i == end && number > 0 && number <= 65535) {
            port = static_cast<unsigned short>(number);
            return true;
        }
    }
    return false;
}

std::string extendedArgument(const Address &address)
{
    return (address.family() == AF_INET6 ? "|2|" : "|1|") + address.host() + "|" +
           std::to_string(address.port()) + "|";
}

} // namespace nsFTP
