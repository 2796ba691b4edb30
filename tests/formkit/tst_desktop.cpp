// SPDX-License-Identifier: BSD-3-Clause
#include "support/datafile.h"
#include "support/qtversions.h"
#include "support/stricttest.h"

#include "formkit/filebrowser_p.h"

#include <formkit/objectdeleter.h>
#include <formkit/shellhelpers.h>
#include <formkit/signalblocker.h>
#include <formkit/widgethelpers.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QLocalServer>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QWidget>

// A session bus of a configuration beside the tests; its address is empty where none can run.
struct Bus : QProcess
{
    explicit Bus(const QString &config)
    {
        const QString file = DATA_FOLDER "/desktop/" + config;
        start("dbus-daemon", {"--nofork", "--print-address", "--config-file", file});
        address = waitForReadyRead() ? readLine().trimmed() : QByteArray();
    }
    ~Bus() override
    {
        kill();
        waitForFinished();
    }

    QByteArray address;
};

// A file manager on the session bus.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QString mood;
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &startupId, const QDBusMessage &call)
    {
        shown << uris + QStringList(startupId);
        call.setDelayedReply(mood != "shows");
        if (mood == "refuses")
            QDBusConnection("manager").send(call.createErrorReply("org.example.No", "no"));
    }
};

// Each function is a test of its own, so that what a machine lacks shows as skipped.
class DesktopTest : public StrictTest
{
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl &url) { m_opened << url.toString(); }

private Q_SLOTS:
    void processes();
    void lister();
    void addresses();
    void fileManager();
    void finder();
    void placement();
    void texts();
    void lifetimes();

private:
    void setProgram(const QString &name, const QString &script);

    QTemporaryDir m_folder;
    const QByteArray m_path = qgetenv("PATH");
    QStringList m_opened;
};

// Makes PATH a folder without any program but this one (without any for an empty script).
void DesktopTest::setProgram(const QString &name, const QString &script)
{
    qputenv("PATH", QFile::encodeName(m_folder.path()));
    QFile file(m_folder.filePath(name));
    file.remove();
    if (script.isEmpty() || !file.open(QIODevice::WriteOnly))
        return;
    file.write("#!/bin/sh\n" + script.toUtf8());
    file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
}

void DesktopTest::processes()
{
    if (QStandardPaths::findExecutable("pgrep").isEmpty())
        QSKIP("there is no pgrep");
    const QString name = QString("fk%1z").arg(qApp->applicationPid());
    QVERIFY(QFile::copy("/bin/sleep", m_folder.filePath(name)));
    QProcess sleeper;
    sleeper.start(m_folder.filePath(name), {"1000"});
    QVERIFY(sleeper.waitForStarted());
    for (const QString &pattern : {name, "^" + name.chopped(1) + "[y-z]$"})
        QCOMPARE(processIds(pattern), QList<long>({long(sleeper.processId())}));
    QCOMPARE(processIds(name + "z"), QList<long>());
    QCOMPARE(messages(), QStringList());
    sleeper.kill();
    sleeper.waitForFinished();
}

void DesktopTest::lister()
{
    for (const DataRow &row : rowsOf("desktop/pgreps.txt")) {
        setProgram("pgrep", row[0]);
        const int before = messages().size();
        QStringList ids;
        for (const long id : processIds("-x *$HOME \""))
            ids << QString::number(id);
        QCOMPARE(ids.join(' '), row[1]);
        QCOMPARE(messages().mid(before).join('|').remove("processIds "), row[2]);
    }
    qputenv("PATH", m_path);
    // The one that was given up is gone.
    const QString parent = QString::number(qApp->applicationPid());
    QTRY_VERIFY(QProcess::execute("pgrep", {"-P", parent, "-x", "sleep"}) != 0);
}

void DesktopTest::addresses()
{
    // In a network of its own, whose interface is down, the test runs once more.
    const bool isDown = qEnvironmentVariableIsSet("OWN_NETWORK");
    const QHostAddress address(isDown ? "192.0.2.1" : "127.0.0.1");
    QVERIFY(localhostAddresses(false).contains(address));
    QCOMPARE(localhostAddresses(true).contains(address), !isDown);
    if (isDown)
        return;
    if (QProcess::execute("unshare", {"-rn", "ip", "link"}) != 0)
        QSKIP("no network namespace can be made here");
    const QString script = "ip address add 192.0.2.1/32 dev lo && OWN_NETWORK=1 exec $0 addresses";
    QCOMPARE(QProcess::execute("unshare", {"-rn", "sh", "-c", script, qApp->applicationFilePath()}),
             0);
}

