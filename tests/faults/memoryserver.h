// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "support/inputsocket.h"

#include <formkit/FtpClient/FTPClient.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

/// What is being tried, for the message of a demand() that does not hold.
inline std::string demandPlace;

inline void demand(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s: %s\n", demandPlace.c_str(), what);
    std::abort();
}

/// An FTP server in memory, which answers each command at once: for faults on the client's side.
class MemoryServer
{
public:
    virtual ~MemoryServer() = default;

    /// What is sent to downloads and came with uploads.
    std::string content;
    std::string stored;
    /// The place of the next fault: the client's sockets cannot connect or receive data.
    enum Fault { NoFault, Connecting, Receiving } fault = NoFault;
    Input input;

    /// Takes a command of the client.
    virtual void hear(const char *data, int size)
    {
        const std::string line = std::string(data, size_t(size));
        const std::string verb = line.substr(0, line.find_first_of(" \r"));
        const std::string argument = line.substr(std::min(verb.size() + 1, line.size()));
        std::string reply = "200 " + line;
        for (const auto &[known, answer] : Answers) {
            if (verb == known)
                reply = answer + std::string("\r\n");
        }
        if (verb == "REST")
            m_offset = std::stoul(argument);
        else if (verb == "SIZE")
            reply =
                "213 " + std::to_string((argument[0] == 'u' ? stored : content).size()) + "\r\n";
        else if (verb == "STOR")
            stored.clear();
        else if (verb == "LIST")
            input.data = "-rw-r--r-- 1 ftp ftp 10 Mar  5  2024 a\r\ndrwxr-xr-x 2 ftp ftp 9 Mar 5 "
                         "09:00 b\r\n";
        else if (verb == "RETR")
            input.data = content.substr(std::exchange(m_offset, 0));
        input.control += reply;
    }

private:
    static constexpr char Transfer[] = "150 Here it comes\r\n226 Done";
    static constexpr std::pair<const char *, const char *> Answers[] = {
        {"USER", "331 Who"},    {"PASS", "230-Welcome\r\n230 In"},
        {"QUIT", "221 Bye"},    {"PASV", "227 Here (127,0,0,1,4,1)"},
        {"REST", "350 Go on"},  {"PWD", "257 Here"},
        {"LIST", Transfer},     {"RETR", Transfer},
        {"STOR", Transfer},     {"APPE", Transfer},
        {"ABOR", "226 Aborted"}};

    size_t m_offset = 0;
};

class MemorySocket : public InputSocket
{
public:
    /// Those that are open.
    static inline int handles = 0;

    MemorySocket(MemoryServer &server, bool control)
        : InputSocket(server.input, control), m_server(server), m_control(control)
    {
    }
    MemorySocket(const MemorySocket &) = delete;
    MemorySocket &operator=(const MemorySocket &) = delete;
    ~MemorySocket() override { MemorySocket::Cleanup(); }

    IBlockingSocket *CreateInstance() const override { return new MemorySocket(m_server, false); }
    void Create(int type) override
    {
        InputSocket::Create(type);
        ++handles;
    }
    void Cleanup() override
    {
        handles -= *this != nsSocket::INVALID_SOCKET;
        InputSocket::Cleanup();
    }
    void Connect(const sockaddr * /*psa*/) const override
    {
        failAt(MemoryServer::Connecting, "Connect");
        if (m_control)
            m_server.input = {"220 Ready\r\n", ""};
    }
    int Write(const char *data, int size, int /*seconds*/) const override
    {
        if (m_control)
            m_server.hear(data, size);
        else
            m_server.stored.append(data, size_t(size));
        return size;
    }
    int Receive(char *buffer, int size, int seconds) const override
    {
        if (!m_control)
            failAt(MemoryServer::Receiving, "Receive");
        if (!CheckReadability())
            throw nsSocket::CBlockingSocketException("Receive timeout");
        return InputSocket::Receive(buffer, size, seconds);
    }
    bool CheckReadability() const override { return !m_control || !m_server.input.control.empty(); }

private:
    void failAt(int place, const char *operation) const
    {
        errno = m_server.fault == place ? ECONNRESET : 0;
        if (errno != 0)
            throw nsSocket::CBlockingSocketException(operation);
    }

    MemoryServer &m_server;
    const bool m_control;
};

/// A session is closed, or a command reads its own reply.
inline void demandStep(const nsFTP::CFTPClient &client)
{
    nsFTP::CReply reply;
    const bool answered = client.SendCommand(nsFTP::CCommand::SITE, {"which"}, reply);
    demand(answered ? reply.Value() == "200 SITE which" : !client.IsConnected(), "out of step");
}
