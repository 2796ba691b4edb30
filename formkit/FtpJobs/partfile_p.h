// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// The file that collects a download until it is whole, and then replaces the local file. It is
/// beside that, with ".part" added to the name. A device or pipe is written to directly: it is its
/// own part file.
class PartFile
{
public:
    explicit PartFile(const QString &local);

    const QString &name() const { return m_name; }
    /// 0 when there is none.
    qint64 size() const;
    /// Seconds since 1970.
    qint64 time() const;
    /// Sets the file's time to that of the remote file, for a later download to compare.
    void setTime(qint64 seconds) const;
    /// Replaces the local file. Returns why that failed, empty on success.
    QString land() const;
    /// Removes the part file, but no device.
    void discard() const;

private:
    QString m_local;
    QString m_name;
};
