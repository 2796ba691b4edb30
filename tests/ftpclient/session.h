// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "scriptedserver.h"

#include <formkit/FtpClient/FTPClient.h>

#include <QRegularExpression>
#include <QTemporaryDir>

#include <functional>
#include <thread>

/// Writes down what a client reports. The hook runs after each entry.
class Recorder : public nsFTP::CFTPClient::CNotification
{
public:
    QStringList log;
    std::function<void(const QString &entry)> hook;

    void note(const QString &entry)
    {
        log << entry;
        if (hook)
            hook(entry);
    }
    /// Runs something after each entry with this beginning.
    void when(const QString &beginning, const std::function<void()> &action)
    {
        hook = [=](const QString &entry) {
            if (entry.startsWith(beginning))
                action();
        };
    }

    /// The end of the log, for a message.
    QString last() const { return log.mid(qMax(0, log.size() - 10)).join('\n') + '\n'; }
    QStringList errors() const { return log.filter(QRegularExpression("^!")); }

    void OnInternalError(const std::string &message, const std::string &source, int line) override
    {
        note(QString("! %1 (%2:%3)").arg(message.c_str(), source.c_str()).arg(line));
    }
    void OnBeginReceivingData() override { note("begin"); }
    void OnBytesReceived(const std::vector<char> & /*buffer*/, long count) override
    {
        note(QString("got %1").arg(count));
    }
    void OnEndReceivingData(long long total) override { note(QString("end %1").arg(total)); }
    void OnBytesSent(const std::vector<char> & /*buffer*/, long count) override
    {
        note(QString("sent %1").arg(count));
    }
    void OnBeginSendingData(const std::string & /*localName*/, const std::string &remoteFile,
                            long long localSize, long long offset) override
    {
        note(QString("upload %1 %2 from %3").arg(remoteFile.c_str()).arg(localSize).arg(offset));
    }
    void OnSendCommand(const nsFTP::CCommand &command, const nsFTP::CArg &arguments) override
    {
        note("> " + QString::fromStdString(command.AsString(arguments)));
    }
    void OnSendExtension(const std::string &command, const nsFTP::CArg &arguments) override
    {
        note(
            QString("> %1 %2").arg(command.c_str(), arguments.empty() ? "" : arguments[0].c_str()));
    }
    void OnResponse(const nsFTP::CReply &reply) override
    {
        note("< " + QString::fromStdString(reply.Value()));
    }
};

/// A client watched by a recorder, with a local file of its own.
struct Client
{
    using Socket = std::shared_ptr<nsSocket::IBlockingSocket>;

    explicit Client(unsigned int seconds, unsigned int bufferSize,
                    const Socket &socket = nsSocket::CreateDefaultBlockingSocketInstance())
        : client(socket, seconds, bufferSize)
    {
        client.AttachObserver(&recorder);
    }
    ~Client()
    {
        if (later.joinable())
            later.join();
    }
    /// Runs operations separated by commas, such as "get f active". The last result counts: 0, 1
    /// and -1 as commands give them, 0 and -1 for transfers, or a number that was asked for.
    long long perform(const QString &operations);
    /// Whether commands read their own replies.
    bool inStep() const
    {
        long long time = 0;
        return client.PrintWorkingDirectory() == 0 && client.FileModificationTime("f", time) == 0;
    }
    void write(const QByteArray &bytes) const { writeFile(local.c_str(), bytes); }
    QByteArray read() const { return readFile(local.c_str()); }

    QTemporaryDir folder;
    std::string local = folder.filePath("file").toStdString();
    Recorder recorder;
    nsFTP::CFTPClient client;
    std::thread later;
    quint16 port = 0;
    std::vector<std::string> lines = {"kept"};
};

/// A client and its scripted server.
struct Session : Client
{
    explicit Session(const QString &script = {}, bool byteByByte = false, unsigned int seconds = 10,
                     unsigned int bufferSize = 4, const QByteArray &content = "0123456789")
        : Client(seconds, bufferSize), server(script, byteByByte, content)
    {
        port = server.port();
    }
    /// With another socket, and certificates for the server.
    Session(const QString &script, unsigned int seconds, const Socket &socket,
            const QString &certificates)
        : Client(seconds, 4096, socket), server(script, false, "0123456789", certificates)
    {
        port = server.port();
    }
    bool login() { return client.Login({"127.0.0.1", port, "joe", "secret"}); }

    ScriptedServer server;
};
