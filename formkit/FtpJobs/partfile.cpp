// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpJobs/partfile_p.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTimeZone>

#include <cerrno>
#include <cstdio>

#include <sys/stat.h>

PartFile::PartFile(const QString &local) : m_local(local), m_name(local)
{
    const QFileInfo info(local);
    if (!info.exists() || info.isFile())
        m_name += QStringLiteral(".part");
}

qint64 PartFile::size() const
{
    return QFileInfo(m_name).size();
}

qint64 PartFile::time() const
{
    struct stat data = {};
    const bool exists = ::stat(QFile::encodeName(m_name).constData(), &data) == 0;
    return exists ? qint64(data.st_mtime) : 0;
}

void PartFile::setTime(qint64 seconds) const
{
    QFile file(m_name);
    if (file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        file.setFileTime(QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::utc()),
                         QFile::FileModificationTime);
}

QString PartFile::land() const
{
    if (m_name == m_local)
        return {};
    if (QFile::exists(m_local))
        QFile::setPermissions(m_name, QFile::permissions(m_local));
    // Unlike Qt's, this takes the place of a file in one step.
    const int failed =
        std::rename(QFile::encodeName(m_name).constData(), QFile::encodeName(m_local).constData());
    return failed == 0 ? QString() : qt_error_string(errno);
}

void PartFile::discard() const
{
    if (m_name != m_local)
        QFile::remove(m_name);
}
