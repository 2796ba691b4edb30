// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/HostLookup_p.h"

#include "formkit/FtpClient/Interruption.h"
#include "formkit/FtpClient/SocketWait_p.h"

#include <cerrno>
#include <string>
#include <system_error>
#include <thread>

namespace nsSocket {

namespace {

constexpr char Operation[] = "GetHostByName";

/// Shared by the thread that looks up and the one that waits; the last of them frees it.
struct Lookup
{
    std::string name;
    std::string port;
    addrinfo wanted = {};
    HostAddresses found;
    int error = 0;
    int number = 0; // errno of EAI_SYSTEM
    CInterruption over;

    void run(int flags = 0)
    {
        addrinfo *list = nullptr;
        wanted.ai_flags |= flags;
        errno = 0;
        error = ::getaddrinfo(name.c_str(), port.c_str(), &wanted, &list);
        number = errno;
        wanted.ai_flags &= ~flags;
        if (error == 0 && list)
            found.reset(list, ::freeaddrinfo);
    }
};

// False when there is no thread or no handle to wait with.
bool runElsewhere(const std::shared_ptr<Lookup> &lookup)
{
    if (lookup->over.Descriptor() < 0)
        return false;
    try {
        std::thread([lookup] {
            lookup->run();
            lookup->over.Raise();
        }).detach();
    } catch (const std::system_error &) {
        return false;
    }
    return true;
}

} // namespace

HostAddresses lookUpHost(const char *name, unsigned short port, const addrinfo &wanted,
                         const std::shared_ptr<const CInterruption> &interruption, int seconds)
{
    const auto lookup = std::make_shared<Lookup>();
    lookup->name = name;
    lookup->port = std::to_string(port);
    lookup->wanted = wanted;
    lookup->run(AI_NUMERICHOST);
    if (lookup->found)
        return lookup->found;
    bool isOver = true;
    if ((!interruption && seconds < 0) || !runElsewhere(lookup)) {
        lookup->run();
    } else {
        const SocketWait wait(lookup->over.Descriptor(), POLLIN, interruption.get());
        failUnlessReady(wait.last(seconds), Operation);
        isOver = lookup->over.IsRaised(); // what the other thread wrote is visible from here on
    }
    if (!isOver || !lookup->found)
        fail(Operation, lookup->error == EAI_SYSTEM ? lookup->number : 0);
    return lookup->found;
}

} // namespace nsSocket
