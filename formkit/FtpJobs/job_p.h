// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/ftpjobs.h"

#include <atomic>
#include <chrono>
#include <map>
#include <set>

using JobClock = std::chrono::steady_clock;

/// A server, and what the queue knows of it. All but the settings is guarded by the queue.
struct JobServer
{
    explicit JobServer(const FtpServer &given) : settings(given) {}

    const FtpServer settings;
    /// The ids of the jobs that may begin, and of those that are tried again at a time.
    std::set<int> waiting;
    std::multimap<JobClock::time_point, int> delayed;
    /// The workers that have a session here or open one, and how many may.
    int sessions = 0;
    int mostSessions = qMax(1, settings.sessions);
    /// The logons that failed since one succeeded, and when the next may follow.
    int failures = 0;
    JobClock::time_point nextLogon = JobClock::time_point::min();
    /// False once another server is set: sessions without jobs then end.
    bool isCurrent = true;
};

/// One job.
struct Job
{
    enum Kind { Download, Upload, List, Remove };
    enum Wish { GoOn, Pause, BeginAgain, Cancel };

    Job(Kind what, const QByteArray &theRemote, const QString &theLocal,
        FtpJobs::Options theOptions)
        : kind(what), remote(theRemote.toStdString()), local(theLocal), options(theOptions)
    {
    }
    bool has(FtpJobs::Option option) const { return options.testFlag(option); }

    const Kind kind;
    const std::string remote;
    const QString local; ///< absolute
    const FtpJobs::Options options;
    int id = 0;
    std::shared_ptr<JobServer> server;

    /// Guarded by the queue.
    FtpJobs::State state = FtpJobs::Waiting;
    Wish wish = GoOn;
    int failures = 0;    ///< attempts that got no further
    qint64 furthest = 0; ///< the most bytes that any attempt had
    JobClock::time_point startedAt;
    bool ownsTarget = false; ///< no other job writes the local file

    /// Set by the session, read at any time: the bytes that are there, that are wanted, and that
    /// went over the network.
    std::atomic<qint64> done{0};
    std::atomic<qint64> total{-1};
    std::atomic<qint64> moved{0};

    /// The session's own: the size and time of the source when its last attempt began, and whether
    /// the other side has bytes of that attempt and nothing else.
    qint64 sourceSize = -1;
    qint64 sourceTime = -1;
    bool hasPart = false;
    bool mayResume = true;
};
