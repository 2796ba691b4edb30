#include "support/stricttest.h"

#include <formkit/FtpClient/BlockingSocket.h>

#include <array>
#include <atomic>
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
template <typename Socket> struct Pair
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
        accepted = listener.Accept(near, generic(peer));
    }

    Socket near;
    CBlockingSocket far;
    sockaddr_in peer = {};
    bool accepted = false;
};

QString failureOf(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const CBlockingSocketException &exception) {
        return QString::fromStdString(exception.GetErrorMessage());
    }
    return "none";
}

} // namespace

class BlockingSocketTest : public StrictTest
{
    Q_OBJECT

private slots:
    void connectsAndTellsAddresses();
    void writesInPieces();
    void failures();
    void closedPeerRaisesNoSignal();
    void interruptedWaitGoesOn();
    void handlesAbove1023();
    void datagrams();
    void errorTexts();
    void headerLines();
    void headerFaults_data();
    void headerFaults();
    void responses();
};

void BlockingSocketTest::connectsAndTellsAddresses()
{
    const std::shared_ptr<IBlockingSocket> socket = CreateDefaultBlockingSocketInstance();
    QCOMPARE(socket->operator SOCKET(), INVALID_SOCKET);
    QVERIFY(std::unique_ptr<IBlockingSocket>(socket->CreateInstance()));
    Pair<CBlockingSocket> pair;
    QVERIFY(pair.accepted);
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
    char byte = 0;
    QCOMPARE(pair.near.Receive(&byte, 1, 5), 0);
    QVERIFY(pair.near.CheckReadability());
}

void BlockingSocketTest::writesInPieces()
{
    Pair<CBlockingSocket> pair;
    std::string sent;
    sent.resize(20000000, 'x');
    std::string received;
    std::thread reader([&] {
        std::vector<char> block(100000);
        while (const int n = pair.far.Receive(block.data(), int(block.size()), 10))
            received.append(block.data(), size_t(n));
    });
    QCOMPARE(pair.near.Write(sent.data(), int(sent.size()), 10), int(sent.size()));
    QCOMPARE(pair.near.Write(sent.data(), 0, 10), 0);
    pair.near.Close();
    reader.join();
    QCOMPARE(received.size(), sent.size());
}

void BlockingSocketTest::failures()
{
    Pair<CBlockingSocket> pair;
    CBlockingSocket unconnected;
    unconnected.Create();
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    char byte = 0;
    std::string much;
    much.resize(50000000, 'x');
    QCOMPARE(failureOf([&] { pair.near.Receive(&byte, 1, 0); }), "Receive timeout error");
    QCOMPARE(failureOf([&] { pair.near.Write(much.data(), int(much.size()), 0); }),
             "Send timeout error");
    QVERIFY(failureOf([&] { unconnected.Receive(&byte, 1, 1); }).startsWith("Receive error 0x"));
    QVERIFY(failureOf([&] {
                unconnected.GetPeerAddr(generic(address));
            }).startsWith("GetPeerName error 0x"));
    QVERIFY(failureOf([&] { pair.near.Bind(generic(address)); }).startsWith("Bind error 0x"));
    QVERIFY(failureOf([&] { CBlockingSocket().Create(-1); }).startsWith("Create error 0x"));
    QCOMPARE(failureOf([&] { unconnected.GetHostByName(""); }), "GetHostByName error");
    // Nobody connects: the wait is over when its limit is.
    unconnected.Bind(generic(address));
    unconnected.Listen();
    unconnected.SetWaitLimit(0);
    CBlockingSocket none;
    QCOMPARE(failureOf([&] { unconnected.Accept(none, generic(address)); }),
             QString("Accept error 0x%1").arg(ETIMEDOUT, 8, 16, QChar('0')));
    // Closed behind the object's back.
    ::close(int(unconnected.operator SOCKET()));
    QVERIFY(failureOf([&] { unconnected.Listen(); }).startsWith("Listen error 0x"));
    QVERIFY(failureOf([&] { unconnected.CheckReadability(); }).startsWith("Socket Error error 0x"));
    const SOCKET handle = unconnected;
    QVERIFY(failureOf([&] { unconnected.Close(); }).startsWith("Close error 0x"));
    QCOMPARE(unconnected.operator SOCKET(), handle);
    unconnected.Cleanup();
    QCOMPARE(unconnected.operator SOCKET(), INVALID_SOCKET);
}

