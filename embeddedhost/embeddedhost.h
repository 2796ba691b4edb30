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
/// - Use it on the GUI thread. What it returns as ICore may be used as the interfaces say. One
///   recursive lock serves all its tables.
/// - A load reads on a thread of its own, takes the lock, and replaces tables, directories and
///   sessions in one step. When anything goes wrong before, the former content stays.
/// - Rows that Records hold outlive the change. The host must outlive all forms and Records.
/// - Replace the file by renaming another one, or in a transaction of SQLite: a load then sees the
///   one content or the other. If a load notices that the file was overwritten while it was read,
///   it reads again, up to twice, and then fails.
/// - A million securities are a normal size, and ten million work, at some 230 bytes each with
/// their
///   texts; texts that occur often (base codes) are stored once. A reload needs room for the new
///   rows beside the old ones, and gives the memory of the old ones back to the system.
class EMBEDDEDHOST_EXPORT EmbeddedHost : public QObject, public ICore
{
    Q_OBJECT

public:
    explicit EmbeddedHost(QObject *parent = nullptr);
    /// Uninstalls itself if it is the installed core. Cancels a load and waits for its thread: some
    /// milliseconds, or up to a second while a writer locks the file, or while the rows of a large
    /// table are sorted, which cannot be interrupted.
    ~EmbeddedHost() override;

    /// Starts a load. It ends with one of the signals loaded(), failed() and cancelled(), always
    /// after this call has returned. A load that is under way is cancelled first; if load() is
    /// called several times meanwhile, only the file of the last call is loaded.
    void load(const QString &file);
    /// Loads file() again.
    void reload();
    /// Asks the load that is under way to end. Does nothing without one.
    void cancel();
    bool isLoading() const;

    /// Loads on the calling thread, for tools and tests; cancels a load that is under way. Emits
    /// loaded() or failed() before it returns.
    bool loadNow(const QString &file);

    /// The file that was last asked for; empty before the first load.
    QString file() const;
    /// The reason why the last load failed; empty if it did not.
    QString errorText() const;
    /// The number of rows in the tables, and of former rows that a Record still holds. When no form
    /// is open it is that of the tables alone.
    qint64 liveRows() const;

    /// Replaces the sessions that are open to trading until the next load, and has the decoder
    /// announce it.
    void setSessions(const QVector<SessionId> &sessions);
    /// Appends to the list of plug-ins, which begins with the decoder. The host does not own the
    /// plug-in. The entry of one that is destroyed becomes null.
    void addPlugin(QObject *plugin);
    EmbeddedDecoder *decoder();

    IDatabase *database() override;
    const StockDirectory *stockDirectory() const override;
    const BoardDirectory *boardDirectory() const override;
    const StepSource *stepSource() const override;
    QVector<SessionId> currentSessions() const override;
    QList<QObject *> plugins() const override;

Q_SIGNALS:
    /// How many rows of a table are read. Each table is reported when it is complete, and before
    /// that as often as the event loop allows. If the file changed meanwhile and is read again, the
    /// counts start over.
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
