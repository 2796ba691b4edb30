// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/ftpjobs.h"

#include <atomic>
#include <chrono>
#include <map>
#include <set>

using JobClock = std::chrono::steady_clock;

/// A server, and what the queue knows of it. All but the settings is guarded by the queue's lock.
struct JobServer
{
    explicit JobServer(const FtpServer &given) : settings(given) {}

    const FtpServer settings;
    /// The ids of the jobs that may begin, and of those that are tried again later, by that time.
    std::set<int> waiting;
    std::multimap<JobClock::time_point, int> delayed;
    /// How many workers have a session here or open one, and how many may.
    int sessions = 0;
    int mostSessions = qMax(1, settings.sessions);
    /// How many logons have failed since the last good one, and when the next may begin.
    int failures = 0;
    JobClock::time_point nextLogon = JobClock::time_point::min();
    /// False after another server was set: idle sessions then log out.
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

    /// Guarded by the queue's lock.
    FtpJobs::State state = FtpJobs::Waiting;
    Wish wish = GoOn;
    int failures = 0;    ///< attempts that got no further
    qint64 furthest = 0; ///< the most bytes that any attempt had
    JobClock::time_point startedAt;
    bool ownsTarget = false; ///< no other job writes the local file

    /// Set by the session, read on any thread, in bytes: what the target has, what it is to have,
    /// and what all attempts have moved.
    std::atomic<qint64> done{0};
    std::atomic<qint64> total{-1};
    std::atomic<qint64> moved{0};

    /// Used by the session alone: size and time of the source when the last attempt began, whether
    /// the target has bytes of this job, and whether the next attempt may go on after these.
    qint64 sourceSize = -1;
    qint64 sourceTime = -1;
    bool hasPart = false;
    bool mayResume = true;
};
