#include "formkit/FtpClient/FTPClient.h"

#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/FTPClient_p.h"

#include <QScopeGuard>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <limits>
#include <thread>

using nsSocket::CBlockingSocketException;
using nsSocket::IBlockingSocket;

namespace nsFTP {

static_assert(sizeof(long) == sizeof(long long), "sizes beyond 4 GiB travel in a long");

namespace {

constexpr char SourceName[] = "formkit/FtpClient/FTPClient";

constexpr size_t MaxReplyLines = 100000;
constexpr size_t MaxReplyBytes = size_t(8) << 20;
constexpr int MaxUnaskedReplies = 100;
constexpr int MaxPreliminaries = 10;

// The logon of each firewall type, in steps of three: what to send, and the step that follows a
// 2xx and a 3xx reply.
constexpr int LoggedOn = -2;
constexpr int Refused = -1;
constexpr int LongestLogon = 18;
constexpr int LogonTable[9][LongestLogon] = {
    {0, LoggedOn, 3, 1, LoggedOn, 6, 2, LoggedOn, Refused},
    {3, 6, 3, 4, 6, Refused, 5, Refused, 9, 0, LoggedOn, 12, 1, LoggedOn, 15, 2, LoggedOn, Refused},
    {3, 6, 3, 4, 6, Refused, 6, LoggedOn, 9, 1, LoggedOn, 12, 2, LoggedOn, Refused},
    {7, 3, 3, 0, LoggedOn, 6, 1, LoggedOn, 9, 2, LoggedOn, Refused},
    {3, 6, 3, 4, 6, Refused, 0, LoggedOn, 9, 1, LoggedOn, 12, 2, LoggedOn, Refused},
    {6, LoggedOn, 3, 1, LoggedOn, 6, 2, LoggedOn, Refused},
    {8, 6, 3, 4, 6, Refused, 0, LoggedOn, 9, 1, LoggedOn, 12, 2, LoggedOn, Refused},
    {9, Refused, 3, 1, LoggedOn, 6, 2, LoggedOn, Refused},
    {10, LoggedOn, 3, 11, LoggedOn, 6, 2, LoggedOn, Refused},
};

struct LogonCommand
{
    CCommand command;
    std::string argument;
};

LogonCommand logonCommand(int code, const CLogonInfo &logon, const std::string &remoteHost)
{
    const std::string &user = logon.UserName();
    switch (code) {
    case 0:
        return {CCommand::USER, user};
    case 1:
        return {CCommand::PASS, logon.Password()};
    case 2:
        return {CCommand::ACCT, logon.Account()};
    case 3:
        return {CCommand::USER, logon.FirewallUser()};
    case 4:
        return {CCommand::PASS, logon.FirewallPassword()};
    case 5:
        return {CCommand::SITE, remoteHost};
    case 6:
        return {CCommand::USER, user + "@" + remoteHost};
    case 7:
        return {CCommand::OPEN, remoteHost};
    case 8:
        return {CCommand::USER, logon.FirewallUser() + "@" + remoteHost};
    case 9:
        return {CCommand::USER, user + "@" + remoteHost + " " + logon.FirewallUser()};
    case 10:
        return {CCommand::USER, user + "@" + logon.FirewallUser() + "@" + remoteHost};
    default:
        return {CCommand::PASS, logon.Password() + "@" + logon.FirewallPassword()};
    }
}

bool hasLineBreakOrNul(const std::string &text)
{
    return text.find_first_of(std::string("\r\n\0", 3)) != std::string::npos;
}

bool timedOut(const CBlockingSocketException &exception)
{
    return exception.GetErrorMessage().rfind("Receive timeout", 0) == 0;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool startsWithThreeDigits(const std::string &text)
{
    return text.size() >= 3 && std::all_of(text.begin(), text.begin() + 3, isDigit);
}

// The decimal digits at the start of a line; -1 when there are none.
int leadingNumber(const std::string &line)
{
    int value = -1;
    for (size_t i = 0; i < 3 && i < line.size() && isDigit(line[i]); ++i)
        value = std::max(value, 0) * 10 + (line[i] - '0');
    return value;
}

bool opensMultiLine(const std::string &line)
{
    return line.size() >= 4 && line[3] == '-';
}

bool closesMultiLine(const std::string &line, const std::string &firstLine)
{
    return line.size() >= 4 && line[3] == ' ' && leadingNumber(line) == leadingNumber(firstLine);
}

// What follows the code on a reply's last line, without blanks and line ends around it.
std::string_view valueOf(const CReply &reply)
{
    std::string_view text = reply.Value();
    const size_t end = text.find_last_not_of(" \r\n");
    text = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
    const size_t lastLine = text.rfind('\n');
    text.remove_prefix(lastLine == std::string_view::npos ? 0 : lastLine + 1);
    text.remove_prefix(std::min<size_t>(text.size(), 4));
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

// YYYYMMDDhhmmss, perhaps with a fraction of a second.
bool readTime(std::string_view text, long long &seconds)
{
    long parts[6] = {};
    constexpr size_t lengths[6] = {4, 2, 2, 2, 2, 2};
    constexpr long highest[6] = {9999, 12, 31, 23, 59, 60};
    for (int i = 0; i < 6; ++i) {
        if (text.size() < lengths[i] ||
            !CFTPListParser::GetLong(text.data(), lengths[i], parts[i]) || parts[i] > highest[i])
            return false;
        text.remove_prefix(lengths[i]);
    }
    if ((!text.empty() && isDigit(text.front())) || parts[1] == 0 || parts[2] == 0)
        return false;
    seconds = CFTPListParser::ToTAI(parts[0], parts[1] - 1, parts[2]) + parts[3] * 3600 +
              parts[4] * 60 + parts[5];
    return true;
}

} // namespace

CFTPClient::CNotification::~CNotification()
{
    for (CFTPClient *client : m_Clients)
        client->d->observers.erase(this);
}

void CFTPClient::CNotification::OnInternalError(const std::string & /*message*/,
                                                const std::string & /*source*/, int /*line*/)
{
}

void CFTPClient::CNotification::OnBeginReceivingData() {}

void CFTPClient::CNotification::OnBytesReceived(const std::vector<char> & /*buffer*/,
                                                long /*count*/)
{
}

void CFTPClient::CNotification::OnEndReceivingData(long long /*total*/) {}

void CFTPClient::CNotification::OnBytesSent(const std::vector<char> & /*buffer*/, long /*count*/) {}

void CFTPClient::CNotification::OnBeginSendingData(const std::string & /*localName*/,
                                                   const std::string & /*remoteFile*/,
                                                   long long /*localSize*/, long long /*offset*/)
{
}

void CFTPClient::CNotification::OnSendCommand(const CCommand & /*command*/,
                                              const CArg & /*arguments*/)
{
}

void CFTPClient::CNotification::OnResponse(const CReply & /*reply*/) {}

int CFTPClient::Private::timeout() const
{
    return int(std::min<unsigned int>(receiveTimeout, INT_MAX));
}

void CFTPClient::Private::report(const std::string &message, ReportAt place) const
{
    tell([&](CNotification &o) { o.OnInternalError(message, SourceName, int(place)); });
}

void CFTPClient::Private::report(const CBlockingSocketException &exception, ReportAt place) const
{
    report(exception.GetErrorMessage(), place);
}

bool CFTPClient::Private::open(const std::string &host, unsigned short port)
{
    close();
    try {
        control->SetWaitLimit(timeout());
        control->Create(SOCK_STREAM);
        const sockaddr_in address = control->GetHostByName(host.c_str(), port);
        control->Connect(reinterpret_cast<const sockaddr *>(&address));
    } catch (const CBlockingSocketException &exception) {
        drop();
        report(exception, ReportAt::OpenControl);
        return false;
    }
    unanswered = 1; // the greeting
    return true;
}

void CFTPClient::Private::close()
{
    try {
        control->Close();
    } catch (const CBlockingSocketException &exception) {
        drop();
        report(exception, ReportAt::CloseControl);
    }
    drop();
}

// The end of a session, also of one whose replies can no longer be told apart.
void CFTPClient::Private::drop()
{
    control->Cleanup();
    representation.reset();
    forgetReplies();
}

void CFTPClient::Private::forgetReplies()
{
    lines.clear();
    partialLine.clear();
    partialReply.clear();
    partialReplyLines = 0;
    unanswered = 0;
    abandoned = 0;
    perhapsOneMore = false;
}

bool CFTPClient::Private::limitPassed(size_t lineCount, size_t bytes)
{
    if (lineCount <= MaxReplyLines && bytes <= MaxReplyBytes && Clock::now() < replyEnd)
        return false;
    drop();
    report("Reply limit exceeded.", ReportAt::ReplyLimit);
    return true;
}

// Receives reply text and cuts it into lines, which keep their line feeds. Text behind the last
// line feed waits for its rest.
bool CFTPClient::Private::takeText()
{
    const int room = int(buffer.size()) - 1;
    try {
        int count = 0;
        do {
            if (limitPassed(lines.size(), replyBytes))
                return false;
            const auto left = std::chrono::ceil<std::chrono::seconds>(replyEnd - Clock::now());
            count = control->Receive(buffer.data(), room,
                                     int(std::min<long long>(timeout(), left.count())));
            if (count <= 0) {
                // Lines that came whole before the end are still good.
                if (lines.empty())
                    drop();
                return !lines.empty();
            }
            if (responseDelay != 0)
                std::this_thread::sleep_for(std::chrono::seconds(responseDelay));
            replyBytes += size_t(count);
            size_t begin = 0;
            size_t end = partialLine.size();
            partialLine.append(buffer.data(), size_t(count));
            while ((end = partialLine.find('\n', end)) != std::string::npos) {
                lines.push_back(partialLine.substr(begin, ++end - begin));
                begin = end;
                if (limitPassed(lines.size(), replyBytes))
                    return false;
            }
            partialLine.erase(0, begin);
        } while (count == room && control->CheckReadability());
    } catch (const CBlockingSocketException &exception) {
        if (!lines.empty())
            return true;
        report(exception, ReportAt::Receive);
        if (timedOut(exception) && Clock::now() < replyEnd)
            giveUpReplies();
        else
            drop();
        return false;
    }
    return true;
}

bool CFTPClient::Private::takeLine(std::string &line)
{
    if (!connected())
        return false;
    while (lines.empty()) {
        if (!takeText())
            return false;
    }
    line = std::move(lines.front());
    lines.pop_front();
    if (line.size() >= 2 && line.compare(line.size() - 2, 2, lineEnd) == 0)
        line.resize(line.size() - 2);
    return true;
}

// By when a reply has to be complete that is waited for from now on.
CFTPClient::Private::Clock::time_point CFTPClient::Private::replyDeadline() const
{
    constexpr long long LongestLimit = 1000000000; // more overflows the clock
    const long long limit = 4LL * (static_cast<long long>(receiveTimeout) + responseDelay);
    return Clock::now() + std::chrono::seconds(std::clamp(limit, 1LL, LongestLimit));
}

// Receives one whole reply, whatever its code; false when none came. A reply that was begun
// before a time-out is read on.
bool CFTPClient::Private::takeReply(CReply &reply)
{
    replyBytes = 0;
    bool complete = false;
    while (!complete) {
        std::string line;
        if (!takeLine(line))
            return false;
        if (++partialReplyLines == 1) {
            partialReply = std::move(line);
            complete = !opensMultiLine(partialReply);
        } else {
            partialReply.append(lineEnd).append(line);
            complete = closesMultiLine(line, partialReply);
        }
        if (limitPassed(partialReplyLines, partialReply.size()))
            return false;
    }
    reply.Set(partialReply);
    partialReply.clear();
    partialReplyLines = 0;
    return true;
}

// Reads one whole reply, and closes the session when it is none.
bool CFTPClient::Private::readReply(CReply &reply, Clock::time_point latest)
{
    replyEnd = std::min(replyDeadline(), latest);
    try {
        if (!takeReply(reply))
            return false;
    } catch (...) {
        drop(); // what was received of the reply may be lost
        throw;
    }
    const bool isReply = !reply.Code().Value().empty() || startsWithThreeDigits(reply.Value());
    if (isReply && reply.Value().front() != '1') {
        unanswered -= std::min(unanswered, 1U);
        abandoned -= std::min(abandoned, 1U);
    }
    try {
        tell([&](CNotification &o) { o.OnResponse(reply); });
    } catch (...) {
        giveUpReplies();
        if (!isReply)
            drop();
        throw;
    }
    if (!isReply)
        drop();
    return isReply;
}

// Reads past a few replies of class 1; false when no other reply with a code came, in the time
// that one reply has.
bool CFTPClient::Private::readFinalReply(CReply &reply)
{
    const Clock::time_point latest = replyDeadline();
    bool isPreliminary = true;
    for (int i = 0; i <= MaxPreliminaries && isPreliminary; ++i) {
        if (!readReply(reply, latest) || reply.Code().Value().empty())
            return false;
        isPreliminary = reply.Code().IsPositivePreliminaryReply();
    }
    return !isPreliminary;
}

bool CFTPClient::Private::write(const CCommand &command, const CArg &arguments)
{
    tell([&](CNotification &o) { o.OnSendCommand(command, arguments); });
    try {
        const std::string line = command.AsString(arguments) + lineEnd;
        control->Write(line.data(), int(line.size()), timeout());
    } catch (const CBlockingSocketException &exception) {
        drop();
        report(exception, ReportAt::Send);
        return false;
    }
    ++unanswered;
    return true;
}

// Reads what earlier commands are still owed and what nobody asked for, all in the time that one
// reply has, so that the next reply belongs to the next command. False when that cannot be had:
// the session is then closed.
bool CFTPClient::Private::settle()
{
    const Clock::time_point latest = replyDeadline();
    for (int i = 0; abandoned > 0; ++i) {
        CReply reply;
        if (i == MaxUnaskedReplies || !readReply(reply, latest)) {
            drop();
            return false;
        }
    }
    if (perhapsOneMore && !settlePerhaps())
        return false;
    return unanswered > 0 || readUnasked(latest);
}

// Some servers answer an abort with one reply, others with two, the second of which may take its
// time. PWD tells: nothing is answered with 257 but that.
bool CFTPClient::Private::settlePerhaps()
{
    perhapsOneMore = false;
    auto outOfStep = qScopeGuard([this] { drop(); });
    CReply reply;
    if (!write(CCommand::PWD, {}) || !readFinalReply(reply))
        return false;
    // Another is the abort's reply, which PWD's follows, or that of a server that does not know
    // PWD.
    const bool isOwn = reply.Code().Value() == "257";
    for (int i = 0; i < 100 && !isOwn && !somethingWaits(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    outOfStep.dismiss();
    return true;
}

bool CFTPClient::Private::readUnasked(Clock::time_point latest)
{
    for (int i = 0; somethingWaits(); ++i) {
        CReply reply;
        if (i == MaxUnaskedReplies || !readReply(reply, latest)) {
            drop();
            return false;
        }
    }
    return connected();
}

bool CFTPClient::Private::somethingWaits() const
{
    try {
        return connected() &&
               (!lines.empty() || !partialLine.empty() || control->CheckReadability());
    } catch (const CBlockingSocketException &exception) {
        report(exception, ReportAt::Receive);
        return true; // the read that follows finds out
    }
}

bool CFTPClient::Private::accepted(const CCommand &command, const CArg &arguments) const
{
    if (std::none_of(arguments.begin(), arguments.end(), hasLineBreakOrNul))
        return true;
    report("Line break or NUL in an argument of " + command.AsString() + ".", ReportAt::Argument);
    return false;
}

bool CFTPClient::Private::accepted(const std::string &host) const
{
    if (!hasLineBreakOrNul(host))
        return true;
    report("Line break or NUL in a host name.", ReportAt::Argument);
    return false;
}

CFTPClient::CFTPClient(const std::shared_ptr<IBlockingSocket> &socket, unsigned int receiveTimeout,
                       unsigned int bufferSize, unsigned int responseDelay,
                       const std::string &initialDirectory)
    : d(std::make_unique<Private>(socket))
{
    FTP_ASSERT(socket.get(), "m_apSckControlConnection.get()");
    d->receiveTimeout = receiveTimeout;
    d->buffer.resize(std::clamp(bufferSize, 2U, 1U << 30));
    d->responseDelay = responseDelay;
    d->initialDirectory = initialDirectory;
}

CFTPClient::~CFTPClient()
{
    for (CNotification *observer : d->observers)
        observer->m_Clients.erase(this);
}

void CFTPClient::AttachObserver(CNotification *observer)
{
    FTP_ASSERT(observer, "pObserver");
    d->observers.insert(observer);
    try {
        observer->m_Clients.insert(this);
    } catch (...) {
        d->observers.erase(observer);
        throw;
    }
}

void CFTPClient::DetachObserver(CNotification *observer)
{
    FTP_ASSERT(observer, "pObserver");
    if (d->observers.erase(observer) > 0)
        observer->m_Clients.erase(this);
}

const CFTPClient::TObserverSet &CFTPClient::GetObservers() const
{
    return d->observers;
}

void CFTPClient::SetFileListParser(const std::shared_ptr<IFileListParser> &parser)
{
    d->parser = parser;
}

void CFTPClient::SetResumeMode(bool resume)
{
    d->resume = resume;
}

bool CFTPClient::IsResumeModeEnabled() const
{
    return d->resume;
}

void CFTPClient::SetPassiveAddressPolicy(TPassiveAddress policy)
{
    d->passiveAddress = policy;
}

void CFTPClient::SetAcceptOnlyControlPeer(bool only)
{
    d->acceptOnlyControlPeer = only;
}

bool CFTPClient::IsTransferringData() const
{
    return d->transferring;
}

bool CFTPClient::IsConnected() const
{
    return d->connected();
}

bool CFTPClient::Login(const CLogonInfo &logon)
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    d->logon = logon;
    if (size_t(logon.FirewallType()) >= std::size(LogonTable)) {
        d->report("Unknown firewall type.", ReportAt::Argument);
        return false;
    }
    const int *const table = LogonTable[logon.FirewallType()];
    std::string remoteHost = logon.HostName();
    if (logon.HostPort() != 21)
        remoteHost += ":" + std::to_string(logon.HostPort());
    const bool firewall = logon.FirewallType() != CFirewallType::NoFirewall;
    const std::string &host = firewall ? logon.FirewallHost() : logon.HostName();

    bool sendable = d->accepted(host) && d->accepted(CCommand::CWD, {d->initialDirectory});
    for (int step = 0; sendable && step < LongestLogon; step += 3) {
        const LogonCommand next = logonCommand(table[step], logon, remoteHost);
        sendable = d->accepted(next.command, {next.argument});
    }
    if (!sendable)
        return false;

    if (IsConnected())
        Logout();
    if (!d->open(host, firewall ? logon.FirewallPort() : logon.HostPort()))
        return false;
    CReply reply;
    if (!GetResponse(reply) || !reply.Code().IsPositiveCompletionReply()) {
        d->giveUpReplies();
        return false;
    }
    int step = 0;
    while (step >= 0) {
        const LogonCommand next = logonCommand(table[step], logon, remoteHost);
        if (!SendCommand(next.command, {next.argument}, reply))
            return false;
        if (!reply.Code().IsPositiveCompletionReply() &&
            !reply.Code().IsPositiveIntermediateReply()) {
            d->giveUpReplies();
            return false;
        }
        step = table[step + (reply.Code().Value()[0] - '0') - 1];
    }
    if (step == LoggedOn)
        return ChangeWorkingDirectory(d->initialDirectory) == 0;
    d->report("Logon failed.", ReportAt::Logon);
    return false;
}

int CFTPClient::Logout() const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    const int result = simple(CCommand::QUIT);
    d->close();
    return result;
}

bool CFTPClient::SendCommand(const CCommand &command, const CArg &arguments) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    if (!d->connected() || !d->accepted(command, arguments) || !d->settle())
        return false;
    if (command == CCommand::TYPE || command == CCommand::REIN)
        d->representation.reset();
    return d->write(command, arguments);
}

bool CFTPClient::SendCommand(const CCommand &command, const CArg &arguments, CReply &reply) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    return SendCommand(command, arguments) && GetResponse(reply);
}

bool CFTPClient::GetResponse(CReply &reply) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    if (!d->readReply(reply))
        return false;
    // One that announces another, by a code that is none, is not waited for.
    const bool hasCode = !reply.Code().Value().empty();
    if (!hasCode)
        d->giveUpReplies();
    return hasCode;
}

