// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/FtpClient/FTPClient.h>

int main()
{
    nsFTP::CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance(), 30, 256 * 1024);
    client.SetPassiveAddressPolicy(nsFTP::CFTPClient::TPassiveAddress::UseControlHost);
    client.SetAcceptOnlyControlPeer(true);
    client.SetResumeMode(false);
    if (!client.Login({"ftp.example.org", 21, "joe", "secret"}))
        return 1;
    const bool fetched =
        client.DownloadFile("pub/statement.pdf", "statement.pdf", nsFTP::CType::Image, true);
    client.Logout();
    return fetched ? 0 : 1;
}
