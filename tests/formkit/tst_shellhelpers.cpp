#include "support/datafile.h"
#include "support/stricttest.h"

#include "formkit/filebrowser_p.h"

#include <formkit/shellhelpers.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QLocalServer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextCodec>

// A file manager on the session bus.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QString mood;
    QStringList shown;

public slots:
    void ShowItems(const QStringList &uris, const QString &startupId, const QDBusMessage &call)
    {
        shown << uris + QStringList(startupId);
        if (mood == "refuses")
            QDBusConnection("manager").send(call.createErrorReply("org.example.No", "no"));
        call.setDelayedReply(mood != "shows");
    }
};

class ShellHelpersTest : public StrictTest
{
    Q_OBJECT

private slots:
    void processes();
    void lister();
    void addresses();
    void fileManager();
    void finder();

public slots:
    void open(const QUrl &url) { m_opened << url.toString(); }

private:
    // A folder of programs, which is all of PATH, with one of that name (none for no script).
    void setProgram(const QString &name, const QString &script);
    bool startBus(QProcess &bus);

    QTemporaryDir m_folder;
    const QByteArray m_path = qgetenv("PATH");
    QStringList m_opened;
};

void ShellHelpersTest::setProgram(const QString &name, const QString &script)
{
    qputenv("PATH", QFile::encodeName(m_folder.path()));
    QFile file(m_folder.filePath(name));
    file.remove();
    if (script.isEmpty() || !file.open(QIODevice::WriteOnly))
        return;
    file.write("#!/bin/sh\n" + script.toUtf8());
    file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
}

void ShellHelpersTest::processes()
{
    const QString name = QString("fk%1z").arg(QCoreApplication::applicationPid());
    const QString program = m_folder.filePath(name);
    QVERIFY(QFile::copy("/bin/sleep", program));
    if (QProcess::execute("pgrep", {"-V"}) != 0)
        QSKIP("there is no pgrep");
    QProcess first;
    QProcess second;
    QList<long> ids;
    for (QProcess *process : {&first, &second}) {
        process->start(program, {"1000"});
        QVERIFY(process->waitForStarted());
        ids << long(process->processId());
    }
    std::sort(ids.begin(), ids.end());
    for (const QString &pattern : {name, "^" + name.chopped(1) + "[y-z]$"})
        QCOMPARE(processIds(pattern), ids);
    QCOMPARE(processIds(name + "z"), QList<long>());
    QCOMPARE(messages(), QStringList());
    for (QProcess *process : {&first, &second}) {
        process->kill();
        process->waitForFinished();
    }
}

void ShellHelpersTest::lister()
{
    for (const DataRow &row : rowsOf("pgreps.txt")) {
        setProgram("pgrep", row[0]);
        const int before = messages().size();
        QStringList ids;
        for (const long id : processIds("-x *$HOME \""))
            ids << QString::number(id);
        QCOMPARE(ids.join(' '), row[1]);
        QString logged = messages().mid(before).join('|');
        QCOMPARE(logged.remove("processIds "), row[2]);
    }
    qputenv("PATH", m_path);
    // The lister that was given up is gone.
    QTRY_COMPARE(
        QProcess::execute("pgrep", {"-P", QString::number(qApp->applicationPid()), "-x", "sleep"}),
        1);
}

// In a network of its own, whose one interface is down at first.
void ShellHelpersTest::addresses()
{
    const auto run = [](const QString &script) {
        QProcess process;
        process.start("unshare", {"-rn", "sh", "-c", script, qApp->applicationFilePath()});
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput()).simplified();
    };
    const QString setUp = "ip address add 192.0.2.1/32 dev lo && ";
    if (run(setUp + "echo done") != "done")
        QSKIP("no network namespace can be made here");
    const QString v6 = QFile::exists("/proc/net/if_inet6") ? " ::1" : "";
    const QString up = "127.0.0.1 192.0.2.1" + v6;
    QCOMPARE(run(setUp + "$0 addresses; ip link set lo up && $0 addresses"),
             "all 192.0.2.1 up all " + up + " up " + up);
}

