// SPDX-License-Identifier: BSD-3-Clause
// Ten thousand small files by two sessions of FtpJobs beside curl with two connections: same server
// (vsftpd), in turn; medians. An argument sets the number of pairs.

#include "ftpclient/realserver.h"

#include <formkit/FtpJobs/ftpjobs.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int Files = 10000;
constexpr int BytesEach = 2000;

struct Cost
{
    double seconds = 0;
    double processor = 0;
};

double secondsOf(const timeval &time)
{
    return double(time.tv_sec) + double(time.tv_usec) / 1e6;
}

// Runs in a child process, so that the processor time is its own, and checks what came.
Cost costOf(const QString &folder, const std::function<int()> &work)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    QElapsedTimer timer;
    timer.start();
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    rusage usage = {};
    ::wait4(child, &status, 0, &usage);
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files);
    const bool whole = std::all_of(files.begin(), files.end(),
                                   [](const QFileInfo &file) { return file.size() == BytesEach; });
    if (status != 0 || files.size() != Files || !whole)
        qFatal("a transfer failed: %d, %d files", status, int(files.size()));
    return {seconds, secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime)};
}

int runJobs(const RealServer &server, const QString &folder)
{
    int count = 0;
    char name[] = "bench";
    char *arguments[] = {name, nullptr};
    int one = 1;
    QCoreApplication application(one, arguments);
    FtpServer settings;
    settings.logon = server.logon();
    settings.sessions = 2;
    FtpJobs jobs;
    jobs.setServer(settings);
    QObject::connect(&jobs, &FtpJobs::finished,
                     [&](int, const FtpError &error) { count += error ? 0 : 1; });
    QObject::connect(&jobs, &FtpJobs::allFinished, &application, &QCoreApplication::quit);
    for (int i = 0; i < Files; ++i)
        jobs.download("f" + QByteArray::number(i), folder + QString("/f%1").arg(i));
    application.exec();
    return count == Files ? 0 : 1;
}

int runCurl(const QString &list)
{
    ::execlp("curl", "curl", "-sS", "--parallel", "--parallel-max", "2", "-K",
             list.toLocal8Bit().constData(), static_cast<char *>(nullptr));
    return 1;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    const int pairs = argc > 1 ? QByteArray(argv[1]).toInt() : 3;
    if (QProcess::execute(UNPACK_SCRIPT, {SERVERS_FOLDER}) != 0)
        qFatal("no server to measure with");
    const RealServer server("vsftpd");
    if (!server.failure().isEmpty())
        qFatal("%s", qPrintable(server.failure()));
    const QTemporaryDir place;
    const QString folder = place.filePath("got");
    QByteArray list;
    for (int i = 0; i < Files; ++i) {
        server.put(QString("f%1").arg(i), QByteArray(BytesEach, 'x'));
        list += QString("url=ftp://127.0.0.1:%1/f%2\noutput=%3/f%2\n")
                    .arg(server.logon().HostPort())
                    .arg(i)
                    .arg(folder)
                    .toLocal8Bit();
    }
    writeFile(place.filePath("list"), list);
    std::vector<double> times[2];
    std::vector<double> processors[2];
    for (int i = 0; i < pairs; ++i) {
        const Cost mine = costOf(folder, [&] { return runJobs(server, folder); });
        const Cost other = costOf(folder, [&] { return runCurl(place.filePath("list")); });
        times[0].push_back(mine.seconds);
        processors[0].push_back(mine.processor);
        times[1].push_back(other.seconds);
        processors[1].push_back(other.processor);
    }
    std::printf("%d files, 2 sessions: FtpJobs %.2f s, %.2f s cpu; curl %.2f s, %.2f s cpu\n",
                Files, median(times[0]), median(processors[0]), median(times[1]),
                median(processors[1]));
    return 0;
}
