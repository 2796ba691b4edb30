// SPDX-License-Identifier: BSD-3-Clause
// A small FTP client for the command line: shows what FormKit::Ftp asks of its user.
//
//     FTP_PASSWORD=… formkit-ftp --user joe list ftp.example.org pub
//     formkit-ftp --resume get ftp.example.org pub/statement.pdf
//     formkit-ftp --active --firewall USER_WITH_NO_LOGON --firewall-host proxy:2121 put …
//
// Exit codes: 0 done, 1 wrong usage, 2 not logged on, 3 failed, 4 interrupted.

#include "progress.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QTimeZone>

#include <cstdio>

using namespace nsFTP;

namespace {

enum ExitCode { Done = 0, WrongUsage = 1, NotLoggedOn = 2, Failed = 3, Interrupted = 4 };

struct Host
{
    std::string name;
    unsigned short port = 21;
};

bool readHost(const QString &text, Host &host)
{
    bool good = true;
    host.name = text.section(':', 0, 0).toStdString();
    if (text.contains(':'))
        host.port = text.section(':', 1).toUShort(&good);
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
    options.setApplicationDescription("Lists, gets and puts files over FTP.\n\nThe password is "
                                      "read from FTP_PASSWORD, the firewall's from "
                                      "FTP_FIREWALL_PASSWORD.\nExit codes: 0 done, 1 wrong usage, "
                                      "2 not logged on, 3 failed, 4 interrupted.");
    options.addHelpOption();
    options.addOptions({
        {{"u", "user"}, "User name.", "name", ANONYMOUS_USER},
        {{"a", "active"}, "The server connects to this machine for data."},
        {{"r", "resume"}, "Go on where an earlier transfer ended."},
        {{"A", "ascii"}, "Transfer as text."},
        {{"v", "verbose"}, "Show commands and replies."},
        {"timeout", "Seconds for each wait.", "seconds", "30"},
        {"firewall", "How the firewall logs on, for example PROXY_OPEN.", "type"},
        {"firewall-host", "The firewall.", "host[:port]"},
        {"firewall-user", "User name at the firewall.", "name"},
    });
    options.addPositionalArgument("command", "list, names, get or put.");
    options.addPositionalArgument("host", "The server, as host or host:port.");
    options.addPositionalArgument("file", "A remote path (list, names, get) or a local one (put).",
                                  "[file");
    options.addPositionalArgument("target", "The name at the other side; the same unless given.",
                                  "[target]]");
}

bool list(const CFTPClient &client, const std::string &path, bool passive)
{
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    if (!client.List(path, entries, passive))
        return false;
    for (const auto &entry : entries) {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(entry->mtime, QTimeZone::utc());
        const bool dated = entry->mtimeType != CFTPFileStatus::timeUnknown;
        std::printf("%c %15lld  %16s  %s\n", entry->tryCwd ? 'd' : '-', entry->size,
                    dated ? qPrintable(time.toString("yyyy-MM-dd HH:mm")) : "",
                    entry->name.c_str());
    }
    return true;
}

bool names(const CFTPClient &client, const std::string &path, bool passive)
{
    std::vector<std::string> lines;
    if (!client.NameList(path, lines, passive))
        return false;
    for (const std::string &line : lines)
        std::puts(line.c_str());
    return true;
}

bool get(const CFTPClient &client, Progress &progress, const QStringList &words,
         const CRepresentation &type, bool passive)
{
    const std::string remote = words.value(2).toStdString();
    const QString local = words.value(3, QFileInfo(words.value(2)).fileName());
    long size = -1;
    // The type first: many servers tell no size in ASCII.
    client.RepresentationType(type);
    client.FileSize(remote, size);
    progress.expect(size, client.IsResumeModeEnabled() ? QFileInfo(local).size() : 0);
    return client.DownloadFile(remote, _tstring(local), type, passive);
}

bool put(const CFTPClient &client, const QStringList &words, const CRepresentation &type,
         bool passive)
{
    const QString local = words.value(2);
    const QString remote = words.value(3, QFileInfo(local).fileName());
    return client.UploadFile(_tstring(local), remote.toStdString(), false, type, passive);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    addOptions(options);
    options.process(application);
    const QStringList words = options.positionalArguments();
    const QString command = words.value(0);
    const bool moves = command == "get" || command == "put";
    Host host;
    const unsigned int timeout = options.value("timeout").toUInt();
    if (!(moves || command == "list" || command == "names") || !readHost(words.value(1), host) ||
        (moves && words.size() < 3) || timeout == 0)
        options.showHelp(WrongUsage);
    CLogonInfo logon(host.name, host.port, options.value("user").toStdString(),
                     qgetenv("FTP_PASSWORD").toStdString());
    if (!readFirewall(options, logon))
        options.showHelp(WrongUsage);

    CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance(), timeout, 256 * 1024);
    // No data to or from third hosts, and nothing appended unless asked for.
    client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress::UseControlHost);
    client.SetAcceptOnlyControlPeer(true);
    client.SetResumeMode(options.isSet("resume"));
    Progress progress(client, options.isSet("verbose"));
    if (!client.Login(logon))
        return NotLoggedOn;
    const bool passive = !options.isSet("active");
    const CRepresentation type = options.isSet("ascii") ? CType::ASCII : CType::Image;
    bool good = false;
    if (command == "list")
        good = list(client, words.value(2).toStdString(), passive);
    else if (command == "names")
        good = names(client, words.value(2).toStdString(), passive);
    else if (command == "get")
        good = get(client, progress, words, type, passive);
    else
        good = put(client, words, type, passive);
    progress.finish();
    if (client.IsConnected())
        client.Logout();
    if (progress.interrupted())
        return Interrupted;
    return good ? Done : Failed;
}