void DesktopTest::fileManager()
{
    const Bus bus("bus.conf");
    if (bus.address.isEmpty())
        QSKIP("no dbus-daemon runs here");
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address);
    QDBusConnection connection = QDBusConnection::connectToBus(bus.address, "manager");
    FileManager manager;
    manager.mood = "shows";
    QVERIFY(connection.registerObject("/org/freedesktop/FileManager1", &manager,
                                      QDBusConnection::ExportAllSlots));
    QVERIFY(connection.registerService("org.freedesktop.FileManager1"));
    QDesktopServices::setUrlHandler("file", this, "open");

    shellShowFile("");
    for (const DataRow &row : rowsOf("desktop/shownfiles.txt")) {
        setEncodingOfFileNames(row[2]);
        shellShowFile(row[0]);
        const QString uri = QString(row[1]).replace("%here", QDir::currentPath());
        QTRY_COMPARE(manager.shown, QStringList({uri, QString()}));
        manager.shown.clear();
    }
    QCOMPARE(m_opened, QStringList());

    QLocalServer mute;
    QVERIFY(mute.listen(m_folder.filePath("mute")));
    const QByteArray muteAddress = "unix:path=" + QFile::encodeName(mute.fullServerName());
    const std::pair<QByteArray, QString> desktops[] = {
        {bus.address, "refuses"},  {bus.address, "is silent"},       {bus.address, "is away"},
        {muteAddress, "is there"}, {"unix:path=/no/bus,guid=0", ""}, {"tcp:host=127.0.0.1", ""}};
    for (const auto &[busAddress, mood] : desktops) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", busAddress);
        manager.mood = mood;
        if (mood == "is away")
            connection.unregisterService("org.freedesktop.FileManager1");
        m_opened.clear();
        shellShowFile("/f g/x");
        QTRY_COMPARE_WITH_TIMEOUT(m_opened, QStringList("file:///f g"), 15000);
    }
}

// macOS's way, with a stand-in for its program.
void DesktopTest::finder()
{
    QFile arguments(m_folder.filePath("arguments"));
    QVERIFY(arguments.open(QIODevice::ReadWrite));
    setProgram("osascript", "printf '%s\\n' \"$@\" > '" + arguments.fileName() + "'");
    bool failed = false;
    const auto fail = [&] { failed = true; };
    FileBrowser::select("/f/a \"b\"\\c", fail);
    const auto passed = [&] { return arguments.seek(0) ? arguments.readAll() : QByteArray(); };
    QTRY_COMPARE(passed(),
                 QByteArray("-e\ntell application \"Finder\"\n-e\nactivate\n-e\nselect POSIX "
                            "file \"/f/a \"b\"\\c\"\n-e\nend tell\n"));
    QVERIFY(!failed);
    setProgram("osascript", "");
    FileBrowser::select("/f/a", fail);
    QVERIFY(failed);
}

void DesktopTest::placement()
{
    QWidget form;
    form.setGeometry(50, 60, 400, 300);
    QWidget panel(&form);
    panel.setGeometry(30, 40, 219, 119);
    QWidget child(&panel);
    QWidget window;
    const QString flags = "LRH--TBV"; // in the order of their bits
    const auto text = [](const QPoint &point) {
        return QString("%1 %2").arg(point.x()).arg(point.y());
    };
    QCOMPARE(window.screen()->size().width(), 800);
    for (const DataRow &row : rowsOf("desktop/placements.txt")) {
        Qt::Alignment alignment;
        for (const QChar letter : row[0])
            alignment |= Qt::AlignmentFlag(1 << flags.indexOf(letter));
        for (QWidget *widget : {&child, &window}) {
            widget->setGeometry(7, 8, 42, 22);
            moveWidgetRelatively(widget, &panel, alignment);
            QCOMPARE(text(panel.mapFromGlobal(widget->mapToGlobal(QPoint()))), row[1]);
            moveWidgetRelatively(widget, nullptr, alignment);
            QCOMPARE(text(widget->mapToGlobal(QPoint())), row[2]);
        }
    }
    moveWidgetRelatively(appTopLevelWidget(nullptr), &panel, Qt::AlignLeft);
    QCOMPARE(appTopLevelWidget(&child), &form);
    child.setWindowFlag(Qt::Tool);
    QCOMPARE(appTopLevelWidget(&child), &child);
}

void DesktopTest::texts()
{
    const QStringList justified{centerJustified("ab", 5, '-'), centerJustified("ab", 6, '-'),
                                centerJustified("ab", 2, '-'), centerJustified("ab", -1, '-'),
                                centerJustified("", 1, '-'),   centerJustified("ab", INT_MIN, '-')};
    QCOMPARE(justified.join(' '), QString("-ab-- --ab-- ab ab - ab"));
}

void DesktopTest::lifetimes()
{
    auto first = std::make_unique<QObject>();
    auto second = std::make_unique<QObject>();
    {
        const SignalBlocker blocked(first.get(), true);
        QVERIFY((SignalBlocker(first.get(), false), !first->signalsBlocked()));
        QVERIFY(first->signalsBlocked());
    }
    QVERIFY(!first->signalsBlocked());

    auto *deleter = new ObjectDeleter;
    const QPointer<QObject> kept = new QObject(deleter);
    expectWarning("ObjectDeleter::addParent: no owner");
    for (QObject *owner : {first.get(), second.get(), first.get(), static_cast<QObject *>(nullptr)})
        deleter->addParent(owner);
    first.reset();
    QTest::qWait(0);
    second.reset();
    QVERIFY(kept);
    QTRY_VERIFY(!kept);
}

QTEST_MAIN(DesktopTest)
#include "tst_desktop.moc"
