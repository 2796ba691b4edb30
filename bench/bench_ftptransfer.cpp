// SPDX-License-Identifier: BSD-3-Clause
// Downloads and uploads of 1 GiB over loopback beside curl, in clear and over TLS: same server
// (vsftpd), same buffer size, in pairs; medians of time and of processor time. An argument sets the
// number of pairs.

#include "ftpclient/realserver.h"

#include <formkit/FtpClient/FTPClient.h>
#include <formkit/FtpTls/TlsSocket.h>

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace nsFTP;

namespace {

// curl's own.
constexpr unsigned int DownloadBuffer = 102400;
constexpr unsigned int UploadBuffer = 65536;
constexpr qint64 FileSize = 1LL << 30;

struct Cost
{
    double seconds = 0;
    double processor = 0;
};

double secondsOf(const timeval &time)
{
    return double(time.tv_sec) + double(time.tv_usec) / 1e6;
}

// Runs in a child process, so that the processor time is its own.
Cost costOf(const std::function<bool()> &work)
{
    QElapsedTimer timer;
    timer.start();
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work() ? 0 : 1);
    int status = 0;
    rusage usage = {};
    ::wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        qFatal("a transfer failed");
    return {double(timer.nsecsElapsed()) / 1e9,
            secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime)};
}

bool runCurl(const QStringList &arguments)
{
    std::vector<QByteArray> bytes = {"curl", "-sS"};
    for (const QString &argument : arguments)
        bytes.push_back(argument.toLocal8Bit());
    std::vector<char *> pointers;
    pointers.reserve(bytes.size() + 1);
    for (QByteArray &argument : bytes)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    ::execvp("curl", pointers.data());
    return false;
}

bool runOurs(const RealServer &server, const CFTPSecurity &security, unsigned int bufferSize,
             const std::function<bool(CFTPClient &)> &work)
{
    CFTPClient client(nsSocket::CreateTlsSocketInstance(security), 30, bufferSize);
    client.SetResumeMode(false);
    const bool done = client.Login(server.logon()) && work(client);
    client.Logout();
    return done;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void compare(const char *name, int pairs, const std::function<bool()> &ours,
             const std::function<bool()> &curls)
{
    std::vector<double> times[2];
    std::vector<double> processors[2];
    std::vector<double> timeRatios;
    std::vector<double> processorRatios;
    for (int i = 0; i < pairs; ++i) {
        // Each goes first in turn.
        Cost mine = i % 2 == 0 ? costOf(ours) : Cost();
        const Cost other = costOf(curls);
        mine = i % 2 == 0 ? mine : costOf(ours);
        times[0].push_back(mine.seconds);
        times[1].push_back(other.seconds);
        processors[0].push_back(mine.processor);
        processors[1].push_back(other.processor);
        timeRatios.push_back(other.seconds / mine.seconds);
        processorRatios.push_back(mine.processor / other.processor);
    }
    const double mebibytes = double(FileSize) / (1 << 20);
    std::printf("%-10s formkit %6.0f MiB/s %5.2f s cpu   curl %6.0f MiB/s %5.2f s cpu   "
                "throughput %.2f of curl's, processor time %.2f times curl's\n",
                name, mebibytes / median(times[0]), median(processors[0]),
                mebibytes / median(times[1]), median(processors[1]), median(timeRatios),
                median(processorRatios));
}

// Moves the file both ways, in clear or over TLS with the certificates of a folder.
void measure(const char *name, int pairs, const QString &certificates)
{
    const bool tls = !certificates.isEmpty();
    const RealServer server(
        "vsftpd", {tls ? "explicit" : "", tls ? certificates + "/good.pem" : "", "127.0.0.1"});
    if (!server.failure().isEmpty())
        qFatal("%s", qPrintable(server.failure()));
    QFile big(server.path("big"));
    if (!big.open(QIODevice::WriteOnly))
        qFatal("no file");
    const QByteArray block(1 << 20, 'x');
    while (big.size() < FileSize)
        big.write(block);
    big.close();
    CFTPSecurity security;
    security.mode = tls ? CFTPSecurity::Explicit : CFTPSecurity::None;
    security.caFile = (certificates + "/ca.pem").toStdString();
    const QStringList secure =
        tls ? QStringList({"--ssl-reqd", "--cacert", certificates + "/ca.pem"}) : QStringList();
    const QTemporaryDir folder;
    const QString local = folder.filePath("big");
    const QString url = QString("ftp://127.0.0.1:%1/").arg(server.logon().HostPort());
    const auto get = [&](CFTPClient &client) {
        return client.DownloadFile("big", local.toStdString(), CType::Image, true);
    };
    const auto put = [&](CFTPClient &client) {
        return client.UploadFile(local.toStdString(), "up", false, CType::Image, true);
    };
    compare((name + std::string(" down")).c_str(), pairs,
            [&] { return runOurs(server, security, DownloadBuffer, get); },
            [&] {
                return runCurl(secure + QStringList({"-o", local, url + "big"}));
            });
    compare((name + std::string(" up")).c_str(), pairs,
            [&] { return runOurs(server, security, UploadBuffer, put); },
            [&] {
                return runCurl(secure + QStringList({"-T", local, url + "up"}));
            });
}

} // namespace

int main(int argc, char **argv)
{
    const int pairs = argc > 1 ? QByteArray(argv[1]).toInt() : 7;
    const QTemporaryDir certificates;
    if (QProcess::execute(UNPACK_SCRIPT, {SERVERS_FOLDER}) != 0 ||
        QProcess::execute("sh", {DATA_FOLDER "/certificates", certificates.path()}) != 0)
        qFatal("no server to measure with");
    measure("clear", pairs, {});
    measure("TLS", pairs, certificates.path());
    return 0;
}
