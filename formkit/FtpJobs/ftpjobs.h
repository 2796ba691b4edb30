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
/// - What may pass (FtpError::mayPass()) is tried again, after longer and longer waits; a transfer
///   goes on where it ended. When no logon succeeds in this way, or the server refuses one, all
///   jobs that wait for that server fail: the next would meet the same.
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
        /// Goes on where an earlier job ended, and leaves what arrived when it fails. A download
        /// goes on with the part beside the file unless the remote file has another size or is
        /// newer; an upload completes the remote file, however that came about.
        Resume = 1,
        /// A download leaves what arrived when it fails, for a later one with Resume.
        KeepPart = 2,
        /// Moves text: the server translates line ends. Such a transfer always begins anew.
        Text = 4,
        /// A listing of names alone, which some servers give when they give no other. Each entry
        /// may then be a file or a folder.
        NamesOnly = 8
    };
    Q_DECLARE_FLAGS(Options, Option)

    /// Where a job stands; Unknown after its end.
    enum State { Unknown, Waiting, Running, Paused };
    Q_ENUM(State)

    /// Starts no thread before the first job.
    explicit FtpJobs(QObject *parent = nullptr);
    ~FtpJobs() override;

    /// For the jobs that are queued from now on; others stay with their server.
    void setServer(const FtpServer &server);

    /// Remote names are bytes: QString::toUtf8() for nearly all servers. Give each job's id.
    ///
    /// A download replaces the local file only when all bytes have come. Before that they are in a
    /// file beside it, named as it with ".part" added, which is removed when the job fails. Its
    /// size has to be what the server told. Only a local device or pipe is written to at once.
    int download(const QByteArray &remote, const QString &local, Options options = {});
    /// Replaces the remote file.
    int upload(const QString &local, const QByteArray &remote, Options options = {});
    /// An empty folder is the one in which the session begins.
    int list(const QByteArray &folder = {}, Options options = {});
    /// Deletes a remote file.
    int remove(const QByteArray &remote);

    /// Where the job stands now, which its signals may not have told yet.
    State state(int id) const;
    /// The jobs that are not finished.
    int count() const;

public Q_SLOTS:
    /// Stops a job, within a tenth of a second; it stays in the queue. What arrived stays, too.
    void pause(int id);
    /// Lets a paused job go on.
    void resume(int id);
    /// Ends a job, within a tenth of a second. It may still have succeeded in that time.
    void cancel(int id);
    /// The same for all jobs of now.
    void pauseAll();
    void resumeAll();
    void cancelAll();

Q_SIGNALS:
    /// A session begins with a job; again after each pause and failure.
    void started(int id);
    /// About ten times a second while bytes are to move, and once when all have.
    void progress(int id, const FtpProgress &progress);
    /// An attempt failed; the next one follows after so many milliseconds or later.
    void retrying(int id, const FtpError &error, int milliseconds);
    /// What a listing gave; finished() follows.
    void listed(int id, const QVector<FtpEntry> &entries);
    /// The end of a job: FtpError::None when it succeeded.
    void finished(int id, const FtpError &error);
    /// The last job has ended.
    void allFinished();

private:
    Q_INVOKABLE void deliver();
    void showProgress();

    struct Private;
    std::unique_ptr<Private> d;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(FtpJobs::Options)
