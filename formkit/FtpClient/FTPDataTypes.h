// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/FTPLogonInfo.h"
#include "formkit/FtpClient/formkitftp_export.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

/// The vocabulary of FTP as plain values: commands and the facts about them, arguments, replies,
/// the parameters of TYPE, STRU and MODE, firewall and logon data.
namespace nsFTP {

/// The arguments of a command, in order.
class CArg : public std::vector<std::string>
{
public:
    using std::vector<std::string>::vector;
};

/// One command of the protocol.
class FORMKITFTP_EXPORT CCommand
{
public:
    /// The commands by their names on the line.
    enum TCommandEnum : int {
        ABOR,
        ACCT,
        ALLO,
        APPE,
        CDUP,
        CWD,
        DELE,
        HELP,
        LIST,
        MDTM,
        MKD,
        MODE,
        NLST,
        NOOP,
        OPEN,
        PASS,
        PASV,
        PORT,
        PWD,
        QUIT,
        REIN,
        REST,
        RETR,
        RMD,
        RNFR,
        RNTO,
        SITE,
        SIZE,
        SMNT,
        STAT,
        STOR,
        STOU,
        STRU,
        SYST,
        TYPE,
        USER
    };

    /// How a command uses a data connection: the server sends, the client sends, none.
    enum TTypeEnum : int { dataChannelRead = 0, dataChannelWrite = 1, noDataChannel = 2 };

    /// Where a command is defined.
    enum TSpecificationEnum : int { noStandard = 0, rfc959 = 1, rfc3659 = 2 };

    /// The facts about one command.
    class FORMKITFTP_EXPORT IExtendedInfo
    {
    public:
        virtual ~IExtendedInfo();
        /// What goes over the line: "RETR".
        virtual const std::string &GetServerString() const = 0;
        /// The syntax in the notation of RFC 959: "RETR <SP> <pathname> <CRLF>".
        virtual const std::string &GetCompleteServerStringSyntax() const = 0;
        virtual unsigned int GetNumberOfParameters() const = 0;
        /// How many of the parameters may be left out.
        virtual unsigned int GetNumberOfOptionalParameters() const = 0;
        virtual TSpecificationEnum GetSpecification() const = 0;
        virtual TTypeEnum GetType() const = 0;
    };

    /// Holds the facts as the table of all commands states them.
    class FORMKITFTP_EXPORT CExtendedInfo : public IExtendedInfo
    {
    public:
        /// In the order of the questions above.
        CExtendedInfo(const std::string &serverString, const std::string &syntax,
                      unsigned int parameters, unsigned int optionalParameters,
                      TSpecificationEnum specification, TTypeEnum type);
        const std::string &GetServerString() const override { return m_strServerString; }
        const std::string &GetCompleteServerStringSyntax() const override { return m_strSyntax; }
        unsigned int GetNumberOfParameters() const override { return m_nParameters; }
        unsigned int GetNumberOfOptionalParameters() const override { return m_nOptional; }
        TSpecificationEnum GetSpecification() const override { return m_enSpecification; }
        TTypeEnum GetType() const override { return m_enType; }

    private:
        std::string m_strServerString;
        std::string m_strSyntax;
        unsigned int m_nParameters;
        unsigned int m_nOptional;
        TSpecificationEnum m_enSpecification;
        TTypeEnum m_enType;
    };

    /// The table of all commands, built on first use.
    class FORMKITFTP_EXPORT CCmd2Info
        : public std::map<TCommandEnum, std::shared_ptr<CExtendedInfo>>
    {
    public:
        /// A value outside the enumeration is a programming error.
        static const IExtendedInfo &Get(TCommandEnum command);

    private:
        CCmd2Info();
        static const CCmd2Info &GetInstance();
        void Insert(TCommandEnum command, const std::string &parameters, unsigned int count,
                    unsigned int optional, TTypeEnum type, TSpecificationEnum specification);
    };

    /// Turns into its value and back by itself.
    CCommand(TCommandEnum command) : m_enCommand(command) {}
    operator TCommandEnum() const { return m_enCommand; }

    /// The facts about this command.
    const IExtendedInfo &GetExtendedInfo() const { return CCmd2Info::Get(m_enCommand); }
    /// The command alone: "RETR".
    std::string AsString() const;
    /// The command and each argument that is not empty, with single blanks between them and no line
    /// end, as it is sent: passwords are readable.
    std::string AsString(const CArg &arguments) const;
    /// The same for logs: the arguments of PASS and ACCT are shown as "****".
    std::string AsMaskedString(const CArg &arguments) const;

