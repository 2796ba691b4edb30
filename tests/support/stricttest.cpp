// SPDX-License-Identifier: BSD-3-Clause
#include "support/stricttest.h"

#include <mutex>

namespace {

struct
{
    std::mutex mutex;
    QtMessageHandler next = nullptr;
    QStringList messages;
    QStringList unexpected;
    QList<QRegularExpression> expected;
} theLog;

// What the offscreen platform says whenever a pop-up opens or a window is raised; what Qt 6 says
// about scripts that the machine's fonts lack, and about widgets that its Designer makes.
bool isPlatformNoise(const QString &text)
{
    return text.startsWith(QLatin1String("This plugin does not support ")) ||
           text.contains(QLatin1String("OpenType support missing for ")) ||
           text.startsWith(QLatin1String("QOpenGLWidget is not supported on this platform"));
}

void record(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    {
        const std::lock_guard<std::mutex> guard(theLog.mutex);
        theLog.messages << text;
        if (type != QtDebugMsg && type != QtInfoMsg && !isPlatformNoise(text)) {
            for (int i = 0; i < theLog.expected.size(); ++i) {
                if (theLog.expected.at(i).match(text).hasMatch()) {
                    theLog.expected.removeAt(i);
                    return;
                }
            }
            theLog.unexpected << text;
        }
    }
    if (theLog.next)
        theLog.next(type, context, text);
}

} // namespace

void StrictTest::expectWarning(const QString &pattern)
{
    const std::lock_guard<std::mutex> guard(theLog.mutex);
    theLog.expected << QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

QStringList StrictTest::messages() const
{
    const std::lock_guard<std::mutex> guard(theLog.mutex);
    return theLog.messages;
}

void StrictTest::init()
{
    const std::lock_guard<std::mutex> guard(theLog.mutex);
    theLog.messages.clear();
    theLog.unexpected.clear();
    theLog.expected.clear();
    theLog.next = qInstallMessageHandler(record);
}

void StrictTest::cleanup()
{
    const std::lock_guard<std::mutex> guard(theLog.mutex);
    qInstallMessageHandler(theLog.next);
    QVERIFY2(theLog.unexpected.isEmpty(), qPrintable(theLog.unexpected.join('\n')));
    for (const QRegularExpression &missing : std::as_const(theLog.expected))
        QVERIFY2(false, qPrintable("announced, not logged: " + missing.pattern()));
}
