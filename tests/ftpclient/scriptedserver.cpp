// SPDX-License-Identifier: BSD-3-Clause
#include "scriptedserver.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

// The server's program ends when nobody can read the pipe any more.
quint16 startServers()
{
    FILE *const output =
        ::popen("exec env -u LD_PRELOAD /usr/bin/python3 " DATA_FOLDER "/scriptedserver.py", "r");
    quint16 port = 0;
    if (!output || std::fscanf(output, "%hu", &port) != 1)
        qFatal("no scripted server");
    return port;
}

} // namespace

ScriptedServer::ScriptedServer(const QString &script, bool byteByByte, const QByteArray &content,
                               const QString &certificates)
{
    static const quint16 desk = startServers();
    connectToLoopback(m_desk, desk);
    const QJsonObject order = {{"script", script},
                               {"byte by byte", byteByByte},
                               {"certificates", certificates},
                               {"content", QString::fromLatin1(content)}};
    m_port = quint16(ask(QJsonDocument(order).toJson(QJsonDocument::Compact)).toInt());
}

QStringList ScriptedServer::commands() const
{
    return QJsonDocument::fromJson(ask({})).toVariant().toStringList();
}

QByteArray ScriptedServer::ask(const QByteArray &question) const
{
    const QByteArray line = question + '\n';
    m_desk.Write(line.constData(), line.size(), 60);
    QByteArray answer;
    char part[1000];
    for (int count = 1; count > 0 && !answer.endsWith('\n');) {
        count = m_desk.Receive(part, sizeof part, 60);
        answer.append(part, count);
    }
    return answer.trimmed();
}
