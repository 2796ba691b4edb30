#include "scriptedserver.h"

#include <QString>

#include <chrono>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const std::map<std::string, std::string> Behaviour = {
    {"greeting", "220 ready"},
    {"USER", "331 password"},
    {"PASS", "230 in"},
    {"CWD", "250 there"},
    {"PASV", "227 Entering Passive Mode ({pasv})"},
    {"REST", "350 go on"},
    {"RNFR", "350 to what"},
    {"SIZE", "213 {size}"},
    {"MDTM", "213 20240229120001"},
    {"PWD", "257 in step"},
    {"ABOR", "226 aborted"},
    {"QUIT", "221 bye|close"},
    {"RETR", "150 here|data|226 done"},
    {"LIST", "150 here|data|226 done"},
    {"NLST", "150 here|data|226 done"},
    {"STOR", "150 give|data|226 done"},
    {"APPE", "150 give|data|226 done"},
    {"STOU", "150 give|data|226 done"},
};

int listenOnLoopback(quint16 &port)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr *>(&address), length) != 0 ||
        ::listen(listener, 5) != 0)
        qFatal("nothing to listen on");
    ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length);
    port = ntohs(address.sin_port);
    return listener;
}

// Held while sockets are closed or shut: a number that is given back is another server's at once.
std::mutex closing;

void closeSocket(std::atomic<int> &socket)
{
    const std::lock_guard<std::mutex> guard(closing);
    const int old = socket.exchange(-1);
    if (old >= 0)
        ::close(old);
}

void replace(std::string &text, const std::string &what, const std::string &with)
{
    for (size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

} // namespace

ScriptedServer::ScriptedServer(const QString &script, bool byteByByte) : m_byteByByte(byteByByte)
{
    const QStringList entries = script.split(';', Qt::SkipEmptyParts);
    for (const QString &entry : entries)
        m_script[entry.section(':', 0, 0).trimmed().toStdString()].push_back(
            entry.section(':', 1).toStdString());
    m_listener = listenOnLoopback(m_port);
    m_thread = std::thread([this] { run(); });
}

ScriptedServer::~ScriptedServer()
{
    m_stop = true;
    {
        const std::lock_guard<std::mutex> guard(closing);
        for (const int socket : {m_listener, m_control.load(), m_passive.load(), m_data.load()})
            ::shutdown(socket, SHUT_RDWR);
    }
    m_thread.join();
    ::close(m_listener);
}

QStringList ScriptedServer::commands() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_commands;
}

