#include "support/stricttest.h"

#include <formkit/FtpClient/BlockingSocket.h>

#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace nsSocket;

namespace {

sockaddr *generic(sockaddr_in &address)
{
    return reinterpret_cast<sockaddr *>(&address);
}

// Two ends of a connection over loopback.
struct Pair
{
    Pair()
    {
        CBlockingSocket listener;
        listener.Create();
        sockaddr_in address = listener.GetHostByName("127.0.0.1");
        listener.Bind(generic(address));
        listener.GetSockAddr(generic(address));
        listener.Listen();
        far.Create();
        far.Connect(generic(address));
        listener.Accept(near, generic(peer));
    }

    CHttpBlockingSocket near;
    CBlockingSocket far;
    sockaddr_in peer = {};
    std::array<char, 3000> buffer = {};
};

QString failureOf(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const CBlockingSocketException &exception) {
        return QString::fromStdString(exception.GetErrorMessage()).section(" 0x", 0, 0);
    }
    return "none";
}

} // namespace

class BlockingSocketTest : public StrictTest
{
    Q_OBJECT

private slots:
    void addresses();
    void failures();
    void closedPeerRaisesNoSignal();
    void interruptedWaitGoesOn();
    void handlesAbove1023();
    void datagrams();
    void errorTexts();
    void headerLines();
};

void BlockingSocketTest::addresses()
{
    Pair pair;
    sockaddr_in own = {};
    sockaddr_in other = {};
    pair.far.GetSockAddr(generic(own));
    pair.near.GetPeerAddr(generic(other));
    QCOMPARE(own.sin_port, other.sin_port);
    QCOMPARE(pair.peer.sin_port, own.sin_port);
    const sockaddr_in named = pair.near.GetHostByName("localhost", 0x1234);
    QCOMPARE(named.sin_port, htons(0x1234));
    QCOMPARE(named.sin_addr.s_addr, htonl(INADDR_LOOPBACK));
    QVERIFY(*pair.near.GetHostByAddr(generic(other)) != '\0');
    QVERIFY(!pair.near.CheckReadability());
    QVERIFY(::fcntl(int(pair.near.operator SOCKET()), F_GETFD) & FD_CLOEXEC);
    pair.far.Close();
    pair.far.Close();
    QCOMPARE(pair.near.Receive(pair.buffer.data(), 1, 5), 0);
    QVERIFY(pair.near.CheckReadability());
}

void BlockingSocketTest::failures()
{
    Pair pair;
    CBlockingSocket lone;
    lone.Create();
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    const std::string much(50000000, 'x');
    const auto receive = [&] { pair.near.Receive(pair.buffer.data(), 1, 0); };
    QCOMPARE(failureOf(receive), "Receive timeout error");
    QCOMPARE(failureOf([&] { pair.near.Write(much.data(), int(much.size()), 0); }),
             "Send timeout error");
    QCOMPARE(failureOf([&] { lone.Receive(pair.buffer.data(), 1, 1); }), "Receive error");
    QCOMPARE(failureOf([&] { lone.GetPeerAddr(generic(address)); }), "GetPeerName error");
    QCOMPARE(failureOf([&] { pair.near.Bind(generic(address)); }), "Bind error");
    QCOMPARE(failureOf([&] { CBlockingSocket().Create(-1); }), "Create error");
    QCOMPARE(failureOf([&] { lone.GetHostByName(""); }), "GetHostByName error");
    // Nobody connects: the wait is over when its limit is.
    lone.Bind(generic(address));
    lone.Listen();
    lone.SetWaitLimit(0);
    CBlockingSocket none;
    QCOMPARE(failureOf([&] { lone.Accept(none, generic(address)); }), "Accept error");
    // Closed behind the object's back.
    ::close(int(lone.operator SOCKET()));
    QCOMPARE(failureOf([&] { lone.Listen(); }), "Listen error");
    QCOMPARE(failureOf([&] { lone.CheckReadability(); }), "Socket Error error");
    QCOMPARE(failureOf([&] { lone.Close(); }), "Close error");
    QVERIFY(lone.operator SOCKET() != INVALID_SOCKET);
    lone.Cleanup();
    QCOMPARE(lone.operator SOCKET(), INVALID_SOCKET);
}

void BlockingSocketTest::closedPeerRaisesNoSignal()
{
    Pair pair;
    const linger reset = {1, 0};
    ::setsockopt(int(pair.far.operator SOCKET()), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    pair.far.Close();
    for (int i = 0; i < 2; ++i)
        QCOMPARE(failureOf([&] { pair.near.Write(pair.buffer.data(), 3000, 1); }), "Send error");
}

void BlockingSocketTest::interruptedWaitGoesOn()
{
    Pair pair;
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGUSR1, &action, nullptr);
    const pthread_t waiting = ::pthread_self();
    std::thread disturber([&] {
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            ::pthread_kill(waiting, SIGUSR1);
        }
        pair.far.Write("x", 1, 5);
    });
    const QString failure = failureOf([&] { pair.near.Receive(pair.buffer.data(), 1, 30); });
    disturber.join();
    QCOMPARE(failure, "none");
}