int CFTPClient::SimpleErrorCheck(const CReply &reply)
{
    if (reply.Code().IsPositiveCompletionReply())
        return 0;
    if (reply.Code().IsNegativeReply())
        return 1;
    FTP_ASSERT(reply.Code().IsPositiveReply(), "Reply.Code().IsPositiveReply()");
    return -1;
}

// One command and its reply. A server that announces another reply is not waited for here.
int CFTPClient::simple(const CCommand &command, const CArg &arguments, CReply *replyOut) const
{
    CReply reply;
    if (!SendCommand(command, arguments, reply))
        return -1;
    if (reply.Code().IsPositivePreliminaryReply())
        d->giveUpReplies();
    if (replyOut)
        *replyOut = reply;
    return SimpleErrorCheck(reply);
}

int CFTPClient::ChangeWorkingDirectory(const std::string &directory) const
{
    FTP_ASSERT(!directory.empty(), "!strDirectory.empty()");
    return simple(CCommand::CWD, {directory});
}

int CFTPClient::ChangeToParentDirectory() const
{
    return simple(CCommand::CDUP);
}

int CFTPClient::PrintWorkingDirectory() const
{
    return simple(CCommand::PWD);
}

int CFTPClient::System() const
{
    return simple(CCommand::SYST);
}

