#include "realserver.h"

#include <formkit/FtpClient/BlockingSocket.h>

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

#include <csignal>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace {

// joe's, whose password is "secret".
const QString Hash = "$6$formkit$X/3mZaNUB1rGyxJCl9bxnMMfrVvEGBjkuz2HmX1Bhe/"
                     "LeRIaCYQ9lCn43oUoE/PdIEB5Of1yH8By9nHDa6NzY1";

sockaddr_in loopback(quint16 port)
{
    return nsSocket::CBlockingSocket().GetHostByName("127.0.0.1", port);
}

bool answers(quint16 port)
{
    try {
        nsSocket::CBlockingSocket socket;
        socket.Create();
        sockaddr_in address = loopback(port);
        socket.Connect(reinterpret_cast<const sockaddr *>(&address));
    } catch (const nsSocket::CBlockingSocketException &) {
        return false;
    }
    return true;
}

quint16 freePort()
{
    nsSocket::CBlockingSocket socket;
    socket.Create();
    sockaddr_in address = loopback(0);
    socket.Bind(reinterpret_cast<sockaddr *>(&address));
    socket.GetSockAddr(reinterpret_cast<sockaddr *>(&address));
    return ntohs(address.sin_port);
}

void killTree(const QByteArray &process)
{
    QFile children("/proc/" + process + "/task/" + process + "/children");
    if (children.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> pids = children.readAll().simplified().split(' ');
        for (const QByteArray &child : pids) {
            if (!child.isEmpty())
                killTree(child);
        }
    }
    ::kill(process.toInt(), SIGKILL);
}

// What an unpacked program needs to find the libraries that were unpacked beside it.
QProcessEnvironment unpackedEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_LIBRARY_PATH",
                       SERVERS_FOLDER "/lib/" MULTIARCH ":" SERVERS_FOLDER "/usr/lib/" MULTIARCH);
    environment.insert("PYTHONPATH", SERVERS_FOLDER "/usr/lib/python3/dist-packages");
    // A sanitizer that a test is run with is no business of the server's.
    environment.remove("LD_PRELOAD");
    return environment;
}

} // namespace

RealServer::RealServer(const QString &kind) : m_kind(kind), m_port(freePort())
{
    QDir(m_folder.path()).mkdir("empty");
    QDir(m_folder.path()).mkdir("files");
    // pure-ftpd serves no files as root: whoever runs the tests, its user may write.
    const QFile::Permissions everything(0x7777);
    QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7755));
    QFile::setPermissions(path(""), everything);
    const QString ids = QString(":%1:%2:").arg(::getuid()).arg(::getgid());
    const QString virtualIds = ::getuid() == 0 ? QString(":1000:1000:") : ids;
    const QString bin = SERVERS_FOLDER "/usr/sbin/";
    QFile file(DATA_FOLDER "/servers/" + kind);
    const QByteArray settings = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (kind == "vsftpd") {
        write("conf", settings);
        QFile::setPermissions(m_folder.filePath("conf"), QFile::ReadOwner);
        start(bin + "vsftpd", {m_folder.filePath("conf")});
    } else if (kind == "proftpd") {
        write("conf", settings);
        write("passwd", "joe:" + Hash + ids + ":%files:/bin/sh\n");
        start(bin + "proftpd", {"-n", "-q", "-c", m_folder.filePath("conf")});
    } else if (kind == "pure-ftpd") {
        write("passwd", "joe:" + Hash + virtualIds + ":%files::::::::::::\n");
        QProcess users;
        users.setProcessEnvironment(unpackedEnvironment());
        users.start(SERVERS_FOLDER "/usr/bin/pure-pw",
                    {"mkdb", m_folder.filePath("pdb"), "-f", m_folder.filePath("passwd")});
        users.waitForFinished();
        start(bin + "pure-ftpd",
              {"-S", QString("127.0.0.1,%1").arg(m_port), "-l",
               "puredb:" + m_folder.filePath("pdb"), "-H", "-g", m_folder.filePath("pid")});
    } else if (kind == "pyftpdlib") {
        write("server.py", settings);
        start("/usr/bin/python3", {"-W", "ignore", m_folder.filePath("server.py")});
    } else {
        m_behind = std::make_unique<RealServer>("pyftpdlib");
        write("conf", settings);
        start(bin + "ftp-proxy", {"-n", "-d", "-f", m_folder.filePath("conf")});
    }
}

void RealServer::write(const QString &name, const QString &text) const
{
    QString filledIn = text;
    filledIn.replace("%port", QString::number(m_port))
        .replace("%files", m_folder.filePath("files"))
        .replace("%folder", m_folder.path())
        .replace("%user", ::getpwuid(::getuid())->pw_name)
        .replace("%group", ::getgrgid(::getgid())->gr_name);
    QFile file(m_folder.filePath(name));
    file.open(QIODevice::WriteOnly);
    file.write(filledIn.toUtf8());
    file.close();
    QFile::setPermissions(file.fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

void RealServer::start(const QString &program, const QStringList &arguments)
{
    m_process.setProcessEnvironment(unpackedEnvironment());
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(program, arguments, QIODevice::ReadOnly);
    QElapsedTimer timer;
    timer.start();
    while (!answers(m_port)) {
        if (timer.elapsed() > 20000 || m_process.waitForFinished(20)) {
            m_failure = program + ": " + m_process.errorString() + "\n" + m_process.readAll();
            return;
        }
    }
}

bool RealServer::needsRoot() const
{
    return m_kind == "pure-ftpd" && ::getuid() != 0;
}

nsFTP::CLogonInfo RealServer::logon() const
{
    if (!m_behind)
        return {"127.0.0.1", m_port, m_kind == "vsftpd" ? "anonymous" : "joe", "secret"};
    nsFTP::CLogonInfo logon = m_behind->logon();
    logon.SetFirewall("127.0.0.1", "", "", m_port, nsFTP::CFirewallType::UserWithNoLogon);
    return logon;
}

QString RealServer::path(const QString &file) const
{
    return m_behind ? m_behind->path(file) : m_folder.filePath("files/" + file);
}

void RealServer::put(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    file.write(content);
    file.setPermissions(QFile::Permissions(0x6666));
}

QByteArray RealServer::get(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
}

void RealServer::kill()
{
    if (m_process.state() != QProcess::NotRunning)
        killTree(QByteArray::number(m_process.processId()));
    m_process.waitForFinished();
}
