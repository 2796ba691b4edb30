#include "support/stricttest.h"

#include <formkit/FtpClient/FTPListParse.h>

#include <ctime>

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
    void noEntries_data();
    void noEntries();
    void guessedYears_data();
    void guessedYears();
    void calendar();
    void helpers();
};

// The clock stands at noon on 15 March 2024.
void FtpListParseTest::lines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("expected");
    const char *const rows[][2] = {
        // EPLF
        {"+i8388621.48594,m825718503,r,s280,\tdjb.html",
         "djb.html|r|280|1996-03-01T22:15:03 1|8388621.48594"},
        {"+i8388621.50690,m824255907,/,\t514", "514|d||1996-02-13T23:58:27 1|8388621.50690"},
        {"+s12x,up644,x,\ta\tb", "a\tb||-1| 0|"},
        {"+r,s5\tunended fact", "unended fact|r|| 0|"},
        {"+s99999999999999999999,\thuge", "huge||-1| 0|"},
        // UNIX
        {"-rw-r--r--   1 root     other        531 Jan 29 03:26 README",
         "README|r|531|2024-01-29T03:26:00 2|1 root other -rw-r--r--"},
        {"-rw-r--r-- 1 owner 531 Jan 29  2003 only owner",
         "only owner|r|531|2003-01-29T00:00:00 3|1 owner -rw-r--r--"},
        {"dr-xr-xr-x   2 root     other        512 Apr  8  1994 etc",
         "etc|d|512|1994-04-08T00:00:00 3|2 root other dr-xr-xr-x"},
        {"lrwxrwxrwx   1 root     other          7 Jan 25 00:17 bin -> usr/bin",
         "bin|dr|7|2024-01-25T00:17:00 2|1 root other lrwxrwxrwx"},
        {"-rw-r--r--   1 a b 7 Jan 25 00:17 no -> link",
         "no -> link|r|7|2024-01-25T00:17:00 2|1 a b -rw-r--r--"},
        {"drwxrwxr-x+  5 a b 4096 MAR 14  9:05  two blanks [x]",
         " two blanks [x]|d|4096|2024-03-14T09:05:00 2|5 a b drwxrwxr-x+"},
        {"-rw-r--r--@ 1 a staff 10737418240 Dec 31 23:59 ten GiB",
         "ten GiB|r|10737418240|2023-12-31T23:59:00 2|1 a staff -rw-r--r--@"},
        {"brw-rw----. 1 root disk 8, 0 Jan  1 2000 sda",
         "sda||0|2000-01-01T00:00:00 3|1 root disk brw-rw----."},
        {"crw-rw-rw- 1 root root 1,   3 Jan  1 2000 null",
         "null||3|2000-01-01T00:00:00 3|1 root root crw-rw-rw-"},
        {"srwxr-xr-x 1 a b 0 Jan  1 2000 socket",
         "socket||0|2000-01-01T00:00:00 3|1 a b srwxr-xr-x"},
        {"prw-r--r-- 1 a b 0 Jan  1 2000 pipe", "pipe||0|2000-01-01T00:00:00 3|1 a b prw-r--r--"},
        {"-rwxrwxrwx 1 user Domain Users 77 Feb 29 2024 leap",
         "leap|r|77|2024-02-29T00:00:00 3|1 user Domain -rwxrwxrwx"},
        {"-rw-r--r-- 1 1000 1001 5 Mar 15 11:59 numeric ids",
         "numeric ids|r|5|2024-03-15T11:59:00 2|1 1000 -rw-r--r--"},
        {"-rw-r--r-- 1 a b 4.5K Mar 15 2023 human",
         "human|r|-1|2023-03-15T00:00:00 3|1 a b -rw-r--r--"},
        {"-rw-r--r-- 1 a b 99999999999999999999 Mar 15 2023 f",
         "f|r|-1|2023-03-15T00:00:00 3|1 a b -rw-r--r--"},
        {"drwxrwxr-x               folder        2 May 10  1996 network",
         "network|d|2|1996-05-10T00:00:00 3|folder drwxrwxr-x"},
        {"-------r--         326  1391972  1392298 Nov 22  1995 MegaPhone.sit",
         "MegaPhone.sit|r|1392298|1995-11-22T00:00:00 3|326 1391972 -------r--"},
        {"d [R----F--] supervisor            512       Jan 16 18:53    login",
         "login|d|512|2024-01-16T18:53:00 2|[R----F--] supervisor d"},
        {"- [R----F--] rhesus             214059       Oct 20 15:27    cx.exe",
         "cx.exe|r|214059|2023-10-20T15:27:00 2|[R----F--] rhesus -"},
        {"-rw-r--r-- 1 a b 1 Jan  1 2000     four",
         "    four|r|1|2000-01-01T00:00:00 3|1 a b -rw-r--r--"},
        {"-rw-r--r-- 1 a b 1 Jan  1 2000 \xd0\xb8\xd0\xbc\xd1\x8f",
         "\xd0\xb8\xd0\xbc\xd1\x8f|r|1|2000-01-01T00:00:00 3|1 a b -rw-r--r--"},
        // MultiNet
        {"00README.TXT;1      2 30-DEC-1996 17:44 [SYSTEM] (RWED,RWED,RE,RE)",
         "00README.TXT|r||1996-12-30T17:44:00 2|"},
        {"CORE.DIR;1          1  8-SEP-1996 16:09 [SYSTEM] (RWE,RWE,RE,RE)",
         "CORE|d||1996-09-08T16:09:00 2|"},
        {"CII-MANUAL.TEX;1  213/216  29-JAN-1996 03:33:12  [ANONYMOUS]   (RWED,,)",
         "CII-MANUAL.TEX|r||1996-01-29T03:33:00 2|"},
        {".DIR;1 1 8-SEP-1996 16:09", ".DIR|r||1996-09-08T16:09:00 2|"},
        // MS-DOS
        {"04-27-00  09:09PM       <DIR>          licensed", "licensed|d||2000-04-27T21:09:00 2|"},
        {"07-18-98  12:30AM       <JUNCTION>     pub dir", "pub dir|d||1998-07-18T00:30:00 2|"},
        {"04-14-00  03:47P                  589 readme.htm",
         "readme.htm|r|589|2000-04-14T15:47:00 2|"},
        {"12-31-49  12:00PM 5000000000 noon", "noon|r|5000000000|2049-12-31T12:00:00 2|"},
        {"01-30-2024  13:15  7 24 hours", "24 hours|r|7|2024-01-30T13:15:00 2|"},
        {"04-14-50  01:15PM big? x", "x|r|-1|1950-04-14T13:15:00 2|"},
    };
    for (const auto &row : rows)
        QTest::newRow(row[0]) << QString(row[0]) << QString(row[1]);
}