int CFTPClient::Noop() const
{
    return simple(CCommand::NOOP);
}

int CFTPClient::MakeDirectory(const std::string &directory) const
{
    return simple(CCommand::MKD, {directory});
}

int CFTPClient::RemoveDirectory(const std::string &directory) const
{
    return simple(CCommand::RMD, {directory});
}

int CFTPClient::Delete(const std::string &file) const
{
    return simple(CCommand::DELE, {file});
}

int CFTPClient::SiteParameters(const std::string &text) const
{
    return simple(CCommand::SITE, {text});
}

int CFTPClient::Help(const std::string &topic) const
{
    return simple(CCommand::HELP, {topic});
}

int CFTPClient::Status(const std::string &path) const
{
    return simple(CCommand::STAT, {path});
}

int CFTPClient::StructureMount(const std::string &path) const
{
    return simple(CCommand::SMNT, {path});
}

int CFTPClient::Reinitialize() const
{
    return simple(CCommand::REIN);
}

int CFTPClient::FileStructure(const CStructure &structure) const
{
    return simple(CCommand::STRU, {structure.AsString()});
}

int CFTPClient::TransferMode(const CTransferMode &mode) const
{
    return simple(CCommand::MODE, {mode.AsString()});
}

int CFTPClient::Allocate(int bytes, const int *recordSize) const
{
    CArg arguments = {std::to_string(bytes)};
    if (recordSize) {
        arguments.emplace_back("R");
        arguments.push_back(std::to_string(*recordSize));
    }
    return simple(CCommand::ALLO, arguments);
}

