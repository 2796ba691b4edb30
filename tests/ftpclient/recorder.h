#pragma once

#include <formkit/FtpClient/FTPClient.h>

#include <QRegularExpression>
#include <QStringList>

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

    void OnInternalError(const std::string &message, const std::string &source, int line) override
    {
        log << QString("! %1 (%2:%3)").arg(message.c_str(), source.c_str()).arg(line);
    }
    void OnBeginReceivingData() override { log << "begin"; }
    void OnBytesReceived(const std::vector<char> & /*buffer*/, long count) override
    {
        log << QString("got %1").arg(count);
        afterBlock();
    }
    void OnEndReceivingData(long long total) override { log << QString("end %1").arg(total); }
    void OnBytesSent(const std::vector<char> & /*buffer*/, long count) override
    {
        log << QString("sent %1").arg(count);
        afterBlock();
    }
    void OnBeginSendingData(const std::string & /*localName*/, const std::string &remoteFile,
                            long long localSize, long long offset) override
    {
        log << QString("upload %1 %2 from %3").arg(remoteFile.c_str()).arg(localSize).arg(offset);
    }
    void OnSendCommand(const nsFTP::CCommand &command, const nsFTP::CArg &arguments) override
    {
        log << "> " + QString::fromStdString(command.AsString(arguments));
    }
    void OnResponse(const nsFTP::CReply &reply) override
    {
        log << "< " + QString::fromStdString(reply.Value());
    }
};
