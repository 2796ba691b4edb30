// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/FtpClient/FTPClient.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QObject>
#include <QVector>

#include <atomic>

/// A file of a statements server.
struct Statement
{
    QByteArray name; ///< as the server gave it
    qint64 size = -1;
    QDateTime modified;
    bool knowsTime = false; ///< of the day
};
Q_DECLARE_METATYPE(QVector<Statement>)

/// How to reach a statements server.
struct StatementsServer
{
    QString host;
    quint16 port = 21;
    QString user;
    QString password;
    QString folder;
    bool passive = true;
    bool resume = false;
};
Q_DECLARE_METATYPE(StatementsServer)

/// Talks to a statements server, on a thread of its own. The slots block, and signals report the
/// results.
class StatementsWorker : public QObject, private nsFTP::CFTPClient::CNotification
{
    Q_OBJECT

public:
    StatementsWorker();
    ~StatementsWorker() override;

    /// Ends the download after the block that is under way. Any thread may call it.
    void cancel();

public Q_SLOTS:
    /// Logs on and lists the folder.
    void open(const StatementsServer &server);
    /// Fetches a listed file. It may replace a local file.
    void download(const Statement &statement, const QString &localFile);

Q_SIGNALS:
    void opened(const QVector<Statement> &statements);
    /// Bytes so far, bytes of the whole file (-1 if unknown), milliseconds since the start.
    void progress(qint64 received, qint64 total, qint64 elapsed);
    void downloaded(const QString &localFile);
    void failed(const QString &reason);

private:
    void OnInternalError(const std::string &message, const std::string &source, int line) override;
    void OnResponse(const nsFTP::CReply &reply) override;
    void OnBytesReceived(const std::vector<char> &buffer, long count) override;

    void fail();
    bool list(QVector<Statement> *statements);

    nsFTP::CFTPClient m_client;
    StatementsServer m_server;
    QString m_lastWord;
    QElapsedTimer m_clock;
    qint64 m_received = 0;
    qint64 m_total = -1;
    qint64 m_reportedAt = 0;
    std::atomic<bool> m_downloading{false};
};