int CFTPClient::RepresentationType(const CRepresentation &representation, unsigned int size) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    if (d->representation && *d->representation == representation)
        return 0;
    CArg arguments = {representation.Type().AsString()};
    const bool text =
        representation.Type() == CType::ASCII || representation.Type() == CType::EBCDIC;
    if (text && representation.Format() != CTypeFormat::None)
        arguments.push_back(representation.Format().AsString());
    if (representation.Type() == CType::LocalByte)
        arguments.push_back(std::to_string(size == 0 ? 8 : size));
    const int result = simple(CCommand::TYPE, arguments);
    if (result == 0)
        d->representation = std::make_shared<CRepresentation>(representation);
    return result;
}

int CFTPClient::Rename(const std::string &from, const std::string &to) const
{
    const std::lock_guard<std::recursive_mutex> turn(d->exchange);
    CReply reply;
    if (!d->accepted(CCommand::RNTO, {to}))
        return -1;
    const int result = simple(CCommand::RNFR, {from}, &reply);
    if (reply.Code().IsPositiveIntermediateReply())
        return simple(CCommand::RNTO, {to});
    return result == 1 ? 1 : -1;
}

int CFTPClient::Move(const std::string &from, const std::string &to) const
{
    return Rename(from, to);
}

int CFTPClient::FileModificationTime(const std::string &path, long long &seconds) const
{
    CReply reply;
    const int result = simple(CCommand::MDTM, {path}, &reply);
    return result == 0 && !readTime(valueOf(reply), seconds) ? -1 : result;
}

int CFTPClient::FileSize(const std::string &path, long &size) const
{
    CReply reply;
    const int result = simple(CCommand::SIZE, {path}, &reply);
    const std::string_view value = valueOf(reply);
    return result == 0 && !CFTPListParser::GetLong(value.data(), value.size(), size) ? -1 : result;
}

} // namespace nsFTP
