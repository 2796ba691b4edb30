#pragma once

#include "loopback.h"

#include <QByteArray>
#include <QStringList>

#include <atomic>
#include <mutex>
#include <thread>

// An FTP server that does what a test tells it to, on loopback, one control connection after the
// other. Without a script it behaves. A script is a list of "VERB: action|action" parted by ';';
// each entry serves one command of that verb ("greeting" is one too), after which the verb behaves
// again. Actions:
//   <text>       sent with CR LF; {pasv}, {spaced}, {port}, {size} are filled in, ␀ is a NUL
//   raw <text>   sent as it stands
//   spam <n> <text>, drip <n> <text>  sent n times, at once or five times a second
//   wait <ms>, close (the control connection), nothing
//   data         moves the whole content, behind the offset of REST; forget drops that offset
//   part <n>     moves the next n bytes and leaves the data connection open
//   end, cut     closes the data connection, cleanly or with a reset
//   flood        sends data until the other side goes
//   from <address>  in active mode, connects from there from now on
// Its clients have to go before it does: it waits for the end of what they began.
class ScriptedServer
{
public:
    explicit ScriptedServer(const QString &script = {}, bool byteByByte = false);
    ~ScriptedServer();

    quint16 port() const { return m_port; }
    // The command lines that came so far, and behind each upload "=" with its bytes.
    QStringList commands() const;
    // Waits (a fifth of a second at most) until the server has done all that it was told to and
    // listens again: what it sent is then there to be read.
    void settle() const;

    // What downloads and listings send.
    QByteArray content = "0123456789";

private:
    using Socket = nsSocket::CBlockingSocket;

    void note(const QString &line);
    void serve();
    void obeyNext();
    void perform(const QString &verb);
    void act(const QString &action, const QString &verb);
    void send(const Socket &socket, const QByteArray &bytes) const;
    QByteArray filledIn(QString text);
    void openData();
    void endData(bool reset);
    void move(const QString &verb, int length);

    QStringList m_script;
    bool m_byteByByte;
    Socket m_listener;
    nsSocket::CHttpBlockingSocket m_control;
    Socket m_passive;
    Socket m_data;
    quint16 m_port;
    quint16 m_active = 0;
    QByteArray m_from = "127.0.0.1";
    int m_offset = 0;
    std::atomic<bool> m_listens{false};
    mutable std::mutex m_mutex;
    QStringList m_commands;
    std::thread m_thread;
};