    /// Whether a data connection is used, in this direction or in either.
    bool IsDatachannelReadCommand() const;
    bool IsDatachannelWriteCommand() const;
    bool IsDatachannelCommand() const;

private:
    TCommandEnum m_enCommand;
};

/// A server's reply: its text (lines joined by CR LF, the code included, any byte a server may
/// send) and its code.
class FORMKITFTP_EXPORT CReply
{
public:
    /// The three characters of a reply's code. All questions are answered false when there is
    /// no code.
    class FORMKITFTP_EXPORT CCode
    {
    public:
        /// The three characters; empty for none.
        const std::string &Value() const { return m_strValue; }
        /// The class of the reply: its first digit, from 1 to 5.
        bool IsPositivePreliminaryReply() const { return IsClass('1'); }
        bool IsPositiveCompletionReply() const { return IsClass('2'); }
        bool IsPositiveIntermediateReply() const { return IsClass('3'); }
        bool IsTransientNegativeReply() const { return IsClass('4'); }
        bool IsPermanentNegativeReply() const { return IsClass('5'); }
        /// One of the three positive classes.
        bool IsPositiveReply() const;
        bool IsNegativeReply() const;

    private:
        friend class CReply;
        bool IsClass(char digit) const { return !m_strValue.empty() && m_strValue[0] == digit; }
        std::string m_strValue;
    };

    /// Stores the text and takes the code from its first three characters. False, and no code,
    /// unless the first is a digit from 1 to 5 and the second one from 0 to 5; the third may be
    /// any character.
    bool Set(const std::string &line);
    const std::string &Value() const { return m_strValue; }
    const CCode &Code() const { return m_Code; }

private:
    std::string m_strValue;
    CCode m_Code;
};

/// The representation type of TYPE. A value outside the enumeration is a programming error in
/// each AsString() of this file.
class FORMKITFTP_EXPORT CType
{
public:
    /// The values of RFC 959.
    enum TTypeEnum : int { ASCII = 0, EBCDIC = 1, Image = 2, LocalByte = 3 };
    /// Turns into its value and back by itself.
    CType(TTypeEnum type) : m_enType(type) {}
    operator TTypeEnum() const { return m_enType; }
    /// "A", "E", "I", "L".
    std::string AsString() const;

private:
    TTypeEnum m_enType;
};

/// The format control that may follow the types A and E.
class FORMKITFTP_EXPORT CTypeFormat
{
public:
    /// The values of RFC 959, and none.
    enum TTypeFormatEnum : int { None = 0, NonPrint = 1, TelnetFormat = 2, CarriageControl = 3 };
    /// Turns into its value and back by itself.
    CTypeFormat(TTypeFormatEnum format) : m_enFormat(format) {}
    operator TTypeFormatEnum() const { return m_enFormat; }
    /// "N", "T", "C". None has no text: asking for it is a programming error.
    std::string AsString() const;

private:
    TTypeFormatEnum m_enFormat;
};

/// What TYPE sets: a type and its format control.
class CRepresentation
{
public:
    /// Without a format control, unless one is given.
    CRepresentation(CType::TTypeEnum type) : m_Type(type), m_Format(CTypeFormat::None) {}
    CRepresentation(const CType &type, const CTypeFormat &format = CTypeFormat::None)
        : m_Type(type), m_Format(format)
    {
    }
    /// The parts.
    const CType &Type() const { return m_Type; }
    const CTypeFormat &Format() const { return m_Format; }
    bool operator==(const CRepresentation &other) const
    {
        return m_Type == other.m_Type && m_Format == other.m_Format;
    }
    bool operator!=(const CRepresentation &other) const { return !(*this == other); }

private:
    CType m_Type;
    CTypeFormat m_Format;
};

/// The file structure of STRU.
class FORMKITFTP_EXPORT CStructure
{
public:
    /// The values of RFC 959.
    enum TStructureEnum : int { File = 0, Record = 1, Page = 2 };
    /// Turns into its value and back by itself.
    CStructure(TStructureEnum structure) : m_enStructure(structure) {}
    operator TStructureEnum() const { return m_enStructure; }
    /// "F", "R", "P".
    std::string AsString() const;

private:
    TStructureEnum m_enStructure;
};

/// The transfer mode of MODE.
class FORMKITFTP_EXPORT CTransferMode
{
public:
    /// The values of RFC 959.
    enum TTransferModeEnum : int { Stream = 0, Block = 1, Compressed = 2 };
    /// Turns into its value and back by itself.
    CTransferMode(TTransferModeEnum mode) : m_enMode(mode) {}
    operator TTransferModeEnum() const { return m_enMode; }
    /// "S", "B", "C".
    std::string AsString() const;

private:
    TTransferModeEnum m_enMode;
};

} // namespace nsFTP
