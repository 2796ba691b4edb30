// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out under the FTP client: for each operation and each allocation in it, that
// one fails, and then that one and all after it. The caller gets std::bad_alloc or a false, the
// session is closed or in step, nothing is kept, and the same operation then does its work.

#include "failingallocations.h"
#include "memoryserver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <climits>
#include <functional>
#include <thread>

using namespace nsFTP;

namespace {

// What the server needs does not run out.
class Server : public MemoryServer
{
public:
    void hear(const char *data, int size) override
    {
        const long left = std::exchange(Allocations::failAt, 0);
        MemoryServer::hear(data, size);
        Allocations::failAt = left;
    }
};

struct Session
{
    explicit Session(const QString &folder)
        : local(_tstring(folder + "/local")), source(_tstring(folder + "/source"))
    {
        for (int line = 0; line < 40; ++line)
            server.content += "This is line " + std::to_string(line) + ".\r\n";
        QFile file(QFile::decodeName(source.c_str()));
        demand(file.open(QFile::WriteOnly) &&
                   file.write(server.content.data()) == qint64(server.content.size()),
               "the folder cannot be written");
        QFile::remove(QFile::decodeName(local.c_str()));
    }
    std::string localContent() const
    {
        QFile file(QFile::decodeName(local.c_str()));
        return file.open(QFile::ReadOnly) ? file.readAll().toStdString() : std::string();
    }

    const CLogonInfo logon{"a.host.with.a.long.name", 2121, "a user with a long name", "password"};
    const std::string local;
    const std::string source;
    Server server;
    CFTPClient client{std::make_shared<MemorySocket>(server, true), 1, 100};
    Server otherServer;
    CFTPClient other{std::make_shared<MemorySocket>(otherServer, true), 1, 100};
};

// Ends a transfer at its first block.
struct Aborter : CFTPClient::CNotification
{
    explicit Aborter(CFTPClient &client) : watched(client) { watched.AttachObserver(this); }
    void OnBytesReceived(const std::vector<char> &, long) override { watched.Abort(); }

    CFTPClient &watched;
};

struct Operation
{
    const char *name;
    // True when it did its work.
    std::function<bool(Session &)> run;
    std::function<void(Session &)> prepare = [](Session &) {};
};

bool get(Session &s, const CRepresentation &type, bool passive)
{
    return s.client.DownloadFile("f", s.local, type, passive) &&
           s.localContent() == s.server.content;
}

bool put(Session &s, bool passive)
{
    return s.client.UploadFile(s.source, "u", false, CType::Image, passive) &&
           s.server.stored == s.server.content;
}

const auto logOff = [](Session &s) { s.client.Logout(); };
const auto keepPart = [](Session &s) {
    QFile file(QFile::decodeName(s.local.c_str()));
    demand(file.open(QFile::WriteOnly) && file.write(s.server.content.data(), 300) == 300, "part");
};

const std::vector<Operation> Operations = {
    {"log on", [](Session &s) { return s.client.Login(s.logon); }, logOff},
    {"log out", [](Session &s) { return s.client.Logout() == 0 || !s.client.IsConnected(); }},
    {"list",
     [](Session &s) {
         std::vector<std::shared_ptr<CFTPFileStatus>> entries;
         return s.client.List("a folder with a long name", entries, true) && entries.size() == 2;
     }},
    {"get", [](Session &s) { return get(s, CType::Image, true); }},
    {"get a text, active", [](Session &s) { return get(s, CType::ASCII, false); }},
    {"get the rest", [](Session &s) { return get(s, CType::Image, true); }, keepPart},
    {"put", [](Session &s) { return put(s, true); }},
    {"put the rest, active", [](Session &s) { return put(s, false); },
     [](Session &s) { s.server.stored = s.server.content.substr(0, 300); }},
    {"abort",
     [](Session &s) {
         const Aborter aborter(s.client);
         return !get(s, CType::Image, true) && !s.localContent().empty();
     }},
    {"between servers",
     [](Session &s) {
         return (s.other.IsConnected() || s.other.Login(s.logon)) &&
                CFTPClient::TransferFile(s.client, "f", s.other, "u", CType::Image, true);
     }},
    {"no connection",
     [](Session &s) {
         s.server.fault = MemoryServer::Connecting;
         return !s.client.Login(s.logon) && !s.client.IsConnected();
     },
     logOff},
    {"broken data",
     [](Session &s) {
         s.server.fault = MemoryServer::Receiving;
         const bool done = get(s, CType::Image, false);
         s.server.fault = MemoryServer::NoFault;
         return !done;
     }},
};

// Runs an operation while memory runs out; true when that happened before it ended.
bool runOut(const Operation &operation, Session &session, long allocation, bool on)
{
    bool done = false;
    bool thrown = false;
    Allocations::failed = 0;
    Allocations::failOn = on;
    Allocations::failAt = allocation;
    try {
        done = operation.run(session);
    } catch (const std::bad_alloc &) {
        thrown = true;
    }
    Allocations::failAt = 0;
    demand(Allocations::failed > 0 || done, "not done although nothing failed");
    demand(!thrown || Allocations::failed > 0, "std::bad_alloc out of nothing");
    return Allocations::failed > 0;
}

// False when the operation has fewer allocations.
bool tryOut(const Operation &operation, const QString &folder, long allocation, bool on)
{
    Session session(folder);
    demand(session.client.Login(session.logon), "no logon");
    operation.prepare(session);
    const bool ranOut = runOut(operation, session, allocation, on);
    session.server.fault = MemoryServer::NoFault;
    demand(!session.client.IsTransferringData(), "still transferring");
    demand(session.client.GetObservers().empty(), "an observer is kept");
    const std::string kept = session.localContent();
    demand(session.server.content.compare(0, kept.size(), kept) == 0, "no part of the file");
    // On a thread of its own: what is locked still hangs there.
    std::thread([&] {
        demandStep(session.client);
        demandStep(session.other);
        demand(session.client.IsConnected() || session.client.Login(session.logon), "no logon");
        demand(operation.run(session), "not done with memory back");
        demandStep(session.client);
    }).join();
    return ranOut;
}

size_t descriptors()
{
    return QDir("/proc/self/fd")
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

} // namespace

int main()
{
    const QTemporaryDir folder;
    long failures = 0;
    for (const Operation &operation : Operations) {
        tryOut(operation, folder.path(), LONG_MAX, false);
        for (const bool on : {false, true}) {
            bool ranOut = true;
            for (long allocation = 1; ranOut; ++allocation) {
                demandPlace = std::string(operation.name) +
                              (on ? ", from allocation " : ", allocation ") +
                              std::to_string(allocation);
                const long before = Allocations::live;
                const size_t opened = descriptors();
                ranOut = tryOut(operation, folder.path(), allocation, on);
                demand(Allocations::live == before, "memory is kept");
                demand(descriptors() == opened && MemorySocket::handles == 0, "a handle is kept");
                failures += ranOut;
            }
        }
    }
    std::printf("%ld allocations failed in %zu operations\n", failures, Operations.size());
    return failures > 0 ? 0 : 1;
}
