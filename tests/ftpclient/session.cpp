// SPDX-License-Identifier: BSD-3-Clause
#include "session.h"

using namespace nsFTP;

namespace {

using Words = const QStringList &;

std::string text(Words words)
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
long long transfer(Client &c, Words a)
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

// The result when nothing was given, as it has to be on failure.
template <typename Value, int (CFTPClient::*Ask)(const std::string &, Value &) const>
long long ask(Client &c, Words)
{
    Value value = -7;
    const int result = (c.client.*Ask)("f", value);
    return result == 0 ? value : value == -7 ? result : -99;
}

// "when <beginning of an entry>: <operation>", whose result goes into the log.
long long when(Client &c, Words a)
{
    const QStringList parts = a.mid(1).join(' ').split(": ");
    c.recorder.when(parts[0], [&c, operation = parts[1]] {
        c.recorder.log << "= " + QString::number(c.perform(operation));
    });
    return 0;
}

// On another thread, "elsewhere" at once, "later" after a while.
long long abortElsewhere(Client &c, Words a)
{
    const bool later = a[0] == "later";
    c.later = std::thread([&c, later] {
        std::this_thread::sleep_for(std::chrono::milliseconds(later ? 300 : 0));
        c.client.Abort();
    });
    if (!later)
        c.later.join();
    return 0;
}

long long raw(Client &c, Words a)
{
    const bool sent = c.client.SendCommand(commandOf(a[1]), {text(a.mid(2))}, c.reply);
    return sent ? CFTPClient::SimpleErrorCheck(c.reply) : -1;
}

long long type(Client &c, Words a)
{
    const auto format = valueOf<CTypeFormat::TTypeFormatEnum>("-NTC", a.value(2, "-").left(1));
    return c.client.RepresentationType({valueOf<CType::TTypeEnum>("AEIL", a[1]), format},
                                       a.value(2).toUInt());
}

// Without a firewall the host's port is the server's; with one it only shows in arguments.
long long logon(Client &c, Words a)
{
    CLogonInfo info(a[1] == "0" ? "127.0.0.1" : "h", a[1] == "0" ? c.port : quint16(a[2].toUInt()),
                    "u", "p", text(a.mid(3)) + "a");
    info.SetFirewall("127.0.0.1", "fu", "fp", c.port,
                     CFirewallType::TFirewallTypeEnum(a[1].toInt()));
    return good(c.client.Login(info));
}

long long run(Client &c, Words a)
{
    COutputStream stream("");
    return good(c.client.ExecuteDatachannelCommand(commandOf(a[1]), "f", CType::Image, true,
                                                   a[2].toUInt(), stream));
}

long long nanoseconds(Client &c, Words)
{
    long long seconds = 0;
    long value = -7;
    return c.client.FileModificationTime("f", seconds, value) == 0 ? value : -1;
}

long long status(Client &c, Words)
{
    CFTPFileStatus file;
    const int result = c.client.MachineStatus("f", file);
    return result == 0 ? file.size : result;
}

const QHash<QString, std::function<long long(Client &, Words)>> Operations = {
    {"abort", [](Client &c, Words) { return c.client.Abort(); }},
    {"connected", [](Client &c, Words) { return c.client.IsConnected(); }},
    {"elsewhere", abortElsewhere},
    {"entries", transfer},
    {"extended", [](Client &c, Words) { return c.client.SetExtendedAddresses(true), 0; }},
    {"get", transfer},
    {"help", [](Client &c, Words) { return c.client.Help(); }},
    {"later", abortElsewhere},
    {"line",
     [](Client &c, Words a) {
         const bool sent = c.client.SendRaw(text(a.mid(1)), c.reply);
         return sent ? CFTPClient::SimpleErrorCheck(c.reply) : -1;
     }},
    {"list", transfer},
    {"local", [](Client &c, Words a) { return c.write(text(a.mid(1)).c_str()), 0; }},
    {"login",
     [](Client &c, Words a) {
         return good(c.client.Login({text(a.mid(1, 1)), 1, text(a.mid(2, 1)), text(a.mid(3))}));
     }},
    {"logon", logon},
    {"machine", [](Client &c, Words) { return c.client.SetMachineListings(true), 0; }},
    {"mdtm", ask<long long, &CFTPClient::FileModificationTime>},
    {"names", transfer},
    {"nanoseconds", nanoseconds},
    {"noop", [](Client &c, Words) { return c.client.Noop(); }},
    {"onlypeer", [](Client &c, Words) { return c.client.SetAcceptOnlyControlPeer(true), 0; }},
    {"policy",
     [](Client &c, Words a) {
         using Policy = CFTPClient::TPassiveAddress;
         return c.client.SetPassiveAddressPolicy(valueOf<Policy>("ucr", a[1])), 0;
     }},
    {"put", transfer},
    {"quit", [](Client &c, Words) { return c.client.Logout(); }},
    {"raw", raw},
    {"rename",
     [](Client &c, Words a) { return c.client.Rename(text(a.mid(1, 1)), text(a.mid(2))); }},
    {"replace", [](Client &c, Words) { return c.client.SetResumeMode(false), 0; }},
    {"reply", [](Client &c, Words) { return good(c.client.GetResponse(c.reply)); }},
    {"resize",
     [](Client &c, Words a) { return good(QFile::resize(c.local.c_str(), a[1].toLongLong())); }},
    {"run", run},
    // Commands sent before the reply to an earlier one is read.
    {"send", [](Client &c, Words a) { return good(c.client.SendCommand(commandOf(a[1]), {})); }},
    {"size", ask<long, &CFTPClient::FileSize>},
    {"status", status},
    {"touch",
     [](Client &c, Words a) { return c.client.SetFileModificationTime("f", a[1].toLongLong()); }},
    {"type", type},
    {"utf8", [](Client &c, Words) { return c.client.SetUtf8(true), 0; }},
    {"when", when},
};

} // namespace

long long Client::perform(const QString &operations)
{
    long long result = 0;
    for (const QString &operation : operations.split(',')) {
        const QStringList words = operation.split(' ');
        if (!Operations.contains(words[0]))
            qFatal("no operation %s", qPrintable(operation));
        result = Operations[words[0]](*this, words);
    }
    return result;
}
