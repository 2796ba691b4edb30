// SPDX-License-Identifier: BSD-3-Clause
#include "filebrowser_p.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QLocalSocket>
#include <QTimer>

#include <cstddef>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using Callback = std::function<void()>;

// Milliseconds, as shellShowFile() promises.
constexpr int BusLimit = 1000;
constexpr int FileManagerLimit = 5000;

QByteArray sessionBusAddress()
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    return !address.isEmpty() || folder.isEmpty() ? address : "unix:path=" + folder + "/bus";
}

// The name of the first socket in an address such as "unix:path=/run/user/7/bus,guid=12;tcp:…". The
// name of an abstract socket begins with a NUL.
QByteArray socketName(const QByteArray &address)
{
    const QByteArray first = address.split(';').first().split(',').first();
    for (const QByteArray &kind : {QByteArray("unix:path="), QByteArray("unix:abstract=")}) {
        if (first.startsWith(kind)) {
            const QByteArray name = QByteArray::fromPercentEncoding(first.mid(kind.size()));
            return kind.contains("abstract") ? '\0' + name : name;
        }
    }
    return {};
}

// A connection to a local socket, or -1.
int connectTo(const QByteArray &name)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || size_t(name.size()) >= sizeof(address.sun_path))
        return -1;
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
    const auto size = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size()) +
                                (name.startsWith('\0') ? 0 : 1));
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor >= 0 && connect(descriptor, reinterpret_cast<sockaddr *>(&address), size) != 0) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

// Calls one of the two, once. QDBusConnection would wait without a limit for a bus that accepts the
// connection and never answers, so this first sees whether the bus answers at all.
void askBus(const Callback &answers, const Callback &otherwise)
{
    const int descriptor = connectTo(socketName(sessionBusAddress()));
    if (descriptor < 0)
        return otherwise();
    auto *socket = new QLocalSocket(QCoreApplication::instance());
    auto *limit = new QTimer(socket);
    const auto end = [socket, limit](const Callback &outcome) {
        return [socket, limit, outcome] {
            limit->stop();
            socket->disconnect();
            socket->deleteLater();
            outcome();
        };
    };
    QObject::connect(socket, &QLocalSocket::readyRead, end(answers));
    QObject::connect(socket, &QLocalSocket::disconnected, end(otherwise));
    QObject::connect(limit, &QTimer::timeout, end(otherwise));
    limit->start(BusLimit);
    socket->setSocketDescriptor(descriptor);
    socket->write(QByteArrayLiteral("\0AUTH EXTERNAL ") + QByteArray::number(getuid()).toHex() +
                  "\r\n");
}

// Has the bytes of the name as the disk has them, so that the URI means this file and no other.
QString fileUri(const QString &path)
{
    return QLatin1String("file://") +
           QString::fromLatin1(QFile::encodeName(path).toPercentEncoding("/"));
}

void showItem(const QString &path, const Callback &otherwise)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) // a watcher would never report an end
        return otherwise();
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList(fileUri(path)) << QString();
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, FileManagerLimit),
                                                QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [watcher, otherwise] {
        watcher->deleteLater();
        if (watcher->isError())
            otherwise();
    });
}

} // namespace

void FileBrowser::select(const QString &path, const std::function<void()> &otherwise)
{
    askBus([path, otherwise] { showItem(path, otherwise); }, otherwise);
}
