#include "scriptedserver.h"

#include <QRegularExpression>
#include <QThread>

#include <climits>
#include <functional>
#include <map>

#include <netinet/tcp.h>

using nsSocket::CBlockingSocketException;
using nsSocket::INVALID_SOCKET;
using nsSocket::SOCKET;

namespace {

const QStringList Behaviour =
    QString("greeting: 220 ready;USER: 331 password;PASS: 230 in;CWD: 250 there;REST: 350 go on;"
            "PASV: 227 Entering Passive Mode ({pasv});RNFR: 350 to what;SIZE: 213 {size};"
            "MDTM: 213 20240229120001;PWD: 257 in step;ABOR: 226 aborted;QUIT: 221 bye|close;"
            "RETR: 150 here|data|226 done;LIST: 150 here|data|226 done;NLST: 150 here|data|226 x;"
            "STOR: 150 give|data|226 done;APPE: 150 give|data|226 done;STOU: 150 give|data|226 x")
        .split(';');

// False when the other side has gone, or does nothing for a minute.
template <typename Step> bool attempt(const Step &step)
{
    try {
        step();
        return true;
    } catch (const CBlockingSocketException &) {
        return false;
    }
}

} // namespace

ScriptedServer::ScriptedServer(const QString &script, bool byteByByte)
    : m_script(script.split(QRegularExpression("; *")))
    , m_byteByByte(byteByByte)
    , m_port(listenOnLoopback(m_listener))
    , m_thread([this] { serve(); })
{
}

ScriptedServer::~ScriptedServer()
{
    ::shutdown(int(m_listener.operator SOCKET()), SHUT_RDWR);
    m_thread.join();
}

QStringList ScriptedServer::commands() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_commands;
}

void ScriptedServer::note(const QString &line)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_commands << line;
}

void ScriptedServer::settle() const
{
    for (int i = 0; i < 200 && !m_listens; ++i)
        QThread::msleep(1);
}

void ScriptedServer::serve()
{
    const int on = 1;
    sockaddr_in peer = {};
    while (attempt([&] { m_listener.Accept(m_control, generic(peer)); })) {
        ::setsockopt(int(m_control.operator SOCKET()), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        perform("greeting");
        while (m_control != INVALID_SOCKET && attempt([&] { obeyNext(); }))
            continue;
        for (Socket *socket : std::initializer_list<Socket *>{&m_control, &m_passive, &m_data})
            socket->Cleanup();
    }
}

void ScriptedServer::obeyNext()
{
    char bytes[1000];
    m_listens = true;
    const int length = m_control.ReadHttpHeaderLine(bytes, sizeof bytes, 60);
    m_listens = false;
    const auto line = QString::fromUtf8(bytes, length - 2);
    note(line);
    const QString verb = line.section(' ', 0, 0);
    const QStringList numbers = line.split(',');
    if (verb == "REST")
        m_offset = line.section(' ', 1).toInt();
    if (verb == "PORT")
        m_active = quint16(numbers[4].toInt() * 256 + numbers[5].toInt());
    perform(verb);
}

void ScriptedServer::perform(const QString &verb)
{
    const QStringList entries =
        (m_script + Behaviour).filter(QRegularExpression("^" + verb + ": "));
    const QString entry = entries.value(0, verb + ": 200 ok");
    m_script.removeOne(entry);
    const QStringList actions = entry.mid(verb.size() + 2).split('|');
    for (const QString &action : actions) {
        if (!attempt([&] { act(action, verb); }))
            m_data.Cleanup();
    }
}

void ScriptedServer::act(const QString &action, const QString &verb)
{
    const QString word = action.section(' ', 0, 0);
    const QString rest = action.section(' ', 1);
    const QString text = action.section(' ', 2);
    const int number = rest.section(' ', 0, 0).toInt();
    const std::map<QString, std::function<void()>> known = {
        {"raw", [&] { send(m_control, filledIn(rest)); }},
        {"spam", [&] { send(m_control, text.toUtf8().repeated(number)); }},
        {"drip",
         [&] {
             for (int i = 0; i < number; ++i, QThread::msleep(200))
                 send(m_control, text.toUtf8());
         }},
        {"wait", [&] { QThread::msleep(number); }},
        {"nothing", [] {}},
        {"close", [&] { m_control.Close(); }},
        {"forget", [&] { m_offset = 0; }},
        {"from", [&] { m_from = rest.toLatin1(); }},
        {"part", [&] { move(verb, number); }},
        {"data",
         [&] {
             move(verb, INT_MAX / 2);
             m_offset = 0;
             endData(false);
         }},
        {"end", [&] { endData(false); }},
        {"cut", [&] { endData(true); }},
        {"flood",
         [&] {
             openData();
             for (;;)
                 send(m_data, QByteArray(1U << 20, 'x'));
         }},
    };
    const auto found = known.find(word);
    if (found != known.end())
        found->second();
    else
        send(m_control, filledIn(action) + "\r\n");
}

void ScriptedServer::send(const Socket &socket, const QByteArray &bytes) const
{
    const int step = m_byteByByte && bytes.size() <= 1000 ? 1 : bytes.size();
    for (int at = 0; at < bytes.size(); at += step)
        socket.Write(bytes.constData() + at, step, 60);
}

QByteArray ScriptedServer::filledIn(QString text)
{
    if (text.contains('{')) {
        const quint16 port = listenOnLoopback(m_passive);
        m_active = 0;
        const QString numbers = QString("%1,%2").arg(port >> 8).arg(port & 255);
        text.replace("{port}", numbers)
            .replace("{pasv}", "127,0,0,1," + numbers)
            .replace("{spaced}", " 127 , 0, 0 ,1, " + QString(numbers).replace(',', " , "))
            .replace("{size}", QString::number(content.size()));
    }
    return text.replace("␀", QChar(0)).toUtf8();
}

// In passive mode the client has connected; in active mode it listens.
void ScriptedServer::openData()
{
    if (m_data != INVALID_SOCKET)
        return;
    sockaddr_in peer = {};
    if (m_active == 0)
        m_passive.Accept(m_data, generic(peer));
    else
        connectToLoopback(m_data, m_active, m_from);
}

void ScriptedServer::endData(bool reset)
{
    openData();
    const linger option = {reset, 0};
    ::setsockopt(int(m_data.operator SOCKET()), SOL_SOCKET, SO_LINGER, &option, sizeof option);
    m_data.Close();
}

void ScriptedServer::move(const QString &verb, int length)
{
    openData();
    if (verb == "RETR" || verb == "LIST" || verb == "NLST") {
        send(m_data, content.mid(m_offset, length));
        m_offset += length;
        return;
    }
    std::vector<char> part(65536);
    QByteArray all;
    int count = 1;
    while (count > 0 && all.size() < length) {
        count = m_data.Receive(part.data(), std::min(65536, length - all.size()), 60);
        all.append(part.data(), count);
    }
    note("=" + all.left(99));
}
