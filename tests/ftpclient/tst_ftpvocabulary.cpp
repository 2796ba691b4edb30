#include "support/datafile.h"
#include "support/stricttest.h"

#include <formkit/FtpClient/FTPDataTypes.h>
#include <formkit/FtpClient/FTPListParse.h>

using namespace nsFTP;

namespace {

// "name|d or r or dr|size|time and its type|links owner group attributes id", as far as known.
QString textOf(const CFTPFileStatus &s)
{
    const QDateTime time = QDateTime::fromSecsSinceEpoch(s.mtime, Qt::UTC);
    const std::string rest =
        s.links + " " + s.owner + " " + s.group + " " + s.attributes + " " + s.id;
    const QStringList parts = {QString::fromStdString(s.name),
                               QString(s.tryCwd ? "d" : "") + (s.tryRetrieve ? "r" : ""),
                               s.sizeType == 0 ? QString() : QString::number(s.size),
                               (s.mtimeType == 0 ? "" : time.toString(Qt::ISODate).chopped(1)) +
                                   QString(" %1").arg(s.mtimeType),
                               QString::fromStdString(rest).simplified()};
    return parts.join('|') + (s.path.empty() ? "" : " path kept");
}

} // namespace

// The values of the client (commands, replies, types, logons) and the lines of listings.
class FtpVocabularyTest : public StrictTest
{
    Q_OBJECT

private slots:
    void commands();
    void replies();
    void words();
    void logonDefaults();
    void lines();
    void calendar();
    void helpers();
};

void FtpVocabularyTest::commands()
{
    int number = 0;
    for (const QStringList &row : rowsOf("commands.txt")) {
        const CCommand command = CCommand::TCommandEnum(number++);
        const CCommand::IExtendedInfo &info = command.GetExtendedInfo();
        const QStringList facts = {QString::fromStdString(info.GetCompleteServerStringSyntax()),
                                   QString::number(info.GetNumberOfParameters()),
                                   QString::number(info.GetNumberOfOptionalParameters()),
                                   QString(command.IsDatachannelReadCommand() ? "read" : "") +
                                       (command.IsDatachannelWriteCommand() ? "write" : "") +
                                       (command.IsDatachannelCommand() ? "" : "none"),
                                   QStringList({"0", "959", "3659"})[info.GetSpecification()]};
        QCOMPARE(facts, row);
        QCOMPARE(QString::fromStdString(command.AsString()), row[0].section(' ', 0, 0));
    }
    QCOMPARE(number, 36);
    QCOMPARE(CCommand(CCommand::RETR).AsString({"a", ""}), std::string("RETR a"));
    QCOMPARE(CCommand(CCommand::ALLO).AsString({"", "1", "R", "2"}), std::string("ALLO 1 R 2"));
    for (const auto secret : {CCommand::PASS, CCommand::ACCT})
        QCOMPARE(CCommand(secret).AsMaskedString({"a"}), CCommand(secret).AsString({"****"}));
    QCOMPARE(CCommand(CCommand::CWD).AsMaskedString({"a"}), std::string("CWD a"));
}

void FtpVocabularyTest::replies()
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

void FtpVocabularyTest::words()
{
    std::string words;
    for (int i = 0; i < 3; ++i)
        words += CType(CType::TTypeEnum(i)).AsString() +
                 CTypeFormat(CTypeFormat::TTypeFormatEnum(i + 1)).AsString() +
                 CStructure(CStructure::TStructureEnum(i)).AsString() +
                 CTransferMode(CTransferMode::TTransferModeEnum(i)).AsString();
    QCOMPARE(words + CType(CType::LocalByte).AsString(), std::string("ANFSETRBICPCL"));
    QVERIFY(CRepresentation(CType::ASCII) != CRepresentation(CType::ASCII, CTypeFormat::NonPrint));
    std::vector<CFirewallType> types(12);
    CFirewallType::GetAllTypes(types);
    std::string texts;
    for (const CFirewallType &type : types)
        texts += type.AsStorageString() + "=" + type.AsDisplayString() + ",";
    QCOMPARE(texts,
             std::string("NO_FIREWALL=no firewall,SITE_HOSTNAME=SITE hostname,"
                         "USER_AFTER_LOGON=USER after logon,PROXY_OPEN=proxy OPEN,"
                         "TRANSPARENT=Transparent,USER_WITH_NO_LOGON=USER with no logon,"
                         "USER_FIREID@REMOTEHOST=USER fireID@remotehost,"
                         "USER_REMOTEID@REMOTEHOST_FIREID=USER remoteID@remotehost fireID,"
                         "USER_REMOTEID@FIREID@REMOTEHOST=USER remoteID@fireID@remotehost,"));
}

