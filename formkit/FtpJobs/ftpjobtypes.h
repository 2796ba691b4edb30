// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPClient.h"
#include "formkit/FtpJobs/formkitftpjobs_export.h"

#include <QByteArray>
#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>

/// How jobs reach a server, and how patient they are with it.
///
///     FtpServer server;
///     server.logon = {"ftp.example.org", 21, "joe", "secret"};
struct FtpServer
{
    /// Where and as whom to log on, a firewall included.
    nsFTP::CLogonInfo logon;
    /// Whether the jobs connect to the server for data; else it connects to this machine.
    bool passive = true;
    /// Seconds for each wait, at least 1.
    unsigned int timeout = 30;
    /// How many sessions the server may see at a time, at least 1. With more than one, jobs run
    /// side by side, and end in any order. A server that refuses another session gets no more of
    /// them.
    int sessions = 1;
    /// How often a job is tried again after what may pass, such as a lost connection, without
    /// getting any further.
    int retries = 4;
    /// Milliseconds before the first of these attempts. The time doubles with each further one, up
    /// to a minute.
    int retryDelay = 1000;
    /// Seconds between two signs of life (NOOP) of a session that has nothing to do; 0 sends none.
    int keepAlive = 30;
    /// Seconds after which such a session logs out.
    int idleTime = 300;
    /// Makes the client of each session, for TLS with a socket of CreateTlsSocketInstance(). When
    /// there is none: a client without TLS, for IPv4 and IPv6, which uses MLSD and UTF-8 where the
    /// server has them. Called on the thread of the session. The jobs themselves set resume mode
    /// and, before the logon, both address policies: no data come from a foreign host, or go to
    /// one. Observers that are attached here are called on that thread, and have to outlive the
    /// jobs.
    std::function<std::unique_ptr<nsFTP::CFTPClient>()> makeClient;
};

/// Why a job failed: a code for the program, a sentence for the user.
struct FORMKITFTPJOBS_EXPORT FtpError
{
    Q_GADGET

public:
    /// What was wrong. What may pass is tried again.
    enum Code {
        None,           ///< nothing
        Cancelled,      ///< by cancel()
        UnknownHost,    ///< the server's name has no address; may pass
        NoConnection,   ///< the server cannot be reached; may pass
        TimedOut,       ///< the server did not answer in time; may pass
        ConnectionLost, ///< may pass
        Busy,           ///< the server refused for now (a reply 4xx); may pass
        Incomplete,     ///< fewer bytes came than the server told; may pass
        NotLoggedOn,    ///< the server refused the logon
        Refused,        ///< the server refused the command (a reply 5xx)
        Insecure,       ///< no connection that is as secure as asked for
        LocalFile,      ///< the file of this machine cannot be read or written
        Failed          ///< all else
    };
    Q_ENUM(Code)

    /// The code, and a sentence in the application's language with the server's or the system's own
    /// text in it, if they gave one; without control characters. Empty for None.
    Code code = None;
    QString text;

    /// True when something was wrong.
    explicit operator bool() const { return code != None; }
    /// Whether trying again may help.
    bool mayPass() const { return code >= UnknownHost && code <= Incomplete; }
};
Q_DECLARE_METATYPE(FtpError)

/// How far a transfer is.
struct FtpProgress
{
    qint64 done = 0;           ///< bytes, those of earlier attempts included
    qint64 total = -1;         ///< bytes; -1 when not known
    qint64 bytesPerSecond = 0; ///< in the last seconds
    qint64 secondsLeft = -1;   ///< at that speed; -1 when not known
};
Q_DECLARE_METATYPE(FtpProgress)

/// One entry of a listed folder.
struct FORMKITFTPJOBS_EXPORT FtpEntry
{
    QByteArray name;       ///< the bytes that the server sent
    QByteArray path;       ///< for jobs: the listed folder and the name
    bool isFile = false;   ///< may be fetched; a link may be both
    bool isFolder = false; ///< may be listed
    qint64 size = -1;      ///< bytes; -1 when not known
    QDateTime modified;    ///< UTC, or the server's own time taken for it; invalid when not known
    bool knowsTime = true; ///< of the day; else midnight stands for it

    /// The name as text for the user.
    QString text() const;
    /// The name for a file in a folder of this machine. Empty when it could lead elsewhere or has
    /// no text, so that several names could mean the same file.
    QString localName() const;
};
Q_DECLARE_METATYPE(QVector<FtpEntry>)
