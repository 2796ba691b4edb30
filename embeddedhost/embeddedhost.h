// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <embeddedhost/embeddeddecoder.h>
#include <hostapi/icore.h>

#include <memory>

/// A host whose reference data comes from a SQLite file (see ReferenceSchema for what the file
/// must hold). Empty until a load has succeeded.
///
///     EmbeddedHost host;
///     if (!host.loadNow("reference.sqlite"))
///         qWarning() << host.errorText();
///     ICore::install(&host);
///
/// Use it on the thread of the user interface; what it hands out as ICore may be used as the
/// contract says, and one recursive lock serves all its tables. A load reads on a thread of
/// its own and replaces tables, directories and sessions in one step, for which alone it takes
/// the lock; whatever goes wrong before, the former content stays. Replace the file by renaming
/// another one or in a transaction of SQLite: a load then sees the one or the other. A file that is
/// seen to be written over while it is read is read again, up to twice, before the load fails. Rows
/// that are held by Records outlive the change. The host destroys no form: it must outlive them,
/// and all Records.
///
/// A million securities is a normal size: some 230 bytes each with their texts, texts that
/// return often (base codes) kept once. A reload needs room for the new rows beside the old.
class EMBEDDEDHOST_EXPORT EmbeddedHost : public QObject, public ICore
{
    Q_OBJECT

public:
    explicit EmbeddedHost(QObject *parent = nullptr);
    /// Cancels a load and waits for its thread (milliseconds; up to a second when the file is
    /// locked by a writer or large and all but read); uninstalls itself when it is the installed
    /// core.
    ~EmbeddedHost() override;

    /// Starts a load, which ends with one of the signals loaded(), failed() and cancelled(),
    /// always after this call has returned. A load that is under way is cancelled first; calls
    /// that are made before it has ended start one load, of the last file.
    void load(const QString &file);
    /// Loads the file that was last asked for again.
    void reload();
    /// Asks the load that is under way to end; without one, does nothing.
    void cancel();
    bool isLoading() const;

    /// Loads on the calling thread, for tools and tests; cancels a load that is under way.
    /// Emits loaded() or failed() before it returns.
    bool loadNow(const QString &file);

    /// The file that was last asked for; empty before the first load.
    QString file() const;
    /// The reason why the last load failed; empty when it did not.
    QString errorText() const;
    /// Rows in the tables and rows that left them but are still held by a Record: when no form
    /// is open, the rows of the tables alone.
    qint64 liveRows() const;

    /// Replaces the sessions that are open to trading, as the next load will do in its turn,
    /// and lets the decoder announce it.
    void setSessions(const QVector<SessionId> &sessions);
    /// Appends to the list of plug-ins, which begins with the decoder. The host does not own
    /// the plug-in; when it is destroyed its entry becomes null.
    void addPlugin(QObject *plugin);
    EmbeddedDecoder *decoder();

    IDatabase *database() override;
    const StockDirectory *stockDirectory() const override;
    const BoardDirectory *boardDirectory() const override;
    const StepSource *stepSource() const override;
    QVector<SessionId> currentSessions() const override;
    QList<QObject *> plugins() const override;

Q_SIGNALS:
    /// Rows read of one table. Each table is reported at least when it is complete; between,
    /// as often as the event loop gets round to it. A file that is read again begins again.
    void progress(const QString &table, int rows, int total);
    /// The new content is in place: repopulate the forms. When other sessions are open now, the
    /// decoder has announced them just before.
    void loaded();
    /// The text names the file and, as far as they are known, table, column and row.
    void failed(const QString &error);
    void cancelled();

private:
    Q_INVOKABLE void deliver();

    struct Private;
    std::unique_ptr<Private> d;
};