void FtpVocabularyTest::logonDefaults()
{
    const CLogonInfo none;
    QCOMPARE(none.HostPort() * 100 + none.FirewallPort(), 2121);
    QCOMPARE(none.UserName(), std::string("anonymous"));
    QCOMPARE(none.Password() + none.Account() + none.FirewallUser(), std::string());
    CLogonInfo all("h", 1, "u", "p", "a", "fh", "fu", "fp", 2, CFirewallType::ProxyOpen);
    all.SetHost("other");
    QCOMPARE(all.UserName() + all.FirewallHost(), std::string("anonymousfh"));
    QCOMPARE(all.FirewallPort() * 10 + all.FirewallType(), 23);
}

void FtpVocabularyTest::lines()
{
    CFTPFileStatus status;
    for (const DataRow &row : rowsOf("listings.txt")) {
        const QString now = row.value(2, "2024-03-15T12:00:00") + "Z";
        CFTPListParser parser(
            [&] { return QDateTime::fromString(now, Qt::ISODate).toSecsSinceEpoch(); });
        status.path = "left over";
        const bool isEntry = parser.Parse(status, row[0].toStdString());
        QVERIFY2((isEntry ? textOf(status) : "none") == row[1],
                 qPrintable(QString("line %1 read as ").arg(row.line) + textOf(status)));
    }
}

void FtpVocabularyTest::calendar()
{
    // Every month's first and last day over two whole cycles, against the system's calendar.
    for (QDate first(1601, 1, 1); first.year() < 2401; first = first.addMonths(1)) {
        const long long seconds = QDateTime(first, QTime(0, 0), Qt::UTC).toSecsSinceEpoch();
        QCOMPARE(CFTPListParser::ToTAI(first.year(), first.month() - 1, 1), seconds);
        QCOMPARE(CFTPListParser::GetYear(seconds), long(first.year()));
        QCOMPARE(CFTPListParser::GetYear(seconds + first.daysInMonth() * 86400LL - 1),
                 long(first.year()));
    }
}

void FtpVocabularyTest::helpers()
{
    QVERIFY(CFTPListParser::GetMonth("dEC", 3) == 11 && CFTPListParser::GetMonth("decem", 5) == -1);
    QVERIFY(CFTPListParser::CheckMonth("JANX", "jan") && !CFTPListParser::CheckMonth("jan", "JAN"));
    long value = -7;
    QVERIFY(CFTPListParser::GetLong("9223372036854775807", 19, value));
    QCOMPARE(value, 9223372036854775807L);
    for (const char *bad : {"9223372036854775808", "12x", ""})
        QVERIFY2(!CFTPListParser::GetLong(bad, qstrlen(bad), value), bad);
    CFTPFileStatus status;
    QVERIFY(CFTPListParser().ParseMultiNetListing(status, std::string_view("NAME;1", 4)));
    QVERIFY(status == CFTPFileStatus());
    status.size = 1;
    QVERIFY(status != CFTPFileStatus());
    QVERIFY(CFTPListParser::IsEPLS("+") && !CFTPListParser::IsEPLS(""));
    QVERIFY(CFTPListParser::IsUNIXStyleListing("p") && !CFTPListParser::IsUNIXStyleListing("t"));
    QVERIFY(CFTPListParser::IsMultiNetListing("a;") && !CFTPListParser::IsMultiNetListing("a"));
    QVERIFY(CFTPListParser::IsMSDOSListing("1") && !CFTPListParser::IsMSDOSListing("x"));
}

QTEST_GUILESS_MAIN(FtpVocabularyTest)
#include "tst_ftpvocabulary.moc"
