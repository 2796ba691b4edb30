// SPDX-License-Identifier: BSD-3-Clause
#include "session.h"

using namespace nsFTP;

namespace {

std::string text(const QStringList &words)
{
    return words.join(' ').replace("␀", QChar(0)).toStdString();
}

long long good(bool result)
{
    return result ? 0 : -1;
}

template <typename Value> Value valueOf(const char *letters, const QString &word)
{
    return Value(qMax(0, QString(letters).indexOf(word.left(1))));
}

CCommand commandOf(const QString &name)
{
    int command = 0;
    while (CCommand(CCommand::TCommandEnum(command)).AsString() != name.toStdString())
        ++command;
    return CCommand::TCommandEnum(command);
}

// "get <remote> [<local>] [ascii] [active]", likewise put, list and names.
long long transfer(Client &c, const QStringList &a)
{
    const CRepresentation ascii(CType::ASCII, CTypeFormat::NonPrint);
    const CRepresentation representation = a.contains("ascii") ? ascii : CType::Image;
    const bool passive = !a.contains("active");
    const std::string remote = text(a.mid(1, 1));
    const std::string local = a.value(2).startsWith('/') ? a[2].toStdString() : c.local;
    if (a[0] == "list")
        return good(c.client.List(remote, c.lines, passive));
    if (a[0] == "entries") {
        std::vector<std::shared_ptr<CFTPFileStatus>> entries;
        const bool listed = c.client.List(remote, entries, passive);
        c.lines.clear();
        for (const auto &entry : entries)
            c.lines.push_back(entry->name + " in " + entry->path + ": " + entry->line);
        return listed ? (long long)(entries.size()) : -1;
    }
    if (a[0] == "names")
        return good(c.client.NameList(remote, c.lines, passive));
    if (a[0] == "get")
        return good(c.client.DownloadFile(remote, local, representation, passive));
    return good(c.client.UploadFile(local, remote, a.contains("unique"), representation, passive));
}

// What changes the client or its file, or asks for nothing.
long long prepare(Client &c, const QStringList &a)
{
    if (a[0] == "local")
        c.write(text(a.mid(1)).c_str());
    else if (a[0] == "resize")
        return good(QFile::resize(QString::fromStdString(c.local), a[1].toLongLong()));
    else if (a[0] == "replace")
        c.client.SetResumeMode(false);
    else if (a[0] == "extended")
        c.client.SetExtendedAddresses(true);
    else if (a[0] == "utf8")
        c.client.SetUtf8(true);
    else if (a[0] == "machine")
        c.client.SetMachineListings(true);
    else if (a[0] == "onlypeer")
        c.client.SetAcceptOnlyControlPeer(true);
    else if (a[0] == "policy")
        c.client.SetPassiveAddressPolicy(valueOf<CFTPClient::TPassiveAddress>("ucr", a[1]));
    else
        qFatal("no operation %s", qPrintable(a.join(' ')));
    return 0;
}

long long performOne(Client &c, const QStringList &a)
{
    const CFTPClient &client = c.client;
    // "when <beginning of an entry>: <operation>", whose result goes into the log.
    if (a[0] == "when") {
        const QStringList parts = a.mid(1).join(' ').split(": ");
        c.recorder.when(parts[0], [&c, operation = parts[1].split(' ')] {
            c.recorder.log << "= " + QString::number(performOne(c, operation));
        });
        return 0;
    }
    if (a[0] == "abort")
        return client.Abort();
    if (a[0] == "elsewhere") {
        std::thread([&] { client.Abort(); }).join();
        return 0;
    }
    if (a[0] == "later") {
        c.later = std::thread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            client.Abort();
        });
        return 0;
    }
    if (a[0] == "connected")
        return client.IsConnected();
    if (a[0] == "help")
        return client.Help();
    const int number = a.value(2).toInt();
    CReply reply;
    if (a[0] == "raw") {
        const bool sent = client.SendCommand(commandOf(a[1]), {text(a.mid(2))}, reply);
        return sent ? CFTPClient::SimpleErrorCheck(reply) : -1;
    }
    // Commands sent before the reply to an earlier one is read.
    if (a[0] == "send")
        return good(client.SendCommand(commandOf(a[1]), {}));
    if (a[0] == "reply")
        return good(client.GetResponse(reply));
    if (a[0] == "noop")
        return client.Noop();
    if (a[0] == "line")
        return client.SendRaw(text(a.mid(1)), reply) ? CFTPClient::SimpleErrorCheck(reply) : -1;
    if (a[0] == "touch")
        return client.SetFileModificationTime("f", a[1].toLongLong());
    if (a[0] == "quit")
        return client.Logout();
    if (a[0] == "rename")
        return client.Rename(text(a.mid(1, 1)), text(a.mid(2)));
    if (a[0] == "type") {
        const auto format = valueOf<CTypeFormat::TTypeFormatEnum>("-NTC", a.value(2, "-").left(1));
        return client.RepresentationType({valueOf<CType::TTypeEnum>("AEIL", a[1]), format}, number);
    }
    if (a[0] == "nanoseconds") {
        long long seconds = 0;
        long nanoseconds = -7;
        return client.FileModificationTime("f", seconds, nanoseconds) == 0 ? nanoseconds : -1;
    }
    if (a[0] == "status") {
        CFTPFileStatus status;
        const int result = client.MachineStatus("f", status);
        return result == 0 ? status.size : result;
    }
    if (a[0] == "size" || a[0] == "mdtm") {
        // The result when nothing was given, as it has to be on failure.
        long size = -7;
        long long seconds = -7;
        const int result =
            a[0] == "size" ? client.FileSize("f", size) : client.FileModificationTime("f", seconds);
        const long long value = qMax<long long>(size, seconds);
        return result == 0 ? value : value == -7 ? result : -99;
    }
    if (a[0] == "login")
        return good(c.client.Login({text(a.mid(1, 1)), 1, text(a.mid(2, 1)), text(a.mid(3))}));
    if (a[0] == "logon") {
        // Without a firewall the host's port is the server's; with one it only shows in arguments.
        CLogonInfo logon(a[1] == "0" ? "127.0.0.1" : "h", a[1] == "0" ? c.port : quint16(number),
                         "u", "p", text(a.mid(3)) + "a");
        logon.SetFirewall("127.0.0.1", "fu", "fp", c.port,
                          CFirewallType::TFirewallTypeEnum(a[1].toInt()));
        return good(c.client.Login(logon));
    }
    if (a[0] == "run") {
        COutputStream stream("");
        return good(client.ExecuteDatachannelCommand(commandOf(a[1]), "f", CType::Image, true,
                                                     a[2].toUInt(), stream));
    }
    const bool moves = QStringList({"list", "entries", "names", "get", "put"}).contains(a[0]);
    return moves ? transfer(c, a) : prepare(c, a);
}

} // namespace

long long Client::perform(const QString &operations)
{
    long long result = 0;
    for (const QString &operation : operations.split(','))
        result = performOne(*this, operation.split(' '));
    return result;
}
