#pragma once

#include <QByteArray>
#include <QStringList>

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// An FTP server that does what a test tells it to, on loopback, one control connection after the
// other. Without a script it behaves. A script is a list of "VERB: action | action" parted by
// ';'; each entry serves one command of that verb ("greeting" is one too), after which the verb
// behaves again. Actions:
//   <text>       sent with CR LF; {pasv}, {spaced}, {port}, {size} are filled in, ␀ is a NUL
//   raw <text>   sent as it stands
//   wait <ms>, close (the control connection), nothing
//   data         moves the whole content, behind the offset of REST; forget drops that offset
//   part <n>     moves n bytes and leaves the data connection open
//   end, cut     closes the data connection, cleanly or with a reset
//   flood        sends data without end; spam <text> and drip <text> send text without end, drip
//                five times a second
class ScriptedServer
{
public:
    explicit ScriptedServer(const QString &script = {}, bool byteByByte = false);
    ~ScriptedServer();

    quint16 port() const { return m_port; }
    // The command lines that came so far.
    QStringList commands() const;
    // Waits (a fifth of a second at most) until the server has done all that it was told to and
    // listens again: what it sent is then there to be read.
    void settle() const;
    // What the last upload brought.
    QByteArray stored() const;

    // What downloads and listings send.
    QByteArray content = "0123456789";
    // An address to connect from in active mode.
    QByteArray connectFrom;

private:
    void run();
    void serve();
    void perform(const std::string &verb);
    void act(const std::string &action, const std::string &verb);
    bool readLine(std::string &line);
    void send(int socket, const std::string &bytes, bool whole = false);
    std::string filledIn(std::string text);
    bool openData();
    void move(const std::string &verb, size_t offset, size_t length);

    std::map<std::string, std::vector<std::string>> m_script;
    bool m_byteByByte;
    int m_listener = -1;
    std::atomic<int> m_control{-1};
    std::atomic<int> m_passive{-1};
    std::atomic<int> m_data{-1};
    quint16 m_port = 0;
    quint16 m_active = 0;
    size_t m_offset = 0;
    std::string m_received;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_listens{false};
    mutable std::mutex m_mutex;
    QStringList m_commands;
    QByteArray m_stored;
    std::thread m_thread;
};
