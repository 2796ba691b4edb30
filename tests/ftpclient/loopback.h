// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/FtpClient/BlockingSocket.h>

#include <QFile>

inline sockaddr *generic(sockaddr_in &address)
{
    return reinterpret_cast<sockaddr *>(&address);
}

/// Makes a socket that listens on loopback; its port.
inline unsigned short listenOnLoopback(nsSocket::CBlockingSocket &socket)
{
    socket.Cleanup();
    socket.Create();
    sockaddr_in address = socket.GetHostByName("127.0.0.1");
    socket.Bind(generic(address));
    socket.Listen();
    socket.GetSockAddr(generic(address));
    return ntohs(address.sin_port);
}

inline void connectToLoopback(nsSocket::CBlockingSocket &socket, unsigned short port,
                              const char *from = "127.0.0.1")
{
    socket.Create();
    sockaddr_in own = socket.GetHostByName(from);
    socket.Bind(generic(own));
    sockaddr_in address = socket.GetHostByName("127.0.0.1", port);
    socket.Connect(generic(address));
}

/// Writes a file that everybody may use, and reads one.
inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    file.setPermissions(QFile::Permissions(0x6666));
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
}
