#include "session.h"

using namespace nsFTP;

namespace {

using Operation = std::function<long long(Client &, const QStringList &)>;

std::string text(const QStringList &words)
{
    return words.join(' ').replace("␀", QChar(0)).toStdString();
}

long long told(int result, long long value)
{
    return result == 0 ? value : result * 1000 + value;
}

long long good(bool result)
{
    return result ? 0 : -1;
}

CRepresentation typeOf(const QStringList &a)
{
    const CType type = CType::TTypeEnum(QString("AEIL").indexOf(a[0]));
    return {type, CTypeFormat::TTypeFormatEnum(QString(" NTC").indexOf(a.value(1, " ")) & 3)};
}

long long sizeOf(const Client &s)
{
    long size = -7;
    const int result = s.client.FileSize("f", size);
    return told(result, size);
}

long long timeOf(const Client &s)
{
    long long seconds = -7;
    const int result = s.client.FileModificationTime("f", seconds);
    return told(result, seconds);
}

long long get(const Client &s, const QStringList &a)
{
    const CRepresentation ascii(CType::ASCII, CTypeFormat::NonPrint);
    const std::string local = a.value(1).startsWith('/') ? a[1].toStdString() : s.local;
    return good(s.client.DownloadFile(text(a.mid(0, 1)), local,
                                      a.contains("ascii") ? ascii : CType::Image,
                                      !a.contains("active")));
}

long long abortGet(Client &s)
{
    s.recorder.afterBlock = [&] { s.client.Abort(); };
    const bool result = s.get("f");
    s.recorder.afterBlock = [] {};
    // The block in hand is kept, whatever its size.
    if (s.read().size() > 4 && s.read().size() <= 4096)
        s.write(s.read().left(4));
    return good(result);
}

long long run(const Client &s, const QStringList &a)
{
    COutputStream stream("");
    int command = 0;
    while (CCommand(CCommand::TCommandEnum(command)).AsString() != a[0].toStdString())
        ++command;
    return good(s.client.ExecuteDatachannelCommand(CCommand::TCommandEnum(command), "f",
                                                   CType::Image, true, a[1].toUInt(), stream));
}

long long setLocal(const Client &s, const QString &content)
{
    QFile file(QString::fromStdString(s.local));
    s.write(content == "4GiB" ? QByteArray() : content.toUtf8());
    return good(content == "4GiB" ? file.resize(1LL << 32) : content != "none" || file.remove());
}

long long login(Client &s, const QStringList &a)
{
    CLogonInfo logon(a[0].toStdString(), 21, a[1].toStdString(), a[2].toStdString());
    if (a.size() > 3)
        logon.SetFirewall("127.0.0.1", "u", "p", 21, CFirewallType::SiteHostName);
    return good(s.client.Login(logon));
}

const std::map<QString, Operation> Operations = {
    {"cwd", [](auto &s, auto &a) { return s.client.ChangeWorkingDirectory(text(a)); }},
    {"cdup", [](auto &s, auto &) { return s.client.ChangeToParentDirectory(); }},
    {"pwd", [](auto &s, auto &) { return s.client.PrintWorkingDirectory(); }},
    {"syst", [](auto &s, auto &) { return s.client.System(); }},
    {"noop", [](auto &s, auto &) { return s.client.Noop(); }},
    {"mkd", [](auto &s, auto &a) { return s.client.MakeDirectory(text(a)); }},
    {"rmd", [](auto &s, auto &a) { return s.client.RemoveDirectory(text(a)); }},
    {"dele", [](auto &s, auto &a) { return s.client.Delete(text(a)); }},
    {"site", [](auto &s, auto &a) { return s.client.SiteParameters(text(a)); }},
    {"help", [](auto &s, auto &a) { return s.client.Help(text(a)); }},
    {"stat", [](auto &s, auto &a) { return s.client.Status(text(a)); }},
    {"smnt", [](auto &s, auto &a) { return s.client.StructureMount(text(a)); }},
    {"rein", [](auto &s, auto &) { return s.client.Reinitialize(); }},
    {"abor", [](auto &s, auto &) { return s.client.Abort(); }},
    {"quit", [](auto &s, auto &) { return s.client.Logout(); }},
    {"stru F", [](auto &s, auto &) { return s.client.FileStructure(CStructure::File); }},
    {"stru", [](auto &s, auto &) { return s.client.FileStructure(CStructure::Record); }},
    {"mode S", [](auto &s, auto &) { return s.client.TransferMode(CTransferMode::Stream); }},
    {"mode", [](auto &s, auto &) { return s.client.TransferMode(CTransferMode::Block); }},
    {"port", [](auto &s, auto &) { return s.client.DataPort("192.168.0.5", 5001); }},
    {"rename", [](auto &s, auto &a) { return s.client.Rename(text(a.mid(0, 1)), text(a.mid(1))); }},
    {"move", [](auto &s, auto &) { return s.client.Move("a", "b"); }},
    {"allo", [](auto &s, auto &) { return s.client.Allocate(100); }},
    {"allo 80",
     [](auto &s, auto &) {
         const int size = 80;
         return s.client.Allocate(100, &size);
     }},
    {"type",
     [](auto &s, auto &a) { return s.client.RepresentationType(typeOf(a), a.value(1).toUInt()); }},
    {"size", [](auto &s, auto &) { return sizeOf(s); }},
    {"mdtm", [](auto &s, auto &) { return timeOf(s); }},
    {"login", login},
    {"list",
     [](auto &s, auto &a) {
         return good(s.client.List(text(a.mid(0, 1)), s.lines, !a.contains("active")));
     }},
    {"names", [](auto &s, auto &) { return good(s.client.NameList("", s.lines, true)); }},
    {"get", get},
    {"put", [](auto &s, auto &a) { return good(s.put(text(a))); }},
    {"put unique",
     [](auto &s, auto &) {
         return good(s.client.UploadFile(s.local, "f", true, CType::Image, false));
     }},
    {"abort", [](auto &s, auto &) { return abortGet(s); }},
    {"run", run},
    {"policy replace",
     [](auto &s, auto &) {
         s.client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress::UseControlHost);
         return 0;
     }},
    {"policy refuse",
     [](auto &s, auto &) {
         s.client.SetPassiveAddressPolicy(CFTPClient::TPassiveAddress::Refuse);
         return 0;
     }},
    {"replace", [](auto &s, auto &) { return s.client.SetResumeMode(false), 0; }},
    {"much", [](auto &s, auto &) { return s.write(QByteArray(20000000, 'x')), 0; }},
    {"local", [](auto &s, auto &a) { return setLocal(s, text(a).c_str()); }},
};

} // namespace

