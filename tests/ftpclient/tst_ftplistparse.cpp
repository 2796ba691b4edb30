#include "support/datafile.h"
#include "support/stricttest.h"

#include <formkit/FtpClient/FTPListParse.h>

using namespace nsFTP;

namespace {

long long secondsOf(const QString &time)
{
    return QDateTime::fromString(time + "Z", Qt::ISODate).toSecsSinceEpoch();
}

// "name|d or r or dr|size|time and its type|links owner group attributes id", as far as known.
QString textOf(const CFTPFileStatus &status)
{
    const QString time = status.mtimeType == 0
                             ? QString()
                             : QDateTime::fromSecsSinceEpoch(status.mtime, Qt::UTC)
                                   .toString("yyyy-MM-dd'T'HH:mm:ss");
    QStringList rest;
    for (const std::string &text :
         {status.links, status.owner, status.group, status.attributes, status.id})
        rest << QString::fromStdString(text);
    rest.removeAll({});
    return QString("%1|%2%3|%4|%5 %6|%7")
        .arg(QString::fromStdString(status.name), QString(status.tryCwd ? "d" : ""),
             QString(status.tryRetrieve ? "r" : ""),
             status.sizeType == 0 ? QString() : QString::number(status.size), time)
        .arg(status.mtimeType)
        .arg(rest.join(' '));
}

} // namespace

class FtpListParseTest : public StrictTest
{
    Q_OBJECT

private slots:
    void lines_data();
    void lines();
    void calendar();
    void helpers();
};

void FtpListParseTest::lines_data()
{
    QTest::addColumn<QStringList>("row");
    for (const QStringList &row : rowsOf("listings.txt"))
        QTest::newRow(qPrintable(row[0])) << row;
}

void FtpListParseTest::lines()
{
    QFETCH(QStringList, row);
    CFTPListParser parser([&] { return secondsOf(row.value(2, "2024-03-15T12:00:00")); });
    CFTPFileStatus status;
    status.path = "left over";
    const bool isEntry = parser.Parse(status, row[0].toStdString());
    QCOMPARE(isEntry ? textOf(status) : "none", row[1]);
    QVERIFY(status.path.empty());
}

void FtpListParseTest::calendar()
{
    QCOMPARE(CFTPListParser::ToTAI(1970, 0, 1), 0LL);
    // Every month's first and last day over two whole cycles, against the system's calendar.
    for (int year = 1601; year < 2401; ++year) {
        for (int month = 1; month <= 12; ++month) {
            const QDate first(year, month, 1);
            const long long seconds = QDateTime(first, QTime(0, 0), Qt::UTC).toSecsSinceEpoch();
            QCOMPARE(CFTPListParser::ToTAI(year, month - 1, 1), seconds);
            QCOMPARE(CFTPListParser::GetYear(seconds), long(year));
            QCOMPARE(CFTPListParser::GetYear(seconds + first.daysInMonth() * 86400LL - 1),
                     long(year));
        }
    }
}

void FtpListParseTest::helpers()
{
    QCOMPARE(CFTPListParser::GetMonth("dEC", 3), 11);
    QCOMPARE(CFTPListParser::GetMonth("december", 8), -1);
    QVERIFY(CFTPListParser::CheckMonth("JANX", "jan"));
    QVERIFY(!CFTPListParser::CheckMonth("jan", "JAN"));
    long value = -7;
    QVERIFY(CFTPListParser::GetLong("9223372036854775807", 19, value));
    QCOMPARE(value, 9223372036854775807L);
    QVERIFY(!CFTPListParser::GetLong("9223372036854775808", 19, value));
    QVERIFY(!CFTPListParser::GetLong("12x", 3, value));
    QVERIFY(!CFTPListParser::GetLong("", 0, value));
    CFTPListParser parser;
    CFTPFileStatus status;
    QVERIFY(parser.ParseMultiNetListing(status, std::string_view("NAME;1", 4)));
    QVERIFY(status == CFTPFileStatus());
    status.size = 1;
    QVERIFY(status != CFTPFileStatus());
    QVERIFY(CFTPListParser::IsEPLS("+") && !CFTPListParser::IsEPLS(""));
    QVERIFY(CFTPListParser::IsUNIXStyleListing("p") && !CFTPListParser::IsUNIXStyleListing("t"));
    QVERIFY(CFTPListParser::IsMultiNetListing("a;") && !CFTPListParser::IsMultiNetListing("a"));
    QVERIFY(CFTPListParser::IsMSDOSListing("1") && !CFTPListParser::IsMSDOSListing("x"));
}

QTEST_GUILESS_MAIN(FtpListParseTest)
#include "tst_ftplistparse.moc"
