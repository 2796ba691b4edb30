// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/FtpClient/FTPClient.h>
#include <formkit/FtpTls/TlsSocket.h>

#include <cstdio>

// Tells why something failed.
class Told : public nsFTP::CFTPClient::CNotification
{
    void OnInternalError(const std::string &message, const std::string & /*source*/,
                         int /*line*/) override
    {
        std::fprintf(stderr, "%s\n", message.c_str());
    }
};

int main()
{
    Told told;
    nsFTP::CFTPClient client(nsSocket::CreateTlsSocketInstance({}), 30, 256 * 1024);
    client.AttachObserver(&told);
    client.SetMachineListings(true);
    std::vector<std::shared_ptr<nsFTP::CFTPFileStatus>> entries;
    if (!client.Login({"ftp.example.org", 21, "joe", "secret"}) ||
        client.ChangeWorkingDirectory("statements") != 0 || !client.List("", entries, true))
        return 1;
    bool good = true;
    for (const auto &entry : entries) {
        // A server's name must not lead out of the folder.
        const bool plain = entry->name.find('/') == std::string::npos;
        if (plain && entry->tryRetrieve && !entry->tryCwd)
            good &= client.DownloadFile(entry->name, entry->name, nsFTP::CType::Image, true);
    }
    client.Logout();
    return good ? 0 : 1;
}
