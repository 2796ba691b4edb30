// SPDX-License-Identifier: BSD-3-Clause
// Downloads onto a disk that fills up, at every size from nothing to enough: each says so and
// leaves what found room, and is completed when there is room again. The disk is a limit of the
// process, to the byte.

#include "memoryserver.h"

#include <QFile>
#include <QTemporaryDir>

#include <csignal>

#include <sys/resource.h>

using namespace nsFTP;

namespace {

constexpr long Content = 5000;

// Downloads a file within the given room; why that failed, empty when it did not.
std::string download(const CFTPClient &client, const std::string &local, rlim_t room)
{
    const rlimit limit = {room, RLIM_INFINITY};
    demand(setrlimit(RLIMIT_FSIZE, &limit) == 0, "setrlimit");
    CFile file(local);
    demand(file.Open(CFile::receive), "not opened");
    const bool good = client.DownloadFile("f", file, CType::Image, true);
    const std::string text = file.GetErrorText();
    demand(file.Close(good) == good, "closed otherwise than it was");
    return good ? std::string() : text;
}

// From no room at all, once more with a little more room, and with enough.
void fill(const CFTPClient &client, const std::string &content, const QString &local, long room)
{
    QFile file(local);
    file.remove();
    for (const long size : {room, room + 97, Content}) {
        const std::string error = download(client, local.toStdString(), rlim_t(size));
        demand(error == (size >= Content ? "" : "File too large"), error.c_str());
        demand(file.open(QFile::ReadOnly), "no file");
        const std::string kept = file.readAll().toStdString();
        demand(kept == content.substr(0, size_t(size)), "not what found room");
        file.close();
        demandStep(client);
    }
}

} // namespace

int main()
{
    std::signal(SIGXFSZ, SIG_IGN);
    const QTemporaryDir folder;
    MemoryServer server;
    for (long i = 0; i < Content; ++i)
        server.content += char('a' + i * i / 7 % 26);
    CFTPClient client(std::make_shared<MemorySocket>(server, true), 1, 300);
    demand(client.Login({"host", 21, "user", "password"}), "no logon");
    int sizes = 0;
    for (long room = 0; room < Content; room += 97, ++sizes)
        fill(client, server.content, folder.filePath("limited"), room);
    fill(client, server.content, folder.filePath("limited"), Content - 1);
    std::printf("%d sizes of a full disk\n", sizes + 1);
    return 0;
}
