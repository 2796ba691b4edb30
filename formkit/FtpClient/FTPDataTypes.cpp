// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPDataTypes.h"

#include "formkit/FtpClient/FTPAssert_p.h"
#include "formkit/FtpClient/FTPTextOf_p.h"

namespace nsFTP {

CCommand::IExtendedInfo::~IExtendedInfo() = default;

CCommand::CExtendedInfo::CExtendedInfo(const std::string &serverString, const std::string &syntax,
                                       unsigned int parameters, unsigned int optionalParameters,
                                       TSpecificationEnum specification, TTypeEnum type)
    : m_strServerString(serverString)
    , m_strSyntax(syntax)
    , m_nParameters(parameters)
    , m_nOptional(optionalParameters)
    , m_enSpecification(specification)
    , m_enType(type)
{
}

void CCommand::CCmd2Info::Insert(TCommandEnum command, const std::string &parameters,
                                 unsigned int count, unsigned int optional, TTypeEnum type,
                                 TSpecificationEnum specification)
{
    static constexpr std::array<const char *, USER + 1> names = {
        "ABOR", "ACCT", "ALLO", "APPE", "CDUP", "CWD",  "DELE", "HELP", "LIST",
        "MDTM", "MKD",  "MODE", "NLST", "NOOP", "OPEN", "PASS", "PASV", "PORT",
        "PWD",  "QUIT", "REIN", "REST", "RETR", "RMD",  "RNFR", "RNTO", "SITE",
        "SIZE", "SMNT", "STAT", "STOR", "STOU", "STRU", "SYST", "TYPE", "USER"};
    const std::string name = names[command];
    std::string syntax = name;
    syntax += parameters;
    syntax += " <CRLF>";
    (*this)[command] =
        std::make_shared<CExtendedInfo>(name, syntax, count, optional, specification, type);
}

CCommand::CCmd2Info::CCmd2Info()
{
    const auto read = dataChannelRead;
    const auto write = dataChannelWrite;
    const auto none = noDataChannel;
    Insert(ABOR, "", 0, 0, none, rfc959);
    Insert(ACCT, " <SP> <account-information>", 1, 0, none, rfc959);
    // "R" counts as a parameter.
    Insert(ALLO, " <SP> <decimal-integer> [<SP> R <SP> <decimal-integer>]", 3, 2, none, rfc959);
    Insert(APPE, " <SP> <pathname>", 1, 0, write, rfc959);
    Insert(CDUP, "", 0, 0, none, rfc959);
    Insert(CWD, " <SP> <pathname>", 1, 0, none, rfc959);
    Insert(DELE, " <SP> <pathname>", 1, 0, none, rfc959);
    Insert(HELP, " [<SP> <string>]", 1, 1, none, rfc959);
    Insert(LIST, " [<SP> <pathname>]", 1, 1, read, rfc959);
    Insert(MDTM, " <SP> <pathname>", 1, 0, none, rfc3659);
    Insert(MKD, " <SP> <pathname>", 1, 0, none, rfc959);
    Insert(MODE, " <SP> <mode-code>", 1, 0, none, rfc959);
    Insert(NLST, " [<SP> <pathname>]", 1, 1, read, rfc959);
    Insert(NOOP, "", 0, 0, none, rfc959);
    Insert(OPEN, " <SP> <string>", 1, 0, none, noStandard);
    Insert(PASS, " <SP> <password>", 1, 0, none, rfc959);
    Insert(PASV, "", 0, 0, none, rfc959);
    Insert(PORT, " <SP> <host-port>", 1, 0, none, rfc959);
    Insert(PWD, "", 0, 0, none, rfc959);
    Insert(QUIT, "", 0, 0, none, rfc959);
    Insert(REIN, "", 0, 0, none, rfc959);
    Insert(REST, " <SP> <marker>", 1, 0, none, rfc959);
    Insert(RETR, " <SP> <pathname>", 1, 0, read, rfc959);
    Insert(RMD, " <SP> <pathname>", 1, 0, none, rfc959);
    Insert(RNFR, " <SP> <pathname>", 1, 0, none, rfc959);
    Insert(RNTO, " <SP> <pathname>", 1, 0, none, rfc959);
    Insert(SITE, " <SP> <string>", 1, 0, none, rfc959);
    Insert(SIZE, " <SP> <pathname>", 1, 0, none, rfc3659);
    Insert(SMNT, " <SP> <pathname>", 1, 0, none, rfc959);
    Insert(STAT, " [<SP> <pathname>]", 1, 1, none, rfc959);
    Insert(STOR, " <SP> <pathname>", 1, 0, write, rfc959);
    Insert(STOU, "", 0, 0, write, rfc959);
    Insert(STRU, " <SP> <structure-code>", 1, 0, none, rfc959);
    Insert(SYST, "", 0, 0, none, rfc959);
    Insert(TYPE, " <SP> <type-code>", 1, 0, none, rfc959);
    Insert(USER, " <SP> <username>", 1, 0, none, rfc959);
}

const CCommand::CCmd2Info &CCommand::CCmd2Info::GetInstance()
{
    static const CCmd2Info instance;
    return instance;
}

const CCommand::IExtendedInfo &CCommand::CCmd2Info::Get(TCommandEnum command)
{
    const auto it = GetInstance().find(command);
    FTP_ASSERT(it != GetInstance().end(), "it!=GetInstance().end()");
    return *it->second;
}

std::string CCommand::AsString() const
{
    return GetExtendedInfo().GetServerString();
}

std::string CCommand::AsString(const CArg &arguments) const
{
    std::string text = AsString();
    for (const std::string &argument : arguments) {
        if (!argument.empty())
            text.append(1, ' ').append(argument);
    }
    return text;
}

std::string CCommand::AsMaskedString(const CArg &arguments) const
{
    const bool secret = m_enCommand == PASS || m_enCommand == ACCT;
    return secret ? AsString({"****"}) : AsString(arguments);
}

bool CCommand::IsDatachannelReadCommand() const
{
    return GetExtendedInfo().GetType() == dataChannelRead;
}

bool CCommand::IsDatachannelWriteCommand() const
{
    return GetExtendedInfo().GetType() == dataChannelWrite;
}

bool CCommand::IsDatachannelCommand() const
{
    return IsDatachannelReadCommand() || IsDatachannelWriteCommand();
}

bool CReply::CCode::IsPositiveReply() const
{
    return IsPositivePreliminaryReply() || IsPositiveCompletionReply() ||
           IsPositiveIntermediateReply();
}

bool CReply::CCode::IsNegativeReply() const
{
    return IsTransientNegativeReply() || IsPermanentNegativeReply();
}

bool CReply::Set(const std::string &line)
{
    m_strValue = line;
    m_Code.m_strValue.clear();
    if (line.size() < 3 || line[0] < '1' || line[0] > '5' || line[1] < '0' || line[1] > '5')
        return false;
    m_Code.m_strValue = line.substr(0, 3);
    return true;
}

std::string CType::AsString() const
{
    return textOf<4>({"A", "E", "I", "L"}, m_enType);
}

std::string CTypeFormat::AsString() const
{
    return textOf<4>({nullptr, "N", "T", "C"}, m_enFormat);
}

std::string CStructure::AsString() const
{
    return textOf<3>({"F", "R", "P"}, m_enStructure);
}

std::string CTransferMode::AsString() const
{
    return textOf<3>({"S", "B", "C"}, m_enMode);
}

} // namespace nsFTP