void BlockingSocketTest::closedPeerRaisesNoSignal()
{
    Pair<CBlockingSocket> pair;
    const linger reset = {1, 0};
    ::setsockopt(int(pair.far.operator SOCKET()), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    pair.far.Close();
    const std::string block(100000, 'x');
    const auto write = [&] { pair.near.Write(block.data(), int(block.size()), 1); };
    QVERIFY(failureOf(write).startsWith("Send error 0x"));
    QVERIFY(failureOf(write).startsWith("Send error 0x"));
}

void BlockingSocketTest::interruptedWaitGoesOn()
{
    Pair<CBlockingSocket> pair;
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
    char byte = 0;
    const QString failure = failureOf([&] { pair.near.Receive(&byte, 1, 30); });
    disturber.join();
    QCOMPARE(failure, "none");
    QCOMPARE(byte, 'x');
}

void BlockingSocketTest::handlesAbove1023()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    const int taken = ::fcntl(STDERR_FILENO, F_DUPFD, 1024);
    if (taken < 0)
        QSKIP("the system allows no handle above 1023");
    std::vector<int> fillers;
    while (fillers.empty() || fillers.back() < 1024)
        fillers.push_back(::dup(STDERR_FILENO));
    {
        Pair<CBlockingSocket> pair;
        QVERIFY(pair.near.operator SOCKET() > 1023);
        char byte = 0;
        QCOMPARE(failureOf([&] { pair.near.Receive(&byte, 1, 0); }), "Receive timeout error");
        pair.far.Write("x", 1, 5);
        QCOMPARE(pair.near.Receive(&byte, 1, 5), 1);
    }
    fillers.push_back(taken);
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
    sockaddr_in own = {};
    std::array<char, 10> buffer = {};
    QCOMPARE(one.ReceiveDatagram(buffer.data(), 10, generic(sender), 5), 5);
    two.GetSockAddr(generic(own));
    QCOMPARE(sender.sin_port, own.sin_port);
    QCOMPARE(failureOf([&] { one.ReceiveDatagram(buffer.data(), 10, generic(sender), 0); }),
             "Receive timeout error");
    const std::string tooLong(70000, 'x');
    QVERIFY(failureOf([&] {
                two.SendDatagram(tooLong.data(), 70000, generic(address), 1);
            }).startsWith("SendDatagram error 0x"));
}

void BlockingSocketTest::errorTexts()
{
    errno = ENOENT;
    const CBlockingSocketException numbered("Send");
    errno = 0;
    const CBlockingSocketException plain("Receive timeout");
    std::array<char, 32> buffer;
    buffer.fill('?');
    QVERIFY(!numbered.GetErrorMessage(buffer.data(), 4 + 17));
    QCOMPARE(buffer[0], '?');
    QVERIFY(numbered.GetErrorMessage(buffer.data(), 4 + 18));
    QCOMPARE(QString(buffer.data()), "Send error 0x00000002");
    QVERIFY(!plain.GetErrorMessage(buffer.data(), 15 + 6));
    QVERIFY(plain.GetErrorMessage(buffer.data(), 15 + 7));
    QCOMPARE(QString(buffer.data()), "Receive timeout error");
    QCOMPARE(CBlockingSocketException(std::string(600, 'x').c_str()).GetErrorMessage(),
             std::string());
}

void BlockingSocketTest::headerLines()
{
    Pair<CHttpBlockingSocket> pair;
    std::array<char, 32> line = {};
    pair.far.Write("one\r\ntwo\r\nthree\r\nrest", 21, 5);
    QCOMPARE(pair.near.ReadHttpHeaderLine(line.data(), 32, 5), 5);
    QCOMPARE(QByteArray(line.data()), "one\r\n");
    // The second comes from the buffer.
    pair.far.Close();
    QCOMPARE(pair.near.ReadHttpHeaderLine(line.data(), 32, 5), 5);
    QCOMPARE(QByteArray(line.data()), "two\r\n");
    QCOMPARE(pair.near.ReadHttpHeaderLine(line.data(), 0, 5), 0);
    // Cut: the count drops by two bytes only, so that five more seem to be held.
    QCOMPARE(pair.near.ReadHttpHeaderLine(line.data(), 3, 5), 2);
    QCOMPARE(QByteArray(line.data()), "th");
    QCOMPARE(pair.near.ReadHttpResponse(line.data(), 32, 5), 9);
    QCOMPARE(QByteArray(line.data(), 4), "rest");
}

void BlockingSocketTest::headerFaults_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("no carriage return") << QByteArray("line\n");
    QTest::newRow("line feed first") << QByteArray("\n");
    QTest::newRow("end before the line") << QByteArray("line");
    QTest::newRow("longer than the buffer") << QByteArray(3000, 'x') + "\r\n";
}

void BlockingSocketTest::headerFaults()
{
    QFETCH(QByteArray, bytes);
    Pair<CHttpBlockingSocket> pair;
    pair.far.Write(bytes.constData(), bytes.size(), 5);
    pair.far.Close();
    std::array<char, 32> line = {};
    QCOMPARE(failureOf([&] { pair.near.ReadHttpHeaderLine(line.data(), 32, 5); }),
             "ReadHeaderLine error");
}

void BlockingSocketTest::responses()
{
    Pair<CHttpBlockingSocket> pair;
    const std::string body(2500, 'b');
    const std::string text = "head\r\n" + body;
    pair.far.Write(text.data(), int(text.size()), 5);
    pair.far.Close();
    std::vector<char> buffer(3000);
    QCOMPARE(pair.near.ReadHttpHeaderLine(buffer.data(), 100, 5), 6);
    // Full before the end, and smaller than what is held.
    QCOMPARE(pair.near.ReadHttpResponse(buffer.data(), 10, 5), 10);
    QCOMPARE(pair.near.ReadHttpResponse(buffer.data(), 1500, 5), 1500);
    QCOMPARE(pair.near.ReadHttpResponse(buffer.data(), 3000, 5), 990);
    QCOMPARE(buffer[989], 'b');
    Pair<CHttpBlockingSocket> silent;
    QCOMPARE(failureOf([&] { silent.near.ReadHttpResponse(buffer.data(), 10, 0); }),
             "Receive timeout error");
}

QTEST_GUILESS_MAIN(BlockingSocketTest)
#include "tst_blockingsocket.moc"
