// Whole conversations: the input says which operations run and what every socket receives. The
// first bytes are the operations up to a line feed; the bytes up to a 0xfd are the control
// connection's, the rest the data connections'. 0xff is a time-out, 0xfe a moment with nothing
// to read, and each receive ends behind a line feed or with its buffer.

#include <formkit/FtpClient/FTPClient.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include <arpa/inet.h>

using namespace nsFTP;
using nsSocket::CBlockingSocketException;
using nsSocket::IBlockingSocket;
using nsSocket::INVALID_SOCKET;
using nsSocket::SOCKET;

namespace {

constexpr char Timeout = '\xff';
constexpr char Nothing = '\xfe';
constexpr char EndOfControl = '\xfd';

struct Input
{
    std::string control;
    std::string data;
};

class FuzzSocket : public IBlockingSocket
{
public:
    FuzzSocket(Input &input, bool control)
        : m_input(input), m_bytes(control ? input.control : input.data)
    {
    }

    IBlockingSocket *CreateInstance() const override { return new FuzzSocket(m_input, false); }
    void Create(int /*type*/) override { m_handle = 1; }
    void Connect(const sockaddr * /*psa*/) const override {}
    void Bind(const sockaddr * /*psa*/) const override {}
    void Listen() const override {}
    void Cleanup() override { m_handle = INVALID_SOCKET; }
    bool Accept(IBlockingSocket &connected, sockaddr *psa) const override
    {
        connected.Create();
        GetPeerAddr(psa);
        return m_bytes.empty() || m_bytes.front() != Nothing;
    }
    void Close() override { Cleanup(); }
    int Write(const char * /*data*/, int size, int /*seconds*/) const override { return size; }
    int Receive(char *buffer, int size, int /*seconds*/) const override
    {
        if (m_bytes.empty() || size <= 0)
            return 0;
        if (m_bytes.front() == Timeout || m_bytes.front() == Nothing) {
            const bool timeout = m_bytes.front() == Timeout;
            m_bytes.erase(0, 1);
            errno = timeout ? 0 : ECONNRESET;
            throw CBlockingSocketException(timeout ? "Receive timeout" : "Receive");
        }
        const size_t stop = std::min(m_bytes.find_first_of("\xff\xfe"), m_bytes.size());
        const size_t line = std::min(m_bytes.find('\n'), m_bytes.size() - 1) + 1;
        const size_t count = std::min({stop, line, size_t(size)});
        m_bytes.copy(buffer, count);
        m_bytes.erase(0, count);
        return int(count);
    }
    void GetPeerAddr(sockaddr *psa) const override
    {
        auto *address = reinterpret_cast<sockaddr_in *>(psa);
        *address = {};
        address->sin_family = AF_INET;
        address->sin_addr.s_addr = htonl(0x7f000001);
    }
    void GetSockAddr(sockaddr *psa) const override { GetPeerAddr(psa); }
    operator SOCKET() const override { return m_handle; }
    bool CheckReadability() const override
    {
        if (m_bytes.empty() || m_bytes.front() != Nothing)
            return true;
        m_bytes.erase(0, 1);
        return false;
    }
    sockaddr_in GetHostByName(const char * /*name*/, unsigned short /*port*/) override
    {
        return {};
    }
    const char *GetHostByAddr(const sockaddr * /*psa*/) override { return ""; }

private:
    Input &m_input;
    std::string &m_bytes;
    SOCKET m_handle = INVALID_SOCKET;
};

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
    COutputStream stream("stream", 100000);
    CLogonInfo logon("host", 21, "user", "password", "account");
    long size = 0;
    long long seconds = 0;
    const bool passive = (operation & 1) == 0;
    switch (operation >> 1 & 15) {
    case 0:
        client.Login(logon);
        break;
    case 1:
        logon.SetFirewall("wall", "fireuser", "firepassword", 21,
                          CFirewallType::TFirewallTypeEnum((operation >> 5 & 7) + 1));
        client.Login(logon);
        break;
    case 2:
        client.List("", entries, passive);
        break;
    case 3:
        client.NameList("", lines, passive);
        break;
    case 4:
        download(client, stream, passive);
        break;
    case 5:
        client.UploadFile(stream, "f", !passive, CType::ASCII, passive);
        break;
    case 6:
        client.ExecuteDatachannelCommand(CCommand::RETR, "f", CType::Image, passive, 3, stream);
        break;
    case 7:
        client.FileSize("f", size);
        break;
    case 8:
        client.FileModificationTime("f", seconds);
        break;
    case 9:
        client.Rename("a", "b");
        break;
    case 10:
        client.Abort();
        break;
    case 11:
        client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress((operation >> 5 & 3) % 3));
        client.SetAcceptOnlyControlPeer(passive);
        break;
    case 12:
        client.Logout();
        break;
    default:
        client.Noop();
    }
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

    const auto socket = std::make_shared<FuzzSocket>(input, true);
    CFTPClient client(socket, 1, operations.size() % 2 == 0 ? 16 : 4096);
    Aborter aborter(client);
    client.Login({"host", 21, "user", "password", "account"});
    for (const char operation : operations)
        perform(client, operation);
    if (client.IsTransferringData())
        std::abort();
    return 0;
}
