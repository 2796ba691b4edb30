#pragma once

#include "recorder.h"
#include "scriptedserver.h"

#include <QFile>
#include <QTemporaryDir>

// A client of a scripted server, watched by a recorder, with a local file of its own.
struct Session
{
    explicit Session(const QString &script = {}, bool byteByByte = false, unsigned int seconds = 5,
                     unsigned int bufferSize = 4)
        : server(script, byteByByte)
        , client(nsSocket::CreateDefaultBlockingSocketInstance(), seconds, bufferSize)
        , local(folder.filePath("file").toStdString())
    {
        client.AttachObserver(&recorder);
    }
    bool login() { return client.Login({"127.0.0.1", server.port(), "joe", "secret"}); }
    void write(const QByteArray &bytes) const
    {
        QFile file(QString::fromStdString(local));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
    }
    QByteArray read() const
    {
        QFile file(QString::fromStdString(local));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
    }

    QTemporaryDir folder;
    ScriptedServer server;
    Recorder recorder;
    nsFTP::CFTPClient client;
    std::string local;
    std::vector<std::string> lines;
};

inline std::string text(const QStringList &words)
{
    return words.join(' ').toStdString();
}
