// SPDX-License-Identifier: BSD-3-Clause
// A small FTP client for the command line: shows what FormKit::FtpJobs asks of its user.
//
//     FTP_PASSWORD=… formkit-ftp --user joe list ftp.example.org pub
//     formkit-ftp --tls --ca our-ca.pem --resume get ftp.example.org pub/statement.pdf
//     formkit-ftp --active --firewall USER_WITH_NO_LOGON --firewall-host proxy:2121 put …

#include "progress.h"

#include <formkit/FtpTls/TlsSocket.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <csignal>
#include <cstdio>

using namespace nsFTP;

namespace {

enum ExitCode { Done = 0, WrongUsage = 1, NotLoggedOn = 2, Failed = 3, Interrupted = 4 };

volatile std::sig_atomic_t interruptAsked = 0;

struct Host
{
    std::string name;
    unsigned short port = 21;
};

// "host", "host:port", "[address]:port".
bool readHost(const QString &text, Host &host)
{
    const bool bracketed = text.startsWith('[');
    const QString name = bracketed ? text.mid(1).section(']', 0, 0) : text.section(':', 0, 0);
    const QString rest = bracketed ? text.section(']', 1) : text.mid(name.size());
    bool good = rest.isEmpty() || rest.startsWith(':');
    if (!rest.isEmpty() && good)
        host.port = rest.mid(1).toUShort(&good);
    host.name = name.toStdString();
    return good && host.port != 0 && !host.name.empty();
}

bool readFirewall(const QCommandLineParser &options, CLogonInfo &logon)
{
    if (!options.isSet("firewall"))
        return true;
    std::vector<CFirewallType> types;
    CFirewallType::GetAllTypes(types);
    for (const CFirewallType &type : types) {
        Host host;
        if (options.value("firewall").toStdString() != type.AsStorageString())
            continue;
        if (!readHost(options.value("firewall-host"), host))
            return false;
        logon.SetFirewall(host.name, options.value("firewall-user").toStdString(),
                          qgetenv("FTP_FIREWALL_PASSWORD").toStdString(), host.port, type);
        return true;
    }
    return false;
}

void addOptions(QCommandLineParser &options)
{
    options.setApplicationDescription(
        "Lists, gets, puts and deletes files over FTP.\n\n"
        "The password is read from FTP_PASSWORD, the firewall's from FTP_FIREWALL_PASSWORD.\n"
        "A file that is fetched gets its name when it is whole; before that \".part\" is added.\n\n"
        "Exit codes:\n"
        "  0  done\n"
        "  1  wrong usage\n"
        "  2  not logged on: unknown host, no connection, not secure, or logon refused\n"
        "  3  failed after the logon\n"
        "  4  interrupted (Ctrl-C)");
    options.addHelpOption();
    options.addOptions({
        {{"u", "user"}, "User name.", "name", ANONYMOUS_USER},
        {{"a", "active"}, "The server connects to this machine for data."},
        {{"r", "resume"}, "Go on where an earlier transfer ended."},
        {{"A", "ascii"}, "Transfer as text."},
        {{"v", "verbose"}, "Show commands and replies."},
        {"tls", "Protect all by TLS (AUTH TLS)."},
        {"implicit-tls", "The same for servers that begin with TLS, mostly on port 990."},
        {"ca", "Trust the authorities in this PEM file, not the system's.", "file"},
        {"6", "Connect by IPv6 only."},
        {"timeout", "Seconds for each wait.", "seconds", "30"},
        {"retries", "How often to try again after what may pass.", "number", "4"},
        {"firewall", "How the firewall logs on, for example PROXY_OPEN.", "type"},
        {"firewall-host", "The firewall.", "host[:port]"},
        {"firewall-user", "User name at the firewall.", "name"},
    });
    options.addPositionalArgument("command", "list, names, get, put or delete.");
    options.addPositionalArgument("host", "The server, as host or host:port.");
    options.addPositionalArgument(
        "file", "A remote path (list, names, get, delete) or a local one (put).", "[file");
    options.addPositionalArgument("target", "The name at the other side; the same unless given.",
                                  "[target]]");
}

bool readServer(const QCommandLineParser &options, FtpServer &server)
{
    Host host;
    host.port = options.isSet("implicit-tls") ? 990 : 21;
    bool goodTimeout = false;
    bool goodRetries = false;
    server.timeout = options.value("timeout").toUInt(&goodTimeout);
    server.retries = options.value("retries").toInt(&goodRetries);
    server.passive = !options.isSet("active");
    if (!readHost(options.positionalArguments().value(1), host) || !goodTimeout || !goodRetries)
        return false;
    server.logon = {host.name, host.port, options.value("user").toStdString(),
                    qgetenv("FTP_PASSWORD").toStdString()};
    return server.timeout > 0 && server.retries >= 0 && readFirewall(options, server.logon);
}

CFTPSecurity securityOf(const QCommandLineParser &options)
{
    CFTPSecurity security;
    if (options.isSet("implicit-tls"))
        security.mode = CFTPSecurity::Implicit;
    else if (!options.isSet("tls"))
        security.mode = CFTPSecurity::None;
    security.caFile = QFile::encodeName(options.value("ca")).toStdString();
    return security;
}

// A client for the jobs, watched when asked to.
std::unique_ptr<CFTPClient> makeClient(const QCommandLineParser &options,
                                       Conversation *conversation)
{
    using nsSocket::TAddressFamily;
    const TAddressFamily family = options.isSet("6") ? TAddressFamily::IPv6 : TAddressFamily::Any;
    auto client =
        std::make_unique<CFTPClient>(nsSocket::CreateTlsSocketInstance(securityOf(options), family),
                                     options.value("timeout").toUInt(), 256 * 1024);
    client->SetMachineListings(true);
    client->SetUtf8(true);
    if (options.isSet("verbose"))
        client->AttachObserver(conversation);
    return client;
}

QString targetOf(const QCommandLineParser &options)
{
    const QStringList words = options.positionalArguments();
    return words.value(3, QFileInfo(words.value(2)).fileName());
}

// False when the command or its arguments are none.
bool queueUp(FtpJobs &jobs, const QCommandLineParser &options)
{
    const QStringList words = options.positionalArguments();
    const QString command = words.value(0);
    const QString file = words.value(2);
    const QString target = targetOf(options);
    FtpJobs::Options flags = FtpJobs::KeepPart;
    flags.setFlag(FtpJobs::Resume, options.isSet("resume"));
    flags.setFlag(FtpJobs::Text, options.isSet("ascii"));
    if (command == "list")
        jobs.list(file.toUtf8());
    else if (command == "names")
        jobs.list(file.toUtf8(), FtpJobs::NamesOnly);
    else if (file.isEmpty() || target.isEmpty())
        return false;
    else if (command == "get")
        jobs.download(file.toUtf8(), target, flags);
    else if (command == "put")
        jobs.upload(file, target.toUtf8(), flags);
    else if (command == "delete")
        jobs.remove(file.toUtf8());
    return jobs.count() > 0;
}

void print(const QVector<FtpEntry> &entries, bool withDetails)
{
    for (const FtpEntry &entry : entries) {
        const QByteArray name = harmless(entry.name);
        if (withDetails)
            std::printf("%c %15lld  %16s  %s\n", entry.isFolder ? 'd' : '-',
                        static_cast<long long>(entry.size),
                        qPrintable(entry.modified.toString("yyyy-MM-dd HH:mm")), name.constData());
        else
            std::puts(name.constData());
    }
}

ExitCode exitCodeOf(const FtpError &error)
{
    switch (error.code) {
    case FtpError::None:
        return Done;
    case FtpError::Cancelled:
        return Interrupted;
    case FtpError::UnknownHost:
    case FtpError::NoConnection:
    case FtpError::NotLoggedOn:
    case FtpError::Insecure:
        return NotLoggedOn;
    default:
        return Failed;
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser options;
    addOptions(options);
    options.process(application);
    FtpServer server;
    if (!readServer(options, server))
        options.showHelp(WrongUsage);

    Conversation conversation;
    server.makeClient = [&] { return makeClient(options, &conversation); };
    FtpJobs jobs;
    jobs.setServer(server);
    Progress progress(jobs);
    QObject::connect(&jobs, &FtpJobs::listed, [&](int, const QVector<FtpEntry> &entries) {
        print(entries, options.positionalArguments().first() == "list");
    });
    QObject::connect(&jobs, &FtpJobs::finished, [&](int, const FtpError &error) {
        const QString part = targetOf(options) + ".part";
        if (error && QFileInfo::exists(part) && options.positionalArguments().first() == "get")
            progress.say(part + " has what arrived: --resume goes on with it.");
        application.exit(exitCodeOf(error));
    });
    std::signal(SIGINT, [](int) { interruptAsked = 1; });
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (interruptAsked != 0)
            jobs.cancelAll();
    });
    look.start(50);
    if (!queueUp(jobs, options))
        options.showHelp(WrongUsage);
    return application.exec();
}
