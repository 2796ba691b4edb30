#include "support/stricttest.h"

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

// The demo as a user without a display starts it.
class DemoTest : public StrictTest
{
    Q_OBJECT

private slots:
    void scriptedOrder();
    void badInput_data();
    void badInput();

private:
    QByteArray run(const QStringList &arguments, int exitCode);
    QTemporaryDir m_folder;
};

QByteArray DemoTest::run(const QStringList &arguments, int exitCode)
{
    QProcess demo;
    demo.start(DEMO_PROGRAM, QStringList("--headless") + arguments);
    if (!demo.waitForFinished(120000) || demo.exitStatus() != QProcess::NormalExit
        || demo.exitCode() != exitCode)
        return "unexpected end: " + demo.readAllStandardError();
    return exitCode == 0 ? demo.readAllStandardOutput() : demo.readAllStandardError();
}

void DemoTest::scriptedOrder()
{
    const QString pictures = m_folder.filePath("pictures");
    const QByteArray output = run({"--pictures", pictures}, 0);

    const int json = output.indexOf("\n}\n") + 3;
    const QJsonObject result = QJsonDocument::fromJson(output.left(json)).object();
    const QJsonObject before = result.value("before").toObject();
    const QJsonObject after = result.value("after").toObject();
    QVERIFY2(!before.isEmpty() && before.keys() == after.keys(), output.constData());
    QCOMPARE(before.value("Price").toString(), QString());
    const QMap<QString, QString> expected{
        {"Price", "1234567.25"}, {"Offset", "-0.75"}, {"Total", "1234566.50"},
        {"Quantity", "1500"},    {"Side", "B"},       {"GoodTill", "2035.12.31 00:00:00.000"}};
    for (auto value = expected.begin(); value != expected.end(); ++value)
        QCOMPARE(after.value(value.key()).toString(), value.value());
    for (const char *id : {"StockId", "BoardId", "SecurityId"})
        QVERIFY2(after.value(QLatin1String(id)).toString().toLongLong() > 0, id);

    const QList<QByteArray> lines = output.mid(json).trimmed().split('\n');
    QCOMPARE(lines.size(), 5);
    for (const QByteArray &line : lines) {
        QVERIFY2(line.startsWith("Picture: "), line.constData());
        QVERIFY2(QImage(QString::fromUtf8(line.mid(9))).width() >= 800, line.constData());
    }
}

void DemoTest::badInput_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no such database") << "--database" << QByteArray() << "missing";
    QTest::newRow("not a database") << "--database" << QByteArray("garbage, not SQLite") << "file";
    QTest::newRow("broken JSON") << "--values" << QByteArray("{\n\"Price\": 1,\n}") << "file:3: ";
    QTest::newRow("not an object") << "--values" << QByteArray("[1]") << "file:1: ";
    QTest::newRow("not a text") << "--values" << QByteArray("{\"Price\": [1]}") << "\"Price\"";
}

void DemoTest::badInput()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const QString path = m_folder.filePath(content.isEmpty() ? "missing" : "file");
    if (!content.isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    const QByteArray error = run({option, path}, 1);
    QVERIFY2(error.contains("formkit-demo: " + path.toUtf8()) && error.contains(reason.toUtf8()), error);
}

QTEST_GUILESS_MAIN(DemoTest)
#include "tst_demo.moc"
