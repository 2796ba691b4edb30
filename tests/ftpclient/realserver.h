// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "loopback.h"

#include <formkit/FtpClient/FTPDataTypes.h>

#include <QProcess>
#include <QTemporaryDir>

#include <memory>

/// How a server is reached: over TLS ("explicit", "implicit" or, in clear, ""), with a certificate
/// in a file, and at which address.
struct Access
{
    QString tls;
    QString certificate;
    QString address = "127.0.0.1";
};

/// An FTP server of the unpacked packages, as an ordinary process on loopback with a folder of its
/// own, which is killed with its children in the end.
class RealServer
{
public:
    /// vsftpd, pure-ftpd, proftpd, pyftpdlib, or ftp-proxy in front of a pyftpdlib of its own.
    explicit RealServer(const QString &kind, const Access &access = {});
    ~RealServer() { kill(); }

    /// Empty when the server answers, else what went wrong; "NOT TRIED" is in it when this user
    /// cannot start such a server.
    QString failure() const { return m_failure; }
    nsFTP::CLogonInfo logon() const;
    /// Where a served file lies.
    QString path(const QString &file) const
    {
        return m_behind ? m_behind->path(file) : m_folder.filePath("files/" + file);
    }
    void put(const QString &file, const QByteArray &bytes) const { writeFile(path(file), bytes); }
    QByteArray get(const QString &file) const { return readFile(path(file)); }
    /// As a machine that loses its power: the processes that serve connections too.
    void kill();

private:
    QString m_kind;
    Access m_access;
    QTemporaryDir m_folder;
    quint16 m_port;
    std::unique_ptr<RealServer> m_behind;
    QProcess m_process;
    QString m_failure;
};
