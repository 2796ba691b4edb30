// Downloads onto a disk that fills up, at every size from nothing to enough: each says so and
// leaves what found room, and is completed when there is room again. The disk is first a limit of
// the process, to the byte, then a small file system, for which a namespace is needed.

#include "memoryserver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <vector>

#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace nsFTP;

namespace {

constexpr int Page = 4096;

class Reports : public CFTPClient::CNotification
{
public:
    explicit Reports(const std::function<void()> &afterBlock = [] {}) : m_afterBlock(afterBlock) {}
    void OnInternalError(const std::string &message, const std::string & /*source*/,
                         int /*line*/) override
    {
        last = message;
    }
    void OnBytesSent(const std::vector<char> & /*buffer*/, long /*count*/) override
    {
        m_afterBlock();
    }

    std::string last;

private:
    const std::function<void()> m_afterBlock;
};

struct Session
{
    explicit Session(size_t size, unsigned int block)
        : client(std::make_shared<MemorySocket>(server, true), 1, block)
    {
        for (size_t i = 0; i < size; ++i)
            server.content += char('a' + i * i / 7 % 26);
        demand(client.Login({"host", 21, "user", "password"}), "no logon");
    }

    MemoryServer server;
    CFTPClient client;
};

std::string contentOf(const QString &name)
{
    QFile file(name);
    return file.open(QFile::ReadOnly) ? file.readAll().toStdString() : std::string();
}

// A download with its own word for what went wrong, which is empty when nothing did.
using Download = std::function<std::string(CFTPClient &client, const std::string &local)>;

const Download Forms[] = {
    [](CFTPClient &client, const std::string &local) {
        Reports reports;
        client.AttachObserver(&reports);
        const bool good = client.DownloadFile("f", local, CType::Image, true);
        demand(good || reports.last.rfind("Cannot write " + local + ": ", 0) == 0, "no report");
        return good ? std::string() : reports.last.substr(local.size() + 15);
    },
    [](CFTPClient &client, const std::string &local) {
        CFile file(local);
        demand(file.Open(CFile::receive), "not opened");
        const bool good = client.DownloadFile("f", file, CType::Image, false);
        const std::string text = file.GetErrorText();
        demand(file.Close(good) == good, "closed otherwise than it was");
        return good ? std::string() : text;
    },
};

// Disks of the given sizes, in ascending order, the last with room enough.
void fill(const QString &local, const std::vector<long> &sizes, size_t content, unsigned int block,
          const std::function<void(long size)> &resize, const std::string &reason)
{
    for (const Download &download : Forms) {
        Session session(content, block);
        for (size_t i = 0; i < sizes.size(); ++i) {
            QFile::remove(local);
            // From nothing, once more with a little more room, and with enough.
            for (const long size :
                 {sizes[i], sizes[std::min(i + 1, sizes.size() - 1)], sizes.back()}) {
                resize(size);
                const std::string error = download(session.client, _tstring(local));
                resize(sizes.back());
                const bool fits = size >= long(content);
                demand(error == (fits ? "" : reason), error.c_str());
                demand(contentOf(local) ==
                           session.server.content.substr(0, size_t(std::max(size, 0L))),
                       "not what found room");
                demandStep(session.client);
            }
        }
    }
}

// The process may write no file beyond a size.
size_t fillLimit(const QString &folder)
{
    constexpr size_t Content = 5000;
    std::signal(SIGXFSZ, SIG_IGN);
    std::vector<long> sizes;
    for (long size = 0; size < long(Content); size += 97)
        sizes.push_back(size);
    for (const long size : {0, 1, 2, 1000})
        sizes.push_back(long(Content) - 1 + size);
    fill(
        folder + "/limited", sizes, Content, 300,
        [](long size) {
            const rlimit limit = {rlim_t(size), RLIM_INFINITY};
            demand(setrlimit(RLIMIT_FSIZE, &limit) == 0, "setrlimit");
        },
        "File too large");
    const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
    demand(setrlimit(RLIMIT_FSIZE, &none) == 0, "setrlimit");
    return sizes.size();
}

// A file system of so many pages, one of which is taken.
size_t fillDisk(const QString &folder)
{
    constexpr int Pages = 12;
    const std::string disk = _tstring(folder);
    const auto options = [](long bytes) { return "size=" + std::to_string(bytes + Page); };
    demand(mount("none", disk.c_str(), "tmpfs", 0, options(0).c_str()) == 0, "mount");
    QFile filler(folder + "/filler");
    demand(filler.open(QFile::WriteOnly) && filler.write(QByteArray(Page, 'x')) == Page, "filler");
    filler.close();
    std::vector<long> sizes;
    for (int page = 0; page <= Pages + 1; ++page)
        sizes.push_back(page * long(Page));
    fill(
        folder + "/local", sizes, Pages * Page - 100, 1500,
        [&](long size) {
            demand(mount(nullptr, disk.c_str(), nullptr, MS_REMOUNT, options(size).c_str()) == 0,
                   "remount");
        },
        "No space left on device");
    demand(umount(disk.c_str()) == 0, "umount");
    return sizes.size();
}

// An upload whose local file goes is complete; one whose local file shrinks is none.
void uploadWhatChanges(const QString &folder)
{
    const QString local = folder + "/source";
    for (const bool shrinks : {true, false}) {
        Session session(5000, 300);
        QFile file(local);
        demand(file.open(QFile::WriteOnly) &&
                   file.write(session.server.content.data(), 5000) == 5000,
               "source");
        file.close();
        Reports reports([&] { shrinks ? QFile::resize(local, 1000) : QFile::remove(local); });
        session.client.AttachObserver(&reports);
        const bool good =
            session.client.UploadFile(_tstring(local), "u", false, CType::Image, true);
        demand(good != shrinks, "an upload of half a file, or none of a whole one");
        demand(good == (session.server.stored == session.server.content), "stored");
        demand(good || reports.last.rfind("Cannot read ", 0) == 0, "no report");
        demandStep(session.client);
    }
}

} // namespace

int main(int count, char **arguments)
{
    const QTemporaryDir folder;
    if (count > 1) {
        std::printf("%zu disk sizes\n", fillDisk(folder.path()));
        return 0;
    }
    uploadWhatChanges(folder.path());
    std::printf("%zu limits of the process\n", fillLimit(folder.path()));
    std::fflush(stdout);
    if (std::system("unshare -rm true") != 0) {
        std::printf("NOT TRIED: unshare -rm gives no namespace for a small disk\n");
        return 1;
    }
    const std::string command = "unshare -rm " + std::string(arguments[0]) + " inside";
    return std::system(command.c_str()) == 0 ? 0 : 1;
}
