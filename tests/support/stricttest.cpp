#include "support/stricttest.h"

#include <mutex>

namespace {

struct Log
{
    std::mutex mutex;
    QtMessageHandler next = nullptr;
    QStringList messages;
    QStringList unexpected;
    QList<QRegularExpression> expected;
};

Log &theLog()
{
    static Log log;
    return log;
}

// What the offscreen platform says whenever a pop-up opens or a window is raised.
bool isPlatformNoise(const QString &text)
{
    return text.startsWith(QLatin1String("This plugin does not support "));
}

void record(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    Log &log = theLog();
    {
        const std::lock_guard<std::mutex> guard(log.mutex);
        log.messages << text;
        if (type != QtDebugMsg && type != QtInfoMsg && !isPlatformNoise(text)) {
            for (int i = 0; i < log.expected.size(); ++i) {
                if (log.expected.at(i).match(text).hasMatch()) {
                    log.expected.removeAt(i);
                    return;
                }
            }
            log.unexpected << text;
        }
    }
    if (log.next)
        log.next(type, context, text);
}

} // namespace

void StrictTest::expectWarning(const QString &pattern)
{
    const std::lock_guard<std::mutex> guard(theLog().mutex);
    theLog().expected << QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

QStringList StrictTest::messages() const
{
    const std::lock_guard<std::mutex> guard(theLog().mutex);
    return theLog().messages;
}

void StrictTest::init()
{
    Log &log = theLog();
    const std::lock_guard<std::mutex> guard(log.mutex);
    log.messages.clear();
    log.unexpected.clear();
    log.expected.clear();
    log.next = qInstallMessageHandler(record);
}

void StrictTest::cleanup()
{
    Log &log = theLog();
    const std::lock_guard<std::mutex> guard(log.mutex);
    qInstallMessageHandler(log.next);
    QVERIFY2(log.unexpected.isEmpty(), qPrintable(log.unexpected.join('\n')));
    QStringList missing;
    for (const QRegularExpression &pattern : qAsConst(log.expected))
        missing << pattern.pattern();
    QVERIFY2(missing.isEmpty(), qPrintable("announced, not logged: " + missing.join('\n')));
}