void FtpListParseTest::lines()
{
    QFETCH(QString, line);
    QFETCH(QString, expected);
    CFTPListParser parser([] { return secondsOf("2024-03-15T12:00:00"); });
    CFTPFileStatus status;
    status.path = "left over";
    QVERIFY(parser.Parse(status, line.toStdString()));
    QCOMPARE(textOf(status), expected);
    QVERIFY(status.path.empty());
    CFTPFileStatus copy = status;
    QVERIFY(copy == status);
    copy.size = 424242;
    QVERIFY(copy != status);
}

// What is no entry.
void FtpListParseTest::noEntries_data()
{
    QTest::addColumn<QString>("line");
    for (const char *line : {"",
                             "d",
                             "+",
                             "total 12",
                             "+i1,m2,no tab",
                             "xrw-r--r-- 1 a b 1 Jan 1 2000 f",
                             "drwx",
                             "-rw-r--r-- 1 a b 1 Jan 1 2000",
                             "-rw-r--r-- 1 a b 1 Jan 1 200 short year",
                             "-rw-r--r-- 1 a b 1 Jan x 2000 f",
                             "-rw-r--r-- 1 a b 1 Jan 0 2000 f",
                             "-rw-r--r-- 1 a b 1 Jan 32 2000 f",
                             "-rw-r--r-- 1 a b 1 Jan 1 20x0 f",
                             "-rw-r--r-- 1 a b 1 Jan 1 99999 f",
                             "-rw-r--r-- 1 a b 1 Jan 1 1x:00 f",
                             "-rw-r--r-- 1 a b 1 Foo 1 2000 f",
                             "A.TXT;1",
                             "A.TXT;1 2 30-FOO-1996 17:44",
                             "A.TXT;1 2 x-DEC-1996 17:44",
                             "A.TXT;1 2 30-DEC-1996 17",
                             "13-01-00  09:09PM <DIR> month",
                             "00-01-00  09:09PM <DIR> month",
                             "04-99-00  09:09PM <DIR> day",
                             "04-01-00  09:09PM 12",
                             "04-01-00  09:09XM 12 f",
                             "04-01-00",
                             "Jan 1",
                             "99999999999999999999-1-1 1:1AM 1 f"})
        QTest::newRow(*line ? line : "empty") << line;
}

