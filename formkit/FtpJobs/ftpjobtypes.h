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

/// How jobs reach a server, how many sessions they use, and how often they try again.
///
///     FtpServer server;
///     server.logon = {"ftp.example.org", 21, "joe", "secret"};
struct FtpServer
{
    /// Where and as whom to log on, a firewall included.
    nsFTP::CLogonInfo logon;
    /// Whether data connections go from this machine to the server; otherwise the server connects
    /// to this machine.
    bool passive = true;
    /// Seconds for each wait, at least 1.
    unsigned int timeout = 30;
    /// How many sessions may be open at a time, at least 1. With more than one, jobs run side by
    /// side, and end in any order. If the server refuses a further session, the jobs make do with
    /// those that are open.
    int sessions = 1;
    /// How often a job is tried again after failures that may pass, such as a lost connection. An
    /// attempt that gets further than all before begins the count anew.
    int retries = 4;
    /// Milliseconds before the first of these attempts. The time doubles with each further one, up
    /// to a minute.
    int retryDelay = 1000;
    /// Seconds between the NOOPs by which an idle session stays open; 0 sends none.
    int keepAlive = 30;
    /// Seconds after which an idle session logs out.
    int idleTime = 300;
    /// Makes the client of each session; for TLS with a socket of CreateTlsSocketInstance(). If it
    /// is not set, the client has no TLS, knows IPv4 and IPv6, and uses MLSD and UTF-8 where the
    /// server has them.
    /// - It is called on the thread of the session, and so are the observers that it attaches.
    ///   These have to outlive the jobs.
    /// - The jobs set resume mode themselves and, before the logon, both address policies: data
    ///   neither come from a foreign host nor go to one.
    std::function<std::unique_ptr<nsFTP::CFTPClient>()> makeClient;
};

/// Why a job failed: a code for the program, a sentence for the user.
struct FORMKITFTPJOBS_EXPORT FtpError
{
    Q_GADGET

public:
    /// What was wrong. After what "may pass" the job is tried again.
    enum Code {
        None,           ///< nothing
        Cancelled,      ///< by cancel()
        UnknownHost,    ///< the server's name has no address; may pass
        NoConnection,   ///< the server cannot be reached; may pass
        TimedOut,       ///< the server did not answer in time; may pass
        ConnectionLost, ///< the connection ended; may pass
        Busy,           ///< the server refused for now (a reply 4xx); may pass
        Incomplete,     ///< fewer bytes came than the server told; may pass
        NotLoggedOn,    ///< the server refused the logon
        Refused,        ///< the server refused the command (a reply 5xx)
        Insecure,       ///< no connection that is as secure as asked for
        LocalFile,      ///< the file of this machine cannot be read or written
        Failed          ///< all else
    };
    Q_ENUM(Code)

    /// The code, and a sentence in the application's language. The sentence quotes what the server
    /// or the system said, without control characters. It is empty for None.
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
    /// UTC, or the server's local time taken for UTC; invalid when not known.
    QDateTime modified;
    /// False if only the date is known: the time is midnight then.
    bool knowsTime = true;

    /// The name as text for the user.
    QString text() const;
    /// The name for a file in a folder of this machine. Empty if it could lead out of the folder,
    /// or is no UTF-8: several such names could mean the same file.
    QString localName() const;
};
Q_DECLARE_METATYPE(QVector<FtpEntry>)
