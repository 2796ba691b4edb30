// SPDX-License-Identifier: BSD-3-Clause
// What an announcement of new sessions costs a form with a security box: read later, by a worker,
// and read at once, as a program can still have it; beside them a bare loop that reads the same
// cells into a vector and sorts it.
//
//     bench_announcements                     10,000 to 1,000,000 securities, some minutes
//     bench_announcements 10000000            that many
//     DATABASES=folder bench_announcements    makes the databases there, or finds them again

#include "processmemory.h"
#include "selectorbench.h"

#include <embeddedhost/embeddedhost.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <stdexcept>

namespace {

using Model = SecuritySelectorModel;

// Knows how long the longest event took.
class Application : public QApplication
{
public:
    using QApplication::QApplication;
    bool notify(QObject *receiver, QEvent *event) override
    {
        if (m_depth > 0)
            return QApplication::notify(receiver, event);
        bool is = false;
        timed([&] { is = QApplication::notify(receiver, event); });
        return is;
    }
    void timed(const std::function<void()> &deed)
    {
        QElapsedTimer timer;
        timer.start();
        ++m_depth;
        deed();
        --m_depth;
        m_longest = qMax(m_longest, double(timer.nsecsElapsed()) / 1e6);
    }
    double takeLongest() { return std::exchange(m_longest, 0); }

private:
    int m_depth = 0;
    double m_longest = 0;
};

struct Costs
{
    double blocked; // ms
    double whole;   // ms
    double peak;    // MB over what was held before
};

Costs measure(Application *application, const std::function<void()> &begin,
              const std::function<bool()> &isDone)
{
    QCoreApplication::processEvents();
    application->takeLongest();
    ProcessMemory::resetPeak();
    const double before = ProcessMemory::now();
    QElapsedTimer timer;
    timer.start();
    application->timed(begin);
    while (!isDone())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double whole = double(timer.nsecsElapsed()) / 1e6;
    QCoreApplication::processEvents();
    return {application->takeLongest(), whole, ProcessMemory::peak() - before};
}

void print(int securities, const char *what, const Costs &costs)
{
    std::printf("%11d  %-28s %10.2f %12.1f %10.1f\n", securities, what, costs.blocked, costs.whole,
                costs.peak);
}

void measureAll(Application *application, const QString &database)
{
    EmbeddedHost host;
    if (!host.loadNow(database))
        throw std::runtime_error(host.errorText().toStdString());
    ICore::install(&host);
    ProcessMemory::resetPeak();
    const double before = ProcessMemory::now();
    const auto always = [] { return true; };
    const Costs bare = measure(application, readAndSort, always);
    SecuritySelectorBox box;
    box.show();
    QCoreApplication::processEvents();
    Model *const model = box.findChild<Model *>();
    const int count = model->rowCount();
    box.setSecurityId(model->index(count / 2).data(Model::SecurityIdRole).toString());
    ProcessMemory::resetPeak();
    const double held = ProcessMemory::now() - before;
    print(count, "bare loop", bare);
    {
        Model alone;
        print(count, "at once, the model alone",
              measure(
                  application, [&] { alone.populate(); }, always));
    }
    print(count, "at once, with its box",
          measure(
              application, [model] { model->populate(); }, always));
    print(count, "later, with its box",
          measure(
              application, [&host] { Q_EMIT host.decoder()->aNewSessions(); },
              [model] { return !model->isPopulating(); }));
    // Old rows are destroyed by the worker.
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 2000 + count / 1000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
    ProcessMemory::resetPeak();
    std::printf("%11d  the box holds %.1f bytes a row, and %.1f after all that\n", count,
                held * 1048576 / count, (ProcessMemory::now() - before) * 1048576 / count);
}

QString databaseOf(const QString &folder, int securities)
{
    const QString file = QStringLiteral("%1/%2.sqlite").arg(folder).arg(securities);
    if (QFile::exists(file))
        return file;
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QStringLiteral(MKDB),
                  {QStringLiteral("--securities"), QString::number(securities),
                   QStringLiteral("--per-board"), QStringLiteral("1000"), file});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        throw std::runtime_error("no database could be made");
    return file;
}

void run(Application *application)
{
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == QLatin1String("--measure"))
        return measureAll(application, arguments.value(1));
    if (arguments.isEmpty())
        arguments = QStringList{"10000", "100000", "1000000"};
    std::printf("%11s  %-28s %10s %12s %10s\n", "securities", "", "blocked ms", "new rows ms",
                "peak MB");
    const QTemporaryDir temporary;
    const QString folder = qEnvironmentVariable("DATABASES", temporary.path());
    for (const QString &securities : arguments) {
        const QString database = databaseOf(folder, securities.toInt());
        std::fflush(stdout);
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QCoreApplication::applicationFilePath(), {"--measure", database});
        if (!process.waitForFinished(-1) || process.exitCode() != 0)
            throw std::runtime_error("a measurement failed");
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    Application application(argc, argv);
    try {
        run(&application);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench_announcements: %s\n", error.what());
        return 1;
    }
    return 0;
}