void BlockingSocketTest::handlesAbove1023()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    std::vector<int> fillers = {::dup(STDERR_FILENO)};
    while (fillers.back() >= 0 && fillers.back() < 1024)
        fillers.push_back(::dup(STDERR_FILENO));
    if (fillers.back() < 0)
        QSKIP("the system allows no handle above 1023");
    Pair pair;
    pair.far.Write("x", 1, 5);
    QCOMPARE(pair.near.Receive(pair.buffer.data(), 1, 5), 1);
    QCOMPARE(failureOf([&] { pair.near.Receive(pair.buffer.data(), 1, 0); }),
             "Receive timeout error");
    for (const int filler : fillers)
        ::close(filler);
}

void BlockingSocketTest::datagrams()
{
    CBlockingSocket one;
    CBlockingSocket two;
    one.Create(SOCK_DGRAM);
    two.Create(SOCK_DGRAM);
    sockaddr_in address = one.GetHostByName("127.0.0.1");
    one.Bind(generic(address));
    one.GetSockAddr(generic(address));
    QCOMPARE(two.SendDatagram("hello", 5, generic(address), 5), 5);
    sockaddr_in sender = {};
    std::array<char, 10> buffer = {};
    QCOMPARE(one.ReceiveDatagram(buffer.data(), 10, generic(sender), 5), 5);
    two.GetSockAddr(generic(address));
    QCOMPARE(sender.sin_port, address.sin_port);
    QCOMPARE(failureOf([&] { one.ReceiveDatagram(buffer.data(), 10, generic(sender), 0); }),
             "Receive timeout error");
}

void BlockingSocketTest::errorTexts()
{
    std::array<char, 32> buffer = {};
    for (const bool numbered : {true, false}) {
        errno = numbered ? ENOENT : 0;
        const CBlockingSocketException exception("Send");
        const unsigned int enough = numbered ? 4 + 18 : 4 + 7;
        QVERIFY(!exception.GetErrorMessage(buffer.data(), enough - 1));
        QVERIFY(exception.GetErrorMessage(buffer.data(), enough));
        QCOMPARE(QString(buffer.data()), numbered ? "Send error 0x00000002" : "Send error");
    }
    QCOMPARE(CBlockingSocketException(std::string(600, 'x').c_str()).GetErrorMessage(),
             std::string());
}

void BlockingSocketTest::headerLines()
{
    Pair pair;
    char *line = pair.buffer.data();
    pair.far.Write("one\r\ntwo\r\nthree\r\nrest", 21, 5);
    QCOMPARE(pair.near.ReadHttpHeaderLine(line, 32, 5), 5);
    QCOMPARE(QByteArray(line), "one\r\n");
    // The second comes from the buffer.
    pair.far.Close();
    QCOMPARE(pair.near.ReadHttpHeaderLine(line, 32, 5), 5);
    QCOMPARE(QByteArray(line), "two\r\n");
    // Cut: the count drops by two bytes only, so that five more seem to be held.
    QCOMPARE(pair.near.ReadHttpHeaderLine(line, 3, 5), 2);
    QCOMPARE(QByteArray(line), "th");
    QCOMPARE(pair.near.ReadHttpResponse(line, 32, 5), 9);
    QCOMPARE(QByteArray(line, 4), "rest");
    for (const QByteArray &bytes : {QByteArray("line\n"), QByteArray("\n"), QByteArray("line"),
                                    QByteArray(3000, 'x') + "\r\n"}) {
        Pair other;
        other.far.Write(bytes.constData(), bytes.size(), 5);
        other.far.Close();
        QCOMPARE(failureOf([&] { other.near.ReadHttpHeaderLine(line, 32, 5); }),
                 "ReadHeaderLine error");
    }
    // Full before the end, and smaller than what is held.
    Pair response;
    const QByteArray text = "head\r\n" + QByteArray(2500, 'b');
    response.far.Write(text.constData(), text.size(), 5);
    response.far.Close();
    QCOMPARE(response.near.ReadHttpHeaderLine(line, 100, 5), 6);
    for (const auto &[room, count] : {std::pair(10, 10), {1500, 1500}, {3000, 990}})
        QCOMPARE(response.near.ReadHttpResponse(line, room, 5), count);
}

QTEST_GUILESS_MAIN(BlockingSocketTest)
#include "tst_blockingsocket.moc"
