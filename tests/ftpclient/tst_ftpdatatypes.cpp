#include "support/datafile.h"
#include "support/stricttest.h"

#include <formkit/FtpClient/FTPDataTypes.h>

using namespace nsFTP;

class FtpDataTypesTest : public StrictTest
{
    Q_OBJECT

private slots:
    void commands();
    void commandLines();
    void replies();
    void letters();
    void firewalls();
    void logonDefaults();
};

void FtpDataTypesTest::commands()
{
    int number = 0;
    for (const QStringList &row : rowsOf("commands.txt")) {
        const CCommand command = CCommand::TCommandEnum(number++);
        const CCommand::IExtendedInfo &info = command.GetExtendedInfo();
        const int standards[] = {0, 959, 3659};
        const QStringList facts = {QString::fromStdString(info.GetCompleteServerStringSyntax()),
                                   QString::number(info.GetNumberOfParameters()),
                                   QString::number(info.GetNumberOfOptionalParameters()),
                                   QStringList({"read", "write", "none"})[info.GetType()],
                                   QString::number(standards[info.GetSpecification()])};
        QCOMPARE(facts, row);
        QCOMPARE(QString::fromStdString(info.GetServerString()), row[0].section(' ', 0, 0));
        QCOMPARE(command.IsDatachannelReadCommand(), row[3] == "read");
        QCOMPARE(command.IsDatachannelWriteCommand(), row[3] == "write");
        QCOMPARE(command.IsDatachannelCommand(), row[3] != "none");
    }
    QCOMPARE(number, 36);
}

void FtpDataTypesTest::commandLines()
{
    QCOMPARE(CCommand(CCommand::RETR).AsString({"a", ""}), std::string("RETR a"));
    QCOMPARE(CCommand(CCommand::ALLO).AsString({"", "1", "R", "2"}), std::string("ALLO 1 R 2"));
    QCOMPARE(CCommand(CCommand::LIST).AsString(CArg()), std::string("LIST"));
    QCOMPARE(CCommand(CCommand::ACCT).AsMaskedString({"a"}), std::string("ACCT ****"));
    QCOMPARE(CCommand(CCommand::CWD).AsMaskedString({"a"}), std::string("CWD a"));
}

void FtpDataTypesTest::replies()
{
    const char *const rows[][2] = {{"226 done", "226"}, {"150", "150"}, {"25x", "25x"},
                                   {"22", ""},          {"600", ""},    {"000", ""},
                                   {"260", ""},         {"2x0", ""},    {"", ""}};
    for (const auto &row : rows) {
        CReply reply;
        QVERIFY(reply.Set("553 earlier") && reply.Code().IsPermanentNegativeReply());
        QCOMPARE(reply.Set(row[0]), *row[1] != '\0');
        QCOMPARE(reply.Value(), std::string(row[0]));
        QCOMPARE(reply.Code().Value(), std::string(row[1]));
        QCOMPARE(reply.Code().IsPositiveReply(), *row[1] != '\0');
        QVERIFY(!reply.Code().IsNegativeReply());
    }
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
