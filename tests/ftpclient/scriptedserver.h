// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "loopback.h"

#include <QStringList>

/// One of the servers of scriptedserver.py, which tells what a script is and starts with the first.
class ScriptedServer
{
public:
    /// The content is what downloads and listings send.
    explicit ScriptedServer(const QString &script = {}, bool byteByByte = false,
                            const QByteArray &content = "0123456789",
                            const QString &certificates = {});

    quint16 port() const { return m_port; }
    /// The command lines that came so far, and after each upload "=" with its first bytes; told
    /// when the server has done all that it was told to, if that is soon.
    QStringList commands() const;

private:
    QByteArray ask(const QByteArray &question) const;

    nsSocket::CBlockingSocket m_desk;
    quint16 m_port;
};
