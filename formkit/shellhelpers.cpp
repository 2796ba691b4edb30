// SPDX-License-Identifier: BSD-3-Clause
#include "shellhelpers.h"

#include "filebrowser_p.h"
#include "guilog_p.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#include <memory>

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

namespace {

constexpr int Limit = 2000;
constexpr char ProcessLister[] = "pgrep";

// Kills a process and deletes the object when the end is reported. QProcess's destructor would wait
// for the end, up to half a minute if the kernel is slow.
void abandon(std::unique_ptr<QProcess> process)
{
    if (process->state() == QProcess::NotRunning)
        return;
    QProcess *running = process.release();
    QObject::connect(running, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), running,
                     &QObject::deleteLater);
    running->kill();
}

} // namespace

QList<long> processIds(const QString &name)
{
    auto process = std::make_unique<QProcess>();
    process->start(QLatin1String(ProcessLister), {name}, QIODevice::ReadWrite);
    if (!process->waitForStarted(Limit)) {
        qCDebug(guiLog) << "processIds"
                        << "Call is not started:" << ProcessLister;
        abandon(std::move(process));
        return {};
    }
    if (!process->waitForFinished(Limit)) {
        qCDebug(guiLog) << "processIds"
                        << "Call is not finished:" << ProcessLister;
        abandon(std::move(process));
        return {};
    }
    QList<long> ids;
    const QString output = QString::fromLatin1(process->readAllStandardOutput().constData());
    const QStringList lines = output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (const long id = line.toLong())
            ids.append(id);
        else
            qCDebug(guiLog) << "processIds"
                            << "Cannot convert PID:" << line;
    }
    return ids;
}

void shellShowFile(const QString &path)
{
    const QString native = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    if (native.isEmpty())
        return;
    FileBrowser::select(native, [native] {
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(native).path()));
    });
}

QList<QHostAddress> localhostAddresses(bool upOnly)
{
    QList<QHostAddress> addresses;
    ifaddrs *interfaces = nullptr;
    if (getifaddrs(&interfaces) != 0)
        return addresses;
    for (const ifaddrs *entry = interfaces; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || (upOnly && !(entry->ifa_flags & IFF_UP)))
            continue;
        const int family = entry->ifa_addr->sa_family;
        if (family == AF_INET || family == AF_INET6)
            addresses.append(QHostAddress(entry->ifa_addr));
    }
    freeifaddrs(interfaces);
    return addresses;
}
