#include "support/stricttest.h"

#include <formkit/FtpClient/FTPDataTypes.h>

using namespace nsFTP;

class FtpDataTypesTest : public StrictTest
{
    Q_OBJECT

private slots:
    void commands_data();
    void commands();
    void commandLines();
    void replies_data();
    void replies();
    void letters();
    void firewalls();
    void logonDefaults();
};

void FtpDataTypesTest::commands_data()
{
    QTest::addColumn<QString>("syntax");
    QTest::addColumn<int>("parameters");
    QTest::addColumn<int>("optional");
    QTest::addColumn<QString>("channel");
    QTest::addColumn<int>("rfc");
    // In the order of the enumeration.
    const char *const rows[] = {
        "ABOR <CRLF>|0|0|none|959",
        "ACCT <SP> <account-information> <CRLF>|1|0|none|959",
        "ALLO <SP> <decimal-integer> [<SP> R <SP> <decimal-integer>] <CRLF>|3|2|none|959",
        "APPE <SP> <pathname> <CRLF>|1|0|write|959",
        "CDUP <CRLF>|0|0|none|959",
        "CWD <SP> <pathname> <CRLF>|1|0|none|959",
        "DELE <SP> <pathname> <CRLF>|1|0|none|959",
        "HELP [<SP> <string>] <CRLF>|1|1|none|959",
        "LIST [<SP> <pathname>] <CRLF>|1|1|read|959",
        "MDTM <SP> <pathname> <CRLF>|1|0|none|3659",
        "MKD <SP> <pathname> <CRLF>|1|0|none|959",
        "MODE <SP> <mode-code> <CRLF>|1|0|none|959",
        "NLST [<SP> <pathname>] <CRLF>|1|1|read|959",
        "NOOP <CRLF>|0|0|none|959",
        "OPEN <SP> <string> <CRLF>|1|0|none|0",
        "PASS <SP> <password> <CRLF>|1|0|none|959",
        "PASV <CRLF>|0|0|none|959",
        "PORT <SP> <host-port> <CRLF>|1|0|none|959",
        "PWD <CRLF>|0|0|none|959",
        "QUIT <CRLF>|0|0|none|959",
        "REIN <CRLF>|0|0|none|959",
        "REST <SP> <marker> <CRLF>|1|0|none|959",
        "RETR <SP> <pathname> <CRLF>|1|0|read|959",
        "RMD <SP> <pathname> <CRLF>|1|0|none|959",
        "RNFR <SP> <pathname> <CRLF>|1|0|none|959",
        "RNTO <SP> <pathname> <CRLF>|1|0|none|959",
        "SITE <SP> <string> <CRLF>|1|0|none|959",
        "SIZE <SP> <pathname> <CRLF>|1|0|none|3659",
        "SMNT <SP> <pathname> <CRLF>|1|0|none|959",
        "STAT [<SP> <pathname>] <CRLF>|1|1|none|959",
        "STOR <SP> <pathname> <CRLF>|1|0|write|959",
        "STOU <CRLF>|0|0|write|959",
        "STRU <SP> <structure-code> <CRLF>|1|0|none|959",
        "SYST <CRLF>|0|0|none|959",
        "TYPE <SP> <type-code> <CRLF>|1|0|none|959",
        "USER <SP> <username> <CRLF>|1|0|none|959",
    };
    int number = 0;
    for (const char *row : rows) {
        const QStringList parts = QString(row).split('|');
        QTest::addRow("%d", number++)
            << parts[0] << parts[1].toInt() << parts[2].toInt() << parts[3] << parts[4].toInt();
    }
}

void FtpDataTypesTest::commands()
{
    QFETCH(QString, syntax);
    QFETCH(QString, channel);
    const int number = QString(QTest::currentDataTag()).toInt();
    const CCommand command = CCommand::TCommandEnum(number);
    const CCommand::IExtendedInfo &info = command.GetExtendedInfo();
    QCOMPARE(QString::fromStdString(info.GetCompleteServerStringSyntax()), syntax);
    QCOMPARE(QString::fromStdString(command.AsString()), syntax.section(' ', 0, 0));
    QTEST(int(info.GetNumberOfParameters()), "parameters");
    QTEST(int(info.GetNumberOfOptionalParameters()), "optional");
    const int standards[] = {0, 959, 3659};
    QTEST(standards[info.GetSpecification()], "rfc");
    QCOMPARE(command.IsDatachannelReadCommand(), channel == "read");
    QCOMPARE(command.IsDatachannelWriteCommand(), channel == "write");
    QCOMPARE(command.IsDatachannelCommand(), channel != "none");
    QCOMPARE(int(info.GetType()), QStringList({"read", "write", "none"}).indexOf(channel));
}

