// SPDX-License-Identifier: BSD-3-Clause
#include "filebrowser_p.h"

#include <QProcess>
#include <QStringList>

void FileBrowser::select(const QString &path, const std::function<void()> &otherwise)
{
    const QStringList script = {
        QStringLiteral("-e"), QStringLiteral("tell application \"Finder\""),
        QStringLiteral("-e"), QStringLiteral("activate"),
        QStringLiteral("-e"), QStringLiteral("select POSIX file \"%1\"").arg(path),
        QStringLiteral("-e"), QStringLiteral("end tell"),
    };
    if (!QProcess::startDetached(QStringLiteral("osascript"), script))
        otherwise();
}
