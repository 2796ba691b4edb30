// SPDX-License-Identifier: BSD-3-Clause
#include "databasefile.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

QString DatabaseFile::sample()
{
    return QStringLiteral(SAMPLE_DATABASE);
}

QString DatabaseFile::generated(int securities, QString *error)
{
    QString file = QDir::temp().filePath(QStringLiteral("formkit-demo-%1.sqlite").arg(securities));
    if (QFileInfo::exists(file))
        return file;
    QProcess maker;
    maker.start(QStringLiteral(MKDB_PROGRAM),
                {QStringLiteral("--securities"), QString::number(securities), file});
    const bool done = maker.waitForFinished(-1) && maker.exitStatus() == QProcess::NormalExit &&
                      maker.exitCode() == 0;
    if (done)
        return file;
    *error = maker.error() == QProcess::UnknownError
                 ? QString::fromLocal8Bit(maker.readAllStandardError()).trimmed()
                 : maker.errorString();
    return {};
}