void FtpListParseTest::noEntries()
{
    QFETCH(QString, line);
    CFTPListParser parser;
    CFTPFileStatus status;
    QVERIFY(!parser.Parse(status, line.toStdString()));
}

void FtpListParseTest::guessedYears_data()
{
    QTest::addColumn<QString>("now");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("time");
    QTest::newRow("today") << "2024-06-15T12:00:00"
                           << "Jun 15 11:00"
                           << "2024-06-15T11:00:00";
    QTest::newRow("tomorrow, another zone") << "2024-06-15T23:00:00"
                                            << "Jun 16 01:00"
                                            << "2024-06-16T01:00:00";
    QTest::newRow("New Year's Eve, seen on New Year's Day") << "2024-01-01T00:30:00"
                                                            << "Dec 31 23:30"
                                                            << "2023-12-31T23:30:00";
    QTest::newRow("New Year's Day, seen on New Year's Eve") << "2023-12-31T23:30:00"
                                                            << "Jan  1 00:30"
                                                            << "2024-01-01T00:30:00";
    QTest::newRow("349 days ago") << "2023-12-31T00:00:00"
                                  << "Jan 16 00:00"
                                  << "2023-01-16T00:00:00";
    QTest::newRow("350 days ago is next year") << "2023-12-31T00:00:00"
                                               << "Jan 15 00:00"
                                               << "2024-01-15T00:00:00";
    QTest::newRow("29 February") << "2024-03-01T00:00:00"
                                 << "Feb 29 08:00"
                                 << "2024-02-29T08:00:00";
    QTest::newRow("29 February, seen in January") << "2025-01-10T00:00:00"
                                                  << "Feb 29 08:00"
                                                  << "2024-02-29T08:00:00";
    QTest::newRow("29 February of no leap year") << "2023-03-02T00:00:00"
                                                 << "Feb 29 08:00"
                                                 << "2023-03-01T08:00:00";
}

void FtpListParseTest::guessedYears()
{
    QFETCH(QString, now);
    QFETCH(QString, shown);
    QFETCH(QString, time);
    CFTPListParser parser([&] { return secondsOf(now); });
    CFTPFileStatus status;
    QVERIFY(parser.Parse(status, ("-rw-r--r-- 1 a b 1 " + shown + " f").toStdString()));
    QCOMPARE(status.mtime, secondsOf(time));
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
    QVERIFY(CFTPListParser::IsEPLS("+") && !CFTPListParser::IsEPLS(""));
    QVERIFY(CFTPListParser::IsUNIXStyleListing("p") && !CFTPListParser::IsUNIXStyleListing("t"));
    QVERIFY(CFTPListParser::IsMultiNetListing("a;") && !CFTPListParser::IsMultiNetListing("a"));
    QVERIFY(CFTPListParser::IsMSDOSListing("1") && !CFTPListParser::IsMSDOSListing("x"));
}

QTEST_GUILESS_MAIN(FtpListParseTest)
#include "tst_ftplistparse.moc"
