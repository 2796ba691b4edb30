// SPDX-License-Identifier: BSD-3-Clause
#include "support/datafile.h"
#include "support/stricttest.h"

#include <formkit/FtpClient/FTPDataTypes.h>
#include <formkit/FtpClient/FTPFactParse.h>
#include <formkit/FtpClient/FTPFeatures.h>

#include <QTimeZone>

using namespace nsFTP;

// The values of the client (commands, replies, types, logons) and the lines of listings.
class FtpVocabularyTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void commands()
    {
        const QStringList ways = {"read", "write", "none"};
        const QStringList standards = {"0", "959", "3659"};
        int number = 0;
        for (const DataRow &row : rowsOf("commands.txt")) {
            const CCommand command = CCommand::TCommandEnum(number++);
            const CCommand::IExtendedInfo &info = command.GetExtendedInfo();
            QCOMPARE(row.join('|'),
                     QString("%1|%2|%3|%4|%5")
                         .arg(info.GetCompleteServerStringSyntax().c_str())
                         .arg(info.GetNumberOfParameters())
                         .arg(info.GetNumberOfOptionalParameters())
                         .arg(ways[info.GetType()], standards[info.GetSpecification()]));
            QCOMPARE(QString(command.AsString().c_str()), row[0].section(' ', 0, 0));
            QCOMPARE(command.IsDatachannelCommand(), row[3] != "none");
        }
        QCOMPARE(number, 36);
        QCOMPARE(CCommand(CCommand::RETR).AsString({"a", ""}), std::string("RETR a"));
        QCOMPARE(CCommand(CCommand::ALLO).AsString({"", "1", "R", "2"}), std::string("ALLO 1 R 2"));
        for (const CCommand secret : {CCommand::PASS, CCommand::ACCT})
            QCOMPARE(secret.AsMaskedString({"a"}), secret.AsString({"****"}));
        QCOMPARE(CCommand(CCommand::CWD).AsMaskedString({"a"}), std::string("CWD a"));
    }

    void parameters()
    {
        std::string letters = CType(CType::LocalByte).AsString();
        for (int i = 0; i < 3; ++i)
            letters += CType(CType::TTypeEnum(i)).AsString() +
                       CTypeFormat(CTypeFormat::TTypeFormatEnum(i + 1)).AsString() +
                       CStructure(CStructure::TStructureEnum(i)).AsString() +
                       CTransferMode(CTransferMode::TTransferModeEnum(i)).AsString();
        QCOMPARE(letters, std::string("LANFSETRBICPC"));
        std::vector<CFirewallType> types(12);
        CFirewallType::GetAllTypes(types);
        QStringList texts;
        for (const CFirewallType &type : types)
            texts << type.AsStorageString().c_str() << type.AsDisplayString().c_str();
        QStringList wanted;
        for (const DataRow &row : rowsOf("firewalls.txt"))
            wanted << row;
        QCOMPARE(texts, wanted);
        const CLogonInfo none;
        QCOMPARE(none.UserName() + none.Password() + none.Account(), std::string("anonymous"));
        CLogonInfo all("h", 1, "u", "p", "a", "fh", "fu", "fp", 2, CFirewallType::ProxyOpen);
        all.SetHost("other");
        QCOMPARE(all.UserName() + all.FirewallHost(), std::string("anonymousfh"));
        QCOMPARE(all.FirewallPort() + all.HostPort() + none.FirewallPort(), 2 + 21 + 21);
    }

    // Name, d and r, size, time with its type, texts: as far as known.
    void lines()
    {
        CFTPFileStatus s;
        for (const DataRow &row : rowsOf("listings.txt")) {
            const QString now = row.value(2, "2024-03-15T12:00:00") + "Z";
            CFTPListParser parser(
                [&] { return QDateTime::fromString(now, Qt::ISODate).toSecsSinceEpoch(); });
            s.path = "left over";
            CFTPFactParser facts;
            IFileListParser *const chosen =
                row.value(2) == "facts" ? static_cast<IFileListParser *>(&facts) : &parser;
            const bool isEntry = chosen->Parse(s, row[0].toStdString());
            const QString time = QDateTime::fromSecsSinceEpoch(s.mtime, QTimeZone::utc())
                                     .toString("yyyy-MM-ddTHH:mm:ss ");
            const std::string rest =
                s.links + " " + s.owner + " " + s.group + " " + s.attributes + " " + s.id + s.path;
            const QStringList parts = {QString::fromStdString(s.name),
                                       QString(s.tryCwd ? "d" : "") + (s.tryRetrieve ? "r" : ""),
                                       s.sizeType == 0 ? "" : QString::number(s.size),
                                       (s.mtimeType == 0 ? " " : time) +
                                           QString::number(s.mtimeType),
                                       QString(rest.c_str()).simplified()};
            QVERIFY2((isEntry ? parts.join('|') : "none") == row[1],
                     qPrintable(QString("%1: %2").arg(row.line).arg(parts.join('|'))));
        }
        QVERIFY(CFTPListParser::GetMonth("decem", 5) == -1 && s != CFTPFileStatus());
        s.Reset();
        QVERIFY(CFTPListParser().ParseMultiNetListing(s, std::string_view("NAME;1", 4)));
        QVERIFY(s == CFTPFileStatus());
    }

    void features()
    {
        CReply reply;
        QVERIFY(reply.Set("211-I know\r\n MDTM\r\n mlst type*;size*;\r\n211-UTF8\r\n \r\n"
                          " AUTH TLS;SSL \r\n211 End of it"));
        const CFTPFeatures features(reply);
        QCOMPARE(features.Names(), std::vector<std::string>({"AUTH", "MDTM", "MLST", "UTF8"}));
        QVERIFY(features.Has("Utf8") && !features.Has("End") && !features.Has(""));
        QCOMPARE(features.Parameters("MLST"), std::string("type*;size*;"));
        QCOMPARE(features.Parameters("auth") + features.Parameters("X"), std::string("TLS;SSL"));
        QVERIFY(reply.Set("211 none") && CFTPFeatures(reply).Names().empty());
    }

    void calendar()
    {
        // Every month's first and last day over two whole cycles, against the system's calendar.
        for (QDate first(1601, 1, 1); first.year() < 2401; first = first.addMonths(1)) {
            const long long seconds =
                QDateTime(first, QTime(0, 0), QTimeZone::utc()).toSecsSinceEpoch();
            const long long last = seconds + first.daysInMonth() * 86400LL - 1;
            QCOMPARE(CFTPListParser::ToTAI(first.year(), first.month() - 1, 1), seconds);
            QCOMPARE(CFTPListParser::GetYear(seconds), long(first.year()));
            QCOMPARE(CFTPListParser::GetYear(last), long(first.year()));
        }
    }
};

QTEST_GUILESS_MAIN(FtpVocabularyTest)
#include "tst_ftpvocabulary.moc"