bool ShellHelpersTest::startBus(QProcess &bus)
{
    QFile config(m_folder.filePath("bus.conf"));
    if (!config.open(QIODevice::WriteOnly))
        return false;
    config.write("<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
                 "<policy context='default'><allow own='*'/><allow send_destination='*'/>"
                 "<allow eavesdrop='true'/></policy></busconfig>");
    config.close();
    bus.start("dbus-daemon", {"--nofork", "--print-address", "--config-file", config.fileName()});
    if (!bus.waitForReadyRead())
        return false;
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.readLine().trimmed());
    return true;
}

void ShellHelpersTest::fileManager()
{
    QProcess bus;
    if (!startBus(bus))
        QSKIP("no dbus-daemon runs here");
    const QByteArray busAddress = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    QDBusConnection connection = QDBusConnection::connectToBus(QString(busAddress), "manager");
    FileManager manager;
    manager.mood = "shows";
    QVERIFY(connection.registerObject("/org/freedesktop/FileManager1", &manager,
                                      QDBusConnection::ExportAllSlots));
    QVERIFY(connection.registerService("org.freedesktop.FileManager1"));
    QDesktopServices::setUrlHandler("file", this, "open");

    QTextCodec *codec = QTextCodec::codecForLocale();
    for (const DataRow &row : rowsOf("shownfiles.txt")) {
        if (row.size() > 2)
            QTextCodec::setCodecForLocale(QTextCodec::codecForName(row[2].toLatin1()));
        shellShowFile(row[0]);
        QTRY_COMPARE(manager.shown, QStringList({row[1], QString()}));
        manager.shown.clear();
    }
    QTextCodec::setCodecForLocale(codec);
    shellShowFile("");
    shellShowFile("x y");
    QTRY_COMPARE(manager.shown.value(0), "file://" + QDir::currentPath() + "/x%20y");
    QCOMPARE(m_opened, QStringList());

    QLocalServer mute;
    QVERIFY(mute.listen(m_folder.filePath("mute")));
    const QByteArray muteAddress = "unix:path=" + QFile::encodeName(mute.fullServerName());
    const std::pair<QByteArray, QString> desktops[] = {
        {busAddress, "refuses"},   {busAddress, "is silent"},        {busAddress, "is away"},
        {muteAddress, "is there"}, {"unix:path=/no/bus,guid=0", ""}, {"tcp:host=127.0.0.1", ""}};
    for (const auto &[address, mood] : desktops) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        manager.mood = mood;
        if (mood == "is away")
            connection.unregisterService("org.freedesktop.FileManager1");
        m_opened.clear();
        shellShowFile("/f g/x");
        QTRY_COMPARE_WITH_TIMEOUT(m_opened, QStringList("file:///f g"), 30000);
    }
    QDBusConnection::disconnectFromBus("manager");
    bus.kill();
    bus.waitForFinished();
}

// macOS's way, with a stand-in for its program.
void ShellHelpersTest::finder()
{
    const QString out = m_folder.filePath("arguments");
    setProgram("osascript", "printf '%s\\n' \"$@\" > '" + out + "'");
    const auto fail = [] { QFAIL("there is an osascript"); };
    FileBrowser::select("/f/a \"b\"\\c", fail);
    const auto arguments = [&] {
        QFile file(out);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTRY_COMPARE(arguments(), QByteArray("-e\ntell application \"Finder\"\n-e\nactivate\n-e\n"
                                         "select POSIX file \"/f/a \"b\"\\c\"\n-e\nend tell\n"));
    setProgram("osascript", "");
    bool failed = false;
    FileBrowser::select("/f/a", [&] { failed = true; });
    QVERIFY(failed);
    qputenv("PATH", m_path);
}

int main(int argc, char *argv[])
{
    if (argc == 2 && QByteArray(argv[1]) == "addresses") {
        for (const bool upOnly : {false, true}) {
            std::puts(upOnly ? "up" : "all");
            for (const QHostAddress &address : localhostAddresses(upOnly))
                std::puts(qPrintable(address.toString()));
        }
        return 0;
    }
    QGuiApplication application(argc, argv);
    ShellHelpersTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_shellhelpers.moc"