void Recorder::OnInternalError(const std::string &message, const std::string &source, int line)
{
    log << QString("! %1 (%2:%3)").arg(message.c_str(), source.c_str()).arg(line);
}

void Recorder::OnBytesReceived(const std::vector<char> & /*buffer*/, long count)
{
    log << QString("got %1").arg(count);
    afterBlock();
}

void Recorder::OnBytesSent(const std::vector<char> & /*buffer*/, long count)
{
    log << QString("sent %1").arg(count);
    afterBlock();
}

void Recorder::OnBeginSendingData(const std::string & /*localName*/, const std::string &remoteFile,
                                  long long localSize, long long offset)
{
    log << QString("upload %1 %2 from %3").arg(remoteFile.c_str()).arg(localSize).arg(offset);
}

void Recorder::OnSendCommand(const CCommand &command, const CArg &arguments)
{
    log << "> " + QString::fromStdString(command.AsString(arguments));
}

void Recorder::OnResponse(const CReply &reply)
{
    log << "< " + QString::fromStdString(reply.Value());
}

Client::Client(unsigned int seconds, unsigned int bufferSize)
    : client(nsSocket::CreateDefaultBlockingSocketInstance(), seconds, bufferSize)
    , local(folder.filePath("file").toStdString())
{
    client.AttachObserver(&recorder);
}

long long Client::perform(const QString &operations)
{
    long long result = 0;
    for (const QString &operation : operations.split(',')) {
        const auto whole = Operations.find(operation);
        const QStringList words = operation.split(' ');
        result = whole != Operations.end() ? whole->second(*this, {})
                                           : Operations.at(words[0])(*this, words.mid(1));
    }
    return result;
}

bool Client::get(const std::string &name, bool passive) const
{
    return client.DownloadFile(name, local, CType::Image, passive);
}

bool Client::put(const std::string &name, bool passive) const
{
    return client.UploadFile(local, name, false, CType::Image, passive);
}

bool Client::inStep() const
{
    CReply reply;
    return client.SendCommand(CCommand::PWD, {}, reply) && reply.Code().Value() == "257";
}

void Client::write(const QByteArray &bytes) const
{
    QFile file(QString::fromStdString(local));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
}

QByteArray Client::read() const
{
    QFile file(QString::fromStdString(local));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
}
