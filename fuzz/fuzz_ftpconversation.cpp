// SPDX-License-Identifier: BSD-3-Clause
// Whole conversations: the input says which operations run and what every socket receives. The
// first bytes are the operations up to a line feed; the bytes up to a 0xfd are the control
// connection's, the rest the data connections'.

#include "tests/support/inputsocket.h"

#include <formkit/FtpClient/FTPClient.h>

#include <cstdint>
#include <cstdlib>
#include <functional>

using namespace nsFTP;

namespace {

constexpr char EndOfControl = '\xfd';

// Aborts a transfer now and then.
class Aborter : public CFTPClient::CNotification
{
public:
    explicit Aborter(CFTPClient &client) : m_client(client) { client.AttachObserver(this); }
    void OnBytesReceived(const std::vector<char> &buffer, long count) override
    {
        if (count > 0 && buffer[0] == 'A')
            m_client.Abort();
    }

private:
    CFTPClient &m_client;
};

// Every other one is resumed: what was there stays whatever comes.
void download(CFTPClient &client, COutputStream &stream, bool passive)
{
    const std::string part = passive ? "abab" : "";
    stream.OnBytesReceived({part.begin(), part.end()}, long(part.size()));
    client.DownloadFile("f", stream, CType::Image, passive);
    if (stream.GetText().compare(0, part.size(), part) != 0)
        std::abort();
}

void perform(CFTPClient &client, char operation)
{
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    std::vector<std::string> lines;
    CFTPFileStatus status;
    CReply reply;
    COutputStream stream("stream", 100000);
    CLogonInfo logon("host", 21, "user", "password", "account");
    long size = 0;
    long long seconds = 0;
    const bool passive = (operation & 1) == 0;
    logon.SetFirewall((operation & 2) == 0 ? "" : "wall", "fireuser", "firepassword", 21,
                      CFirewallType::TFirewallTypeEnum((operation >> 5 & 7) + 1));
    const std::function<void()> operations[] = {
        [&] { client.Login(logon); },
        [&] { client.Login(logon); },
        [&] { client.List("", entries, passive); },
        [&] { client.NameList("", lines, passive); },
        [&] { download(client, stream, passive); },
        [&] { client.UploadFile(stream, "f", !passive, CType::ASCII, passive); },
        [&] {
            client.ExecuteDatachannelCommand(CCommand::RETR, "f", CType::Image, passive, 3, stream);
        },
        [&] { client.FileSize("f", size); },
        [&] { client.FileModificationTime("f", seconds); },
        [&] { client.Rename("a", "b"); },
        [&] { client.Abort(); },
        [&] {
            client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress((operation >> 5 & 3) % 3));
            client.SetAcceptOnlyControlPeer(passive);
        },
        [&] { client.Logout(); },
        [&] { client.Noop(); },
        [&] {
            client.SetExtendedAddresses(passive);
            client.SetMachineListings(true);
            client.SetUtf8(true);
        },
        [&] {
            client.MachineStatus("f", status);
            client.MachineList("", entries, passive);
            client.SendRaw("SITE x", reply);
        }};
    operations[std::min<size_t>(operation >> 1 & 15, std::size(operations) - 1)]();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const size_t operationsEnd = std::min(text.find('\n'), text.size());
    const std::string operations = text.substr(0, std::min<size_t>(operationsEnd, 12));
    const std::string rest = text.substr(std::min(operationsEnd + 1, text.size()));
    const size_t controlEnd = std::min(rest.find(EndOfControl), rest.size());
    Input input = {rest.substr(0, controlEnd), rest.substr(std::min(controlEnd + 1, rest.size()))};

    const auto socket = std::make_shared<InputSocket>(input, true);
    CFTPClient client(socket, 1, operations.size() % 2 == 0 ? 16 : 4096);
    Aborter aborter(client);
    client.Login({"host", 21, "user", "password", "account"});
    for (const char operation : operations)
        perform(client, operation);
    if (client.IsTransferringData())
        std::abort();
    return 0;
}
