// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpJobs/ftpjobtypes.h"

#include <QObject>

/// A queue of downloads, uploads, listings and deletions, which run on threads of its own while the
/// program goes on. docs/ftp.md has examples.
///
/// - Each job has an id and ends with exactly one finished(), also when it is cancelled. No signal
///   is emitted within a call; all come on the thread of this object, which needs an event loop.
/// - Jobs begin in the order in which they were queued.
/// - After a failure that may pass (FtpError::mayPass()) a job is tried again, after longer and
///   longer waits; a transfer goes on where it ended. If no logon succeeds in this way, or the
///   server refuses one, all jobs that wait for that server fail: the next logon would fail in the
///   same way.
/// - The object may be destroyed at any time, also by a slot: within about a tenth of a second all
///   threads have ended, unless a file of this machine or your makeClient() takes longer. Jobs that
///   were not finished are then forgotten without a signal.
class FORMKITFTPJOBS_EXPORT FtpJobs : public QObject
{
    Q_OBJECT

public:
    /// What a job may do beyond the usual.
    enum Option {
        NoOption = 0,
        /// Goes on where an earlier job ended, and keeps what arrived when it fails. A download
        /// goes on with the part beside the file, unless that is larger than the remote file or
        /// older; an upload completes the remote file, whoever wrote that.
        Resume = 1,
        /// A download keeps what arrived when it fails, for a later one with Resume.
        KeepPart = 2,
        /// Moves text: the server translates line ends. Such a transfer always begins anew.
        Text = 4,
        /// A listing of names alone (NLST), for servers whose other listings fail. Each entry may
        /// then be a file or a folder.
        NamesOnly = 8
    };
    Q_DECLARE_FLAGS(Options, Option)

    /// What a job is doing; Unknown after its end.
    enum State { Unknown, Waiting, Running, Paused };
    Q_ENUM(State)

    /// Starts no thread before the first job.
    explicit FtpJobs(QObject *parent = nullptr);
    ~FtpJobs() override;

    /// For the jobs that are queued from now on; others stay with their server.
    void setServer(const FtpServer &server);

    /// Each queues a job and returns its id. Remote names are bytes: QString::toUtf8() for nearly
    /// all servers.
    ///
    /// A download replaces the local file only when all bytes have come, at least as many as the
    /// server told. Before that they are in a file beside it, of the same name with ".part" added,
    /// which is removed when the job fails. A local device or pipe has no such file: it is written
    /// to at once.
    int download(const QByteArray &remote, const QString &local, Options options = {});
    /// Replaces the remote file.
    int upload(const QString &local, const QByteArray &remote, Options options = {});
    /// An empty text stands for the folder in which the session begins.
    int list(const QByteArray &folder = {}, Options options = {});
    /// Deletes a remote file.
    int remove(const QByteArray &remote);

    /// The state of now, which may be ahead of the signals.
    State state(int id) const;
    /// The jobs that are not finished.
    int count() const;

public Q_SLOTS:
    /// Stops a job within a tenth of a second. It stays in the queue, and what arrived is kept.
    void pause(int id);
    /// Lets a paused job go on.
    void resume(int id);
    /// Ends a job within a tenth of a second. It may still succeed in that time.
    void cancel(int id);
    /// Pause, resume or cancel all jobs that are in the queue now.
    void pauseAll();
    void resumeAll();
    void cancelAll();

Q_SIGNALS:
    /// An attempt of a job begins: the first, and another one after each pause or failure.
    void started(int id);
    /// About ten times a second while a transfer runs, and once when it has succeeded.
    void progress(int id, const FtpProgress &progress);
    /// An attempt failed; the next one follows after so many milliseconds or later.
    void retrying(int id, const FtpError &error, int milliseconds);
    /// What a listing gave; finished() follows.
    void listed(int id, const QVector<FtpEntry> &entries);
    /// The end of a job: FtpError::None when it succeeded.
    void finished(int id, const FtpError &error);
    /// No job is left in the queue.
    void allFinished();

private:
    Q_INVOKABLE void deliver();
    void showProgress();

    struct Private;
    std::unique_ptr<Private> d;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(FtpJobs::Options)
