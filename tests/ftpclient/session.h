#pragma once

#include "scriptedserver.h"

#include <formkit/FtpClient/FTPClient.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <functional>

// Writes down what a client reports. The hook runs after each block.
class Recorder : public nsFTP::CFTPClient::CNotification
{
public:
    QStringList log;
    std::function<void()> afterBlock = [] {};

    // The end of the log, for a message.
    QString last() const { return log.mid(qMax(0, log.size() - 10)).join('\n') + '\n'; }
    QStringList errors() const { return log.filter(QRegularExpression("^!")); }

    void OnInternalError(const std::string &message, const std::string &source, int line) override;
    void OnBeginReceivingData() override { log << "begin"; }
    void OnBytesReceived(const std::vector<char> &buffer, long count) override;
    void OnEndReceivingData(long long total) override { log << QString("end %1").arg(total); }
    void OnBytesSent(const std::vector<char> &buffer, long count) override;
    void OnBeginSendingData(const std::string &localName, const std::string &remoteFile,
                            long long localSize, long long offset) override;
    void OnSendCommand(const nsFTP::CCommand &command, const nsFTP::CArg &arguments) override;
    void OnResponse(const nsFTP::CReply &reply) override;
};

// A client watched by a recorder, with a local file of its own.
struct Client
{
    explicit Client(unsigned int seconds, unsigned int bufferSize);
    // Runs operations parted by commas, "get active" for one; the last one's result: 0, 1 and -1
    // as commands give them, 0 and -1 for transfers, or a number that was asked for.
    long long perform(const QString &operations);
    bool get(const std::string &name, bool passive = true) const;
    bool put(const std::string &name, bool passive = true) const;
    // Whether a command reads its own reply.
    bool inStep() const;
    void write(const QByteArray &bytes) const;
    QByteArray read() const;

    QTemporaryDir folder;
    Recorder recorder;
    nsFTP::CFTPClient client;
    std::string local;
    std::vector<std::string> lines = {"kept"};
};

// The client of a scripted server.
struct Session : Client
{
    explicit Session(const QString &script = {}, bool byteByByte = false, unsigned int seconds = 10,
                     unsigned int bufferSize = 4)
        : Client(seconds, bufferSize), server(script, byteByByte)
    {
    }
    bool login() { return client.Login({"127.0.0.1", server.port(), "joe", "secret"}); }

    ScriptedServer server;
};
