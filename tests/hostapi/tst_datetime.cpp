#include "support/stricttest.h"

#include <hostapi/datetime.h>

#include <ctime>

// Run once per locale (LC_ALL): the locale form is that of QLocale::system(). The local clock
// is one that skips the hour after midnight on 24 April 2026.
class DateTimeTest : public StrictTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void systemForm();
    void wallClock();
    void localeForm();
    void everyDateReadsBack();
    void noDate();
};

void DateTimeTest::initTestCase()
{
    qputenv("TZ", "EET-2EEST,M4.5.5/0,M10.5.4/24");
    tzset();
    QVERIFY(!QDateTime(QDate(2026, 4, 24), QTime(0, 30)).isValid());
    QVERIFY(qEnvironmentVariable("LC_ALL").startsWith(QLocale::system().name()));
}

void DateTimeTest::systemForm()
{
    QHash<QString, QString> rows = {
        {"2026.03.05 01:02:03.004", "2026.03.05 01:02:03.004"},
        {"2026-03-05 21:02:03", "2026.03.05 21:02:03.000"},
        {"2026.03.05", "2026.03.05 00:00:00.000"},
        {"2026-04-24", "2026.04.24 00:00:00.000"},
        {"2026-04-24 00:30:00", "2026.04.24 00:30:00.000"},
        {"1969.12.31 23:59:59.999", "1969.12.31 23:59:59.999"},
        {"1970.01.01", ""},
    };
    const QString garbage = "|2026.02.29|2026.13.01|2026.03.05 24:00:00.000|2026.3.5|2026-03.05|"
                            "2026.03.05 |2026.03.05 01:02:03|2026-03-05 01:02:03.004|05.03.2026|"
                            "٢٠٢٦.٠٣.٠٥|20 6.03.05";
    for (const QString &text : garbage.split('|'))
        rows[text] = QString();
    for (const char *name : {"C", "fa_IR", "ar_EG", "bn_BD"}) {
        QLocale::setDefault(QLocale(name));
        for (auto row = rows.cbegin(); row != rows.cend(); ++row)
            QCOMPARE(datetime(row.key()).toString(), row.value());
    }
}

void DateTimeTest::wallClock()
{
    const datetime moment(QDate(2024, 2, 29), QTime(0, 30));
    QCOMPARE(moment.msecs(), Q_INT64_C(1709166600000));
    QVERIFY(moment.date() == QDate(2024, 2, 29) && moment.time() == QTime(0, 30));
    QCOMPARE(moment.addYears(2).toString(), QString("2026.02.28 00:30:00.000"));
    QVERIFY(datetime().addYears(1).isNull() && !datetime().date().isValid());
    QVERIFY(datetime(QDate()).isNull() && datetime(QDate(2026, 1, 1), QTime()).isNull());

    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(!(datetime::now() < datetime(before.date(), before.time())));
}

void DateTimeTest::localeForm()
{
    const QString all = "C 5 Mar 2026|ar_EG 5\u200f/3\u200f/2026|de_DE 05.03.26|en_US 3/5/26|"
                        "fa_IR 2026/3/5|ko_KR 26. 3. 5.|ru_RU 05.03.2026|sq_AL 5.3.26|"
                        "sv_SE 2026-03-05";
    const QString name = QLocale::system().name() + ' ';
    const QString date = all.split('|').filter(name).value(0).mid(name.size());
    const datetime moment(QDate(2026, 3, 5), QTime(21, 2, 3, 4));
    QCOMPARE(moment.toSystemString(true, QLocale::ShortFormat), date);
    QCOMPARE(moment.toSystemString(false, QLocale::ShortFormat), date + " 21:02:03.004");
    QCOMPARE(datetime().toSystemString(false, QLocale::ShortFormat), QString());
}

// As written, as typed on a keyboard without direction marks, and in native digits; a date of
// a year 00 or 70 also where the locale writes two digits.
void DateTimeTest::everyDateReadsBack()
{
    QVector<QDate> dates = {{2000, 2, 29}, {2026, 4, 24}, {2070, 1, 1}, {2099, 12, 31}};
    for (QDate date(2000, 1, 1); date.year() < 2100; date = date.addDays(23))
        dates << date;
    const auto native = [](QString text) {
        for (int digit = 0; digit <= 9; ++digit)
            text.replace(QChar('0' + digit), QLocale::system().toString(digit));
        return text;
    };
    for (const QDate &date : qAsConst(dates)) {
        const datetime moment(date, QTime(0, 30, 0, 4));
        for (const auto format : {QLocale::ShortFormat, QLocale::LongFormat}) {
            const QString text = moment.toSystemString(false, format);
            QVERIFY(datetime::fromSystemString(text, false, format) == moment);
            for (const QChar c : text)
                QVERIFY(!c.isDigit() || c.unicode() < 0x80);
        }
        const QString text = moment.toSystemString(true, QLocale::ShortFormat);
        for (const QString &typed : {text, QString(text).remove(QChar(0x200f)), native(text)})
            QCOMPARE(datetime::fromSystemString(typed, true, QLocale::ShortFormat).date(), date);
    }
}

void DateTimeTest::noDate()
{
    const datetime moment(QDate(2026, 3, 5), QTime(21, 2, 3, 4));
    const QString date = moment.toSystemString(true, QLocale::ShortFormat);
    const QString format = QLocale::system().dateFormat(QLocale::ShortFormat);
    for (const QString &text : {QString(), format, date.left(4), date + 'x', date + " 21:02:03.004",
                                QString(date).replace('5', "32"), QString(100000, '0')})
        QVERIFY(datetime::fromSystemString(text, true, QLocale::ShortFormat).isNull());
    for (const QString &text : {date, QString(" 21:02:03.004"), date + " 24:02:03.004"})
        QVERIFY(datetime::fromSystemString(text, false, QLocale::ShortFormat).isNull());
}

QTEST_GUILESS_MAIN(DateTimeTest)
#include "tst_datetime.moc"
