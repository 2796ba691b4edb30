// SPDX-License-Identifier: BSD-3-Clause
#include "loopback.h"
#include "support/stricttest.h"

#include <csignal>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace nsSocket;

namespace {

// Two ends of a connection over loopback.
struct Pair
{
    Pair()
    {
        CBlockingSocket listener;
        connectToLoopback(far, listenOnLoopback(listener));
        listener.Accept(near, generic(peer));
    }
    void send(const QByteArray &bytes) const { far.Write(bytes.constData(), bytes.size(), 5); }
    void receive(int seconds = 5) { count = near.Receive(buffer, sizeof buffer, seconds); }

    CHttpBlockingSocket near;
    CBlockingSocket far;
    sockaddr_in peer = {};
    char buffer[3000] = {};
    int count = 0;
};

QString failureOf(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const CBlockingSocketException &exception) {
        return QString::fromStdString(exception.GetErrorMessage()).replace(" error", "");
    }
    return "none";
}

} // namespace

class BlockingSocketTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    // What is sent in many pieces arrives whole, and then the end of the connection.
    void transfers()
    {
        Pair pair;
        sockaddr_in own = {};
        pair.far.GetSockAddr(generic(own));
        QCOMPARE(pair.peer.sin_port, own.sin_port);
        QVERIFY(::fcntl(int(pair.near.operator SOCKET()), F_GETFD) & FD_CLOEXEC);
        int kept = 0;
        socklen_t size = sizeof kept;
        ::getsockopt(int(pair.near.operator SOCKET()), SOL_SOCKET, SO_KEEPALIVE, &kept, &size);
        QCOMPARE(kept, 1);
        QVERIFY(!pair.near.CheckReadability());
        const QByteArray all = QByteArray("0123456789abcdef!").repeated(20000000 / 17);
        std::thread sender([&] {
            pair.send(all);
            pair.far.Close();
            pair.far.Close();
        });
        QByteArray received;
        do {
            pair.receive();
            received.append(pair.buffer, pair.count);
        } while (pair.count > 0);
        sender.join();
        QVERIFY(received == all && pair.near.CheckReadability());
    }

    void names()
    {
        CBlockingSocket socket;
        sockaddr_in named = socket.GetHostByName("localhost", 0x1234);
        QVERIFY(named.sin_port == htons(0x1234) && named.sin_addr.s_addr == htonl(0x7f000001));
        QVERIFY(*socket.GetHostByAddr(generic(named)) != '\0');
        QCOMPARE(failureOf([&] { socket.GetHostByName(""); }), "GetHostByName");
    }

    void failures()
    {
        Pair pair;
        CBlockingSocket lone;
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        const std::vector<char> much(50000000);
        QCOMPARE(failureOf([&] { pair.receive(0); }), "Receive timeout");
        QCOMPARE(failureOf([&] { pair.near.Write(much.data(), 50000000, 0); }), "Send timeout");
        QCOMPARE(failureOf([&] { pair.near.Bind(generic(address)); }), "Bind 0x00000016");
        QCOMPARE(failureOf([&] { lone.Create(-1); }), "Create 0x00000016");
        lone.Create();
        QCOMPARE(failureOf([&] { lone.Receive(pair.buffer, 1, 1); }), "Receive 0x0000006b");
        QCOMPARE(failureOf([&] { lone.GetPeerAddr(generic(address)); }), "GetPeerName 0x0000006b");
        // Nobody connects within the limit, which the new socket has from the one that created it.
        pair.near.SetWaitLimit(0);
        const std::unique_ptr<IBlockingSocket> waiting(pair.near.CreateInstance());
        waiting->Create();
        waiting->Listen();
        CBlockingSocket none;
        QCOMPARE(failureOf([&] { waiting->Accept(none, generic(address)); }), "Accept 0x0000006e");
        // Closed without the object's knowledge.
        ::close(int(lone.operator SOCKET()));
        QCOMPARE(failureOf([&] { lone.Listen(); }), "Listen 0x00000009");
        QCOMPARE(failureOf([&] { lone.CheckReadability(); }), "Socket Error 0x00000009");
        QCOMPARE(failureOf([&] { lone.Close(); }), "Close 0x00000009");
        QVERIFY(lone.operator SOCKET() != INVALID_SOCKET);
        lone.Cleanup();
        QCOMPARE(lone.operator SOCKET(), INVALID_SOCKET);
        // A closed peer raises no signal.
        const linger reset = {1, 0};
        ::setsockopt(int(pair.far.operator SOCKET()), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        pair.far.Close();
        QCOMPARE(failureOf([&] { pair.near.Write("x", 1, 1); }), "Send 0x00000068");
        QCOMPARE(failureOf([&] { pair.near.Write("x", 1, 1); }), "Send 0x00000020");
    }

    // A signal ends no wait, except that Accept is given up.
    void interruptedWaits()
    {
        Pair pair;
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGUSR1, &action, nullptr);
        std::thread sender([&, waiting = ::pthread_self()] {
            for (int i = 0; i < 5; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                ::pthread_kill(waiting, SIGUSR1);
            }
            pair.send("x");
        });
        QCOMPARE(failureOf([&] { pair.receive(30); }), "none");
        sender.join();
        CBlockingSocket listener;
        listenOnLoopback(listener);
        CBlockingSocket none;
        std::atomic<bool> over{false};
        std::thread disturber([&, waiting = ::pthread_self()] {
            while (!over)
                ::pthread_kill(waiting, SIGUSR1);
        });
        const bool accepted = listener.Accept(none, generic(pair.peer));
        over = true;
        disturber.join();
        QVERIFY(!accepted);
    }

    void handlesAbove1023()
    {
        rlimit limit = {};
        ::getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
        std::vector<int> fillers = {::dup(STDERR_FILENO)};
        while (fillers.back() >= 0 && fillers.back() < 1024)
            fillers.push_back(::dup(STDERR_FILENO));
        if (fillers.back() < 0)
            QSKIP("NOT TRIED: the system allows no handle above 1023");
        Pair pair;
        pair.send("x");
        pair.receive();
        QCOMPARE(pair.count, 1);
        QCOMPARE(failureOf([&] { pair.receive(0); }), "Receive timeout");
        for (const int filler : fillers)
            ::close(filler);
    }

    void datagrams()
    {
        CBlockingSocket one;
        CBlockingSocket two;
        one.Create(SOCK_DGRAM);
        two.Create(SOCK_DGRAM);
        sockaddr_in address = one.GetHostByName("127.0.0.1");
        one.Bind(generic(address));
        one.GetSockAddr(generic(address));
        QCOMPARE(two.SendDatagram("hello", 5, generic(address), 5), 5);
        QCOMPARE(two.SendDatagram("too long", 8, generic(address), 5), 8);
        sockaddr_in sender = {};
        char buffer[6] = {};
        const auto receive = [&] { return one.ReceiveDatagram(buffer, 5, generic(sender), 0); };
        QCOMPARE(receive(), 5);
        QCOMPARE(receive(), 5);
        QCOMPARE(QByteArray(buffer), "too l");
        two.GetSockAddr(generic(address));
        QCOMPARE(sender.sin_port, address.sin_port);
        QCOMPARE(failureOf(receive), "Receive timeout");
    }

    void headerLines()
    {
        Pair pair;
        char *line = pair.buffer;
        const auto next = [&](int size) {
            const int count = pair.near.ReadHttpHeaderLine(line, size, 5);
            return QByteArray(line, count) + (line[count] == '\0' ? "" : "no end");
        };
        pair.send("one\r\ntwo\r\nthree\r\nrest");
        QCOMPARE(next(0), "");
        QCOMPARE(next(32), "one\r\n");
        // The second comes from the buffer.
        pair.far.Close();
        QCOMPARE(next(32), "two\r\n");
        // Cut: the count drops by two bytes only, so that five more seem to be held.
        QCOMPARE(next(3), "th");
        QCOMPARE(pair.near.ReadHttpResponse(line, 32, 5), 9);
        QCOMPARE(QByteArray(line, 4), "rest");
        for (const QByteArray &bad : {QByteArray("line\n"), QByteArray("\n"), QByteArray("line"),
                                      QByteArray(3000, 'x') + "\r\n"}) {
            Pair other;
            other.send(bad);
            other.far.Close();
            QCOMPARE(failureOf([&] { other.near.ReadHttpHeaderLine(line, 32, 5); }),
                     "ReadHeaderLine");
        }
        // Full before the end, and smaller than what is held.
        Pair response;
        response.send("head\r\n" + QByteArray(2500, 'b'));
        QCOMPARE(response.near.ReadHttpHeaderLine(line, 100, 5), 6);
        for (const int room : {10, 1500})
            QCOMPARE(response.near.ReadHttpResponse(line, room, 5), room);
        QCOMPARE(failureOf([&] { response.near.ReadHttpResponse(line, 3000, 0); }),
                 "Receive timeout");
    }
};

QTEST_GUILESS_MAIN(BlockingSocketTest)
#include "tst_blockingsocket.moc"
