// Downloads onto a disk that fills up, at every size from nothing to enough: each says so and
// leaves what found room, and is completed when there is room again. The disk is a limit of the
// process, to the byte.

#include "memoryserver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

using namespace nsFTP;

namespace {

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

void setRoom(rlim_t size)
{
    const rlimit limit = {size, RLIM_INFINITY};
    demand(setrlimit(RLIMIT_FSIZE, &limit) == 0, "setrlimit");
}

// From no room at all, once more with a little more room, and with enough.
size_t fillLimit(const QString &folder)
{
    constexpr long Content = 5000;
    const QString local = folder + "/limited";
    std::signal(SIGXFSZ, SIG_IGN);
    std::vector<long> sizes;
    for (long size = 0; size < Content; size += 97)
        sizes.push_back(size);
    for (const long size : {0, 1, 2, 1000})
        sizes.push_back(Content - 1 + size);
    for (const Download &download : Forms) {
        Session session(Content, 300);
        for (size_t i = 0; i + 1 < sizes.size(); ++i) {
            QFile::remove(local);
            for (const long size : {sizes[i], sizes[i + 1], sizes.back()}) {
                setRoom(rlim_t(size));
                const std::string error = download(session.client, _tstring(local));
                setRoom(RLIM_INFINITY);
                demand(error == (size >= Content ? "" : "File too large"), error.c_str());
                demand(contentOf(local) == session.server.content.substr(0, size_t(size)),
                       "not what found room");
                demandStep(session.client);
            }
        }
    }
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

int main()
{
    const QTemporaryDir folder;
    uploadWhatChanges(folder.path());
    std::printf("%zu sizes of a full disk\n", fillLimit(folder.path()));
    return 0;
}
