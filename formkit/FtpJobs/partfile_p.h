// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// The file in which a download is until it is whole: beside the local file, which it replaces
/// then. A local file that is none, such as a device, is its own part.
class PartFile
{
public:
    explicit PartFile(const QString &local);

    const QString &name() const { return m_name; }
    /// 0 when there is none.
    qint64 size() const;
    /// Seconds since 1970.
    qint64 time() const;
    /// A later download compares the time with that of the remote file.
    void setTime(qint64 seconds) const;
    /// Makes it the local file; else why not.
    QString land() const;
    void discard() const;

private:
    QString m_local;
    QString m_name;
};