void ScriptedServer::settle() const
{
    for (int i = 0; i < 200 && !m_listens; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

QByteArray ScriptedServer::stored() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_stored;
}

void ScriptedServer::run()
{
    while (!m_stop) {
        m_control = ::accept(m_listener, nullptr, nullptr);
        if (m_control >= 0)
            serve();
        closeSocket(m_data);
        closeSocket(m_passive);
        closeSocket(m_control);
    }
}

void ScriptedServer::serve()
{
    const int on = 1;
    ::setsockopt(m_control, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    m_received.clear();
    perform("greeting");
    std::string line;
    while (m_control >= 0 && readLine(line)) {
        {
            const std::lock_guard<std::mutex> guard(m_mutex);
            m_commands << QString::fromStdString(line);
        }
        const std::string verb = line.substr(0, line.find(' '));
        const std::string argument = line.substr(std::min(line.size(), verb.size() + 1));
        if (verb == "REST")
            m_offset = size_t(std::stoul(argument));
        if (verb == "PORT") {
            const QStringList numbers = QString::fromStdString(argument).split(',');
            m_active = quint16(numbers.value(4).toInt() * 256 + numbers.value(5).toInt());
        }
        perform(verb);
    }
}

void ScriptedServer::perform(const std::string &verb)
{
    const auto known = Behaviour.find(verb);
    std::string actions = known == Behaviour.end() ? "200 ok" : known->second;
    std::vector<std::string> &script = m_script[verb];
    if (!script.empty()) {
        actions = script.front();
        script.erase(script.begin());
    }
    for (size_t begin = 0; begin <= actions.size();) {
        const size_t end = std::min(actions.find('|', begin), actions.size());
        const std::string action = actions.substr(begin, end - begin);
        act(action.substr(std::min(action.find_first_not_of(' '), action.size())), verb);
        begin = end + 1;
    }
}

void ScriptedServer::act(const std::string &action, const std::string &verb)
{
    const std::string word = action.substr(0, action.find(' '));
    const std::string rest = action.substr(std::min(action.size(), word.size() + 1));
    if (word == "raw") {
        send(m_control, filledIn(rest));
    } else if (word == "wait") {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(rest)));
    } else if (word == "close") {
        closeSocket(m_control);
    } else if (word == "forget") {
        m_offset = 0;
    } else if (word == "data") {
        move(verb, m_offset, std::string::npos);
        m_offset = 0;
        closeSocket(m_data);
    } else if (word == "part") {
        move(verb, m_offset, size_t(std::stoi(rest)));
    } else if (word == "end") {
        openData();
        closeSocket(m_data);
    } else if (word == "cut") {
        openData();
        const linger reset = {1, 0};
        ::setsockopt(m_data, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        closeSocket(m_data);
    } else if (word == "flood" || word == "spam" || word == "drip") {
        std::string block = word == "flood" ? std::string(1U << 20, 'x') : filledIn(rest);
        while (word == "spam" && block.size() < 60000)
            block += block;
        const int socket = word == "flood" ? (openData(), m_data.load()) : m_control.load();
        while (!m_stop && ::send(socket, block.data(), block.size(), MSG_NOSIGNAL) > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(word == "drip" ? 200 : 0));
        closeSocket(m_data);
    } else if (word != "nothing") {
        send(m_control, filledIn(action) + "\r\n");
    }
}

bool ScriptedServer::readLine(std::string &line)
{
    for (;;) {
        const size_t end = m_received.find("\r\n");
        if (end != std::string::npos) {
            line = m_received.substr(0, end);
            m_received.erase(0, end + 2);
            return true;
        }
        char bytes[4096];
        m_listens = true;
        const ssize_t count = ::recv(m_control, bytes, sizeof bytes, 0);
        m_listens = false;
        if (count <= 0)
            return false;
        m_received.append(bytes, size_t(count));
    }
}

void ScriptedServer::send(int socket, const std::string &bytes, bool whole)
{
    const size_t step = m_byteByByte && !whole ? 1 : bytes.size();
    for (size_t at = 0; at < bytes.size();) {
        const ssize_t count =
            ::send(socket, bytes.data() + at, std::min(step, bytes.size() - at), MSG_NOSIGNAL);
        if (count <= 0)
            return;
        at += size_t(count);
        if (step == 1)
            std::this_thread::yield();
    }
}

std::string ScriptedServer::filledIn(std::string text)
{
    if (text.find("{p") != std::string::npos || text.find("{s") != std::string::npos) {
        quint16 port = 0;
        closeSocket(m_passive);
        m_active = 0;
        m_passive = listenOnLoopback(port);
        const std::string high = std::to_string(port >> 8);
        const std::string low = std::to_string(port & 255);
        replace(text, "{pasv}", "127,0,0,1," + high + "," + low);
        replace(text, "{spaced}", " 127 , 0, 0 ,1, " + high + " , " + low);
        replace(text, "{port}", high + "," + low);
        replace(text, "{size}", std::to_string(content.size()));
    }
    replace(text, "␀", std::string(1, '\0'));
    return text;
}

// In passive mode the client has connected; in active mode it listens.
bool ScriptedServer::openData()
{
    if (m_data >= 0)
        return true;
    if (m_active == 0) {
        m_data = ::accept(m_passive, nullptr, nullptr);
    } else {
        const int data = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr =
            connectFrom.isEmpty() ? htonl(INADDR_LOOPBACK) : ::inet_addr(connectFrom.constData());
        if (::bind(data, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
            qFatal("no address to connect from");
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(m_active);
        m_data = data;
        return ::connect(data, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    }
    return m_data >= 0;
}

void ScriptedServer::move(const std::string &verb, size_t offset, size_t length)
{
    if (!openData())
        return;
    if (verb == "RETR" || verb == "LIST" || verb == "NLST") {
        const std::string bytes = content.toStdString();
        send(m_data, bytes.substr(std::min(offset, bytes.size()), length), bytes.size() > 1000);
        return;
    }
    QByteArray all;
    char bytes[65536];
    ssize_t count = 1;
    while (size_t(all.size()) < length && count > 0) {
        count = ::recv(m_data, bytes, std::min(sizeof bytes, length - size_t(all.size())), 0);
        all.append(bytes, int(std::max<ssize_t>(count, 0)));
    }
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_stored = all;
}