void FtpDataTypesTest::commandLines()
{
    QCOMPARE(CCommand(CCommand::RETR).AsString({"a", ""}), std::string("RETR a"));
    QCOMPARE(CCommand(CCommand::ALLO).AsString({"", "1", "R", "2"}), std::string("ALLO 1 R 2"));
    QCOMPARE(CCommand(CCommand::LIST).AsString(CArg()), std::string("LIST"));
    QCOMPARE(CCommand(CCommand::ACCT).AsMaskedString({"a"}), std::string("ACCT ****"));
    QCOMPARE(CCommand(CCommand::CWD).AsMaskedString({"a"}), std::string("CWD a"));
}

void FtpDataTypesTest::replies_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("code");
    QTest::newRow("ordinary") << "226 done"
                              << "226";
    QTest::newRow("code alone") << "150"
                                << "150";
    QTest::newRow("third is a letter") << "25x"
                                       << "25x";
    QTest::newRow("two characters") << "22"
                                    << "";
    QTest::newRow("class 6") << "600"
                             << "";
    QTest::newRow("class 0") << "000"
                             << "";
    QTest::newRow("second above 5") << "260"
                                    << "";
    QTest::newRow("second is a letter") << "2x0"
                                        << "";
    QTest::newRow("empty") << ""
                           << "";
}

void FtpDataTypesTest::replies()
{
    QFETCH(QString, line);
    QFETCH(QString, code);
    CReply reply;
    QVERIFY(reply.Set("553 earlier"));
    QCOMPARE(reply.Set(line.toStdString()), !code.isEmpty());
    QCOMPARE(QString::fromStdString(reply.Value()), line);
    QCOMPARE(QString::fromStdString(reply.Code().Value()), code);
    QCOMPARE(reply.Code().IsPositiveReply(), code.startsWith('1') || code.startsWith('2'));
    QVERIFY(!reply.Code().IsNegativeReply());
}

void FtpDataTypesTest::letters()
{
    const auto join = [](auto... values) { return (values.AsString() + ...); };
    QCOMPARE(join(CType(CType::ASCII), CType(CType::EBCDIC), CType(CType::Image),
                  CType(CType::LocalByte)),
             std::string("AEIL"));
    QCOMPARE(join(CTypeFormat(CTypeFormat::NonPrint), CTypeFormat(CTypeFormat::TelnetFormat),
                  CTypeFormat(CTypeFormat::CarriageControl)),
             std::string("NTC"));
    QCOMPARE(join(CStructure(CStructure::File), CStructure(CStructure::Record),
                  CStructure(CStructure::Page)),
             std::string("FRP"));
    QCOMPARE(join(CTransferMode(CTransferMode::Stream), CTransferMode(CTransferMode::Block),
                  CTransferMode(CTransferMode::Compressed)),
             std::string("SBC"));
    QVERIFY(CRepresentation(CType::ASCII) != CRepresentation(CType::ASCII, CTypeFormat::NonPrint));
}

void FtpDataTypesTest::firewalls()
{
    std::vector<CFirewallType> types(12);
    CFirewallType::GetAllTypes(types);
    QStringList texts;
    for (const CFirewallType &type : types)
        texts << QString::fromStdString(type.AsStorageString() + "=" + type.AsDisplayString());
    QCOMPARE(texts,
             QStringList({"NO_FIREWALL=no firewall", "SITE_HOSTNAME=SITE hostname",
                          "USER_AFTER_LOGON=USER after logon", "PROXY_OPEN=proxy OPEN",
                          "TRANSPARENT=Transparent", "USER_WITH_NO_LOGON=USER with no logon",
                          "USER_FIREID@REMOTEHOST=USER fireID@remotehost",
                          "USER_REMOTEID@REMOTEHOST_FIREID=USER remoteID@remotehost fireID",
                          "USER_REMOTEID@FIREID@REMOTEHOST=USER remoteID@fireID@remotehost"}));
}

void FtpDataTypesTest::logonDefaults()
{
    const CLogonInfo none;
    QCOMPARE(int(none.HostPort()), 21);
    QCOMPARE(int(none.FirewallPort()), 21);
    QCOMPARE(none.UserName(), std::string("anonymous"));
    QCOMPARE(none.HostName() + none.Password() + none.Account() + none.FirewallHost() +
                 none.FirewallUser() + none.FirewallPassword(),
             std::string());
    CLogonInfo all("h", 1, "u", "p", "a", "fh", "fu", "fp", 2, CFirewallType::ProxyOpen);
    QCOMPARE(all.HostName() + all.UserName() + all.Password() + all.Account() + all.FirewallHost() +
                 all.FirewallUser() + all.FirewallPassword(),
             std::string("hupafhfufp"));
    QCOMPARE(int(all.FirewallPort()), 2);
    all.SetHost("other");
    QCOMPARE(all.UserName(), std::string("anonymous"));
    QCOMPARE(all.FirewallType(), CFirewallType(CFirewallType::ProxyOpen));
}

QTEST_GUILESS_MAIN(FtpDataTypesTest)
#include "tst_ftpdatatypes.moc"
