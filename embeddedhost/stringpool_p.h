// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QSet>
#include <QString>

/// Gives equal texts one memory. Made for columns in which few texts return often (the base
/// codes of derivatives); over a column of distinct texts it soon stops looking.
class StringPool
{
public:
    QString share(const QString &text);

private:
    bool m_gaveUp = false;
    qint64 m_hits = 0;
    QSet<QString> m_texts;
};
