#pragma once

#include "formkit/FtpClient/FTPClient.h"

#include <atomic>
#include <chrono>
#include <deque>
#include <mutex>
#include <string_view>

namespace nsFTP {

// The places that internal-error reports name; the numbers never change.
enum class ReportAt {
    OpenControl = 410,
    CloseControl = 432,
    Logon = 532,
    Send = 601,
    Argument = 612,
    Receive = 655,
    ReplyLimit = 668,
    Passive = 921,
    Active = 968,
    ForeignPeer = 972,
    Transfer = 1089,
    CloseData = 1131,
    LocalFile = 1204,
    Offset = 1230
};

struct CFTPClient::Private
{
    using Clock = std::chrono::steady_clock;

    explicit Private(const std::shared_ptr<nsSocket::IBlockingSocket> &socket) : control(socket) {}

    bool connected() const { return *control != nsSocket::INVALID_SOCKET; }
    int timeout() const;
    void report(const std::string &message, ReportAt place) const;
    void report(const nsSocket::CBlockingSocketException &exception, ReportAt place) const;
    template <typename Call> void tell(Call call) const;

    // The control connection.
    bool open(const std::string &host, unsigned short port);
    void close();
    void drop();
    void forgetReplies();
    bool takeText();
    bool takeLine(std::string &line);
    Clock::time_point replyDeadline() const;
    bool takeReply(CReply &reply);
    bool readReply(CReply &reply, Clock::time_point latest = Clock::time_point::max());
    bool readFinalReply(CReply &reply);
    bool limitPassed(size_t lines, size_t bytes);

    // Keeping commands and replies in step.
    bool write(const CCommand &command, const CArg &arguments);
    bool settle();
    bool settlePerhaps();
    bool readUnasked(Clock::time_point latest);
    bool somethingWaits() const;
    void giveUpReplies() { abandoned = unanswered; }
    bool accepted(const CCommand &command, const CArg &arguments) const;
    bool accepted(const std::string &host) const;

    const std::string lineEnd = "\r\n";
    std::string initialDirectory;
    unsigned int receiveTimeout = 0;
    std::vector<char> buffer;
    unsigned int responseDelay = 0;
    std::deque<std::string> lines;
    std::shared_ptr<CRepresentation> representation;
    std::shared_ptr<nsSocket::IBlockingSocket> control;
    std::shared_ptr<IFileListParser> parser = std::make_shared<CFTPListParser>();
    std::atomic<bool> transferring{false};
    std::atomic<bool> abortRequested{false};
    std::atomic<bool> resume{true};
    TObserverSet observers;
    CLogonInfo logon;

    TPassiveAddress passiveAddress = TPassiveAddress::Use;
    bool acceptOnlyControlPeer = false;

    // Text behind the last line feed, and the lines of a reply that is not yet complete: both
    // wait for the rest when a receive timed out.
    std::string partialLine;
    std::string partialReply;
    size_t partialReplyLines = 0;
    // What one reply has cost so far.
    Clock::time_point replyEnd;
    size_t replyBytes = 0;

    // Replies that are still to come; those among them that nobody waits for; and whether a
    // reply to an ABOR that was answered once may follow.
    unsigned int unanswered = 0;
    unsigned int abandoned = 0;
    bool perhapsOneMore = false;

    // How many calls of observers are under way, one within the other.
    mutable std::atomic<int> telling{0};

    // One exchange at a time; Abort() from another thread keeps out of one.
    std::recursive_mutex exchange;
    // Guards the start and end of a data-channel command against Abort().
    std::mutex abortGuard;
    bool dataCommand = false;
};

// In the order of the addresses, whatever observers attach or detach meanwhile.
template <typename Call> void CFTPClient::Private::tell(Call call) const
{
    struct Scope
    {
        explicit Scope(std::atomic<int> &depth) : m_depth(depth) { ++m_depth; }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;
        ~Scope() { --m_depth; }

        std::atomic<int> &m_depth;
    } const scope(telling);
    for (auto it = observers.begin(); it != observers.end();) {
        CNotification *const observer = *it;
        call(*observer);
        it = observers.upper_bound(observer);
    }
}

} // namespace nsFTP
